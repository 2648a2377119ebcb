// Opened without waiting: opening a pipe would wait for its other end.
#include "middleware/xml/file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zul::xml {

File::File(const char* path) : descriptor_(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
    struct stat status {};
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0) {
        failure_ = errno;
    }
    isRegular_ = failure_ == 0 && S_ISREG(status.st_mode);
}

File::~File() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

int File::read(char* buffer, std::size_t size) const {
    ssize_t got;
    do {
        got = ::read(descriptor_, buffer, size);
    } while (got < 0 && errno == EINTR);
    return static_cast<int>(got);
}

} // namespace zul::xml
