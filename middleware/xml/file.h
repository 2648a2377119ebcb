// A file that a document is read from. Only regular files are read: a pipe or a device could
// block the program.
#pragma once

#include <cstddef>

namespace zul::xml {

class File {
public:
    explicit File(const char* path);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isReadable() const { return isRegular_; }
    // Why it is not readable: the system's error number, 0 for what is no regular file.
    int failure() const { return failure_; }
    // Puts at most `size` bytes into `buffer`: how many, 0 at the end, -1 with errno on failure.
    int read(char* buffer, std::size_t size) const;

private:
    int descriptor_;
    int failure_ = 0;
    bool isRegular_ = false;
};

} // namespace zul::xml
