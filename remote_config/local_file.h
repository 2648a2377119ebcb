// Local files: streamed piece by piece, or read whole.
#pragma once

#include "middleware/base/semaphore.h"

#include <array>
#include <cstddef>
#include <span>

enum ROUTERLocalFileStatus {
    ROUTER_LOCAL_FILE_DATA, // the buffer is full
    ROUTER_LOCAL_FILE_END,  // the end was reached; the buffer holds what was read before it
    ROUTER_LOCAL_FILE_ERROR,
};

// An open file; closed by its destructor.
class ROUTERLocalFile {
public:
    // Never blocks, not even on a pipe that nobody writes to. A read waits at most `patience`, in whole
    // seconds, for a pipe's next data, and ends with an error when a signal arrives meanwhile.
    ROUTERLocalFile(const char* path, const ZULTime& patience);
    ~ROUTERLocalFile();
    ROUTERLocalFile(const ROUTERLocalFile&) = delete;
    ROUTERLocalFile& operator=(const ROUTERLocalFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    // Fills `buffer` unless the file ends first; `length` is what was read, in bytes. A pipe that nobody ever
    // wrote to is an error, not an empty file.
    ROUTERLocalFileStatus read(std::span<char> buffer, std::size_t& length);

private:
    bool awaitData() const;
    ROUTERLocalFileStatus readAhead();

    int descriptor_;
    bool isSilentPipe_ = false; // a pipe that has given nothing yet
    ZULTime patience_;
    std::array<char, 65536> ahead_; // read in large steps, handed out in pieces
    std::span<char> unread_;        // of `ahead_`
};

// Reads a whole file into a new string, which the caller owns (DDS_String_free). Null on failure, with a log
// line unless the read itself failed.
char* ROUTERRemoteConfig_readFile(const char* path);
