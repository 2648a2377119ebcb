// The file is opened without blocking, so that a pipe without a writer ends at once; a read waits no longer
// than it is told to.
#include "remote_config/local_file.h"

#include "middleware/base/strings.h"
#include "remote_config/log.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

ROUTERLocalFile::ROUTERLocalFile(const char* path, const ZULTime& patience)
    : descriptor_(::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC)), patience_(patience) {
    struct stat status {};
    isSilentPipe_ = isOpen() && fstat(descriptor_, &status) == 0 && S_ISFIFO(status.st_mode);
}

ROUTERLocalFile::~ROUTERLocalFile() {
    if (isOpen()) {
        ::close(descriptor_);
    }
}

bool ROUTERLocalFile::awaitData() const {
    pollfd wanted{.fd = descriptor_, .events = POLLIN, .revents = 0};
    constexpr std::int32_t LONGEST_SECONDS = INT_MAX / 1000;
    const int milliseconds =
        patience_.sec > LONGEST_SECONDS ? -1 : static_cast<int>(std::max(patience_.sec, 0)) * 1000;
    return poll(&wanted, 1, milliseconds) > 0;
}

ROUTERLocalFileStatus ROUTERLocalFile::readAhead() {
    for (;;) {
        const ssize_t count = ::read(descriptor_, ahead_.data(), ahead_.size());
        if (count > 0) {
            unread_ = std::span(ahead_).first(static_cast<std::size_t>(count));
            isSilentPipe_ = false;
            return ROUTER_LOCAL_FILE_DATA;
        }
        if (count == 0) {
            return isSilentPipe_ ? ROUTER_LOCAL_FILE_ERROR : ROUTER_LOCAL_FILE_END;
        }
        if (errno != EAGAIN || !awaitData()) {
            return ROUTER_LOCAL_FILE_ERROR;
        }
    }
}

ROUTERLocalFileStatus ROUTERLocalFile::read(std::span<char> buffer, std::size_t& length) {
    length = 0;
    while (length < buffer.size()) {
        if (unread_.empty()) {
            const ROUTERLocalFileStatus status = readAhead();
            if (status != ROUTER_LOCAL_FILE_DATA) {
                return status;
            }
        }
        const std::span<char> part = unread_.first(std::min(unread_.size(), buffer.size() - length));
        std::copy(part.begin(), part.end(), buffer.begin() + static_cast<std::ptrdiff_t>(length));
        length += part.size();
        unread_ = unread_.subspan(part.size());
    }
    return ROUTER_LOCAL_FILE_DATA;
}

char* ROUTERRemoteConfig_readFile(const char* path) {
    std::FILE* file = std::fopen(path, "rb");
    if (file == nullptr) {
        remoteConfigWarning(__func__, ZUL_LOG_ANY_FAILURE_s, "open file");
        remoteConfigWarning(__func__, ZUL_LOG_ANY_FAILURE_s, path);
        return nullptr;
    }
    long size = -1;
    if (std::fseek(file, 0, SEEK_END) != 0 || (size = std::ftell(file)) < 0 ||
        std::fseek(file, 0, SEEK_SET) != 0) {
        remoteConfigError(__func__, ZUL_LOG_ANY_FAILURE_s, "fseek");
        return nullptr; // oddity 12
    }
    const auto length = static_cast<std::size_t>(size);
    ZULStringPtr text(DDS_String_alloc(length));
    if (text == nullptr) {
        remoteConfigError(__func__, ZUL_LOG_OUT_OF_HEAP_STRING_d, length);
    } else {
        const std::size_t read = std::fread(text.get(), 1, length, file);
        text.get()[read] = '\0';
        if (std::ferror(file) != 0) {
            text.reset();
        }
    }
    std::fclose(file);
    return text.release();
}
