// Reads lines from a stream. Only the end of the stream ends a last line that has no line feed: a line that a
// signal interrupts, or whose rest is not there yet, waits for its rest; one that an error cuts off is never
// run, nor is its rest.
#pragma once

#include <cstddef>
#include <cstdio>

constexpr std::size_t ROUTER_SHELL_LINE_SIZE = 4096; // buffer, terminator included

enum ROUTERShellReadStatus {
    ROUTER_SHELL_READ_LINE,        // a line, or what the stream ended with
    ROUTER_SHELL_READ_INTERRUPTED, // by a signal
    ROUTER_SHELL_READ_END,         // end of input
    ROUTER_SHELL_READ_FAILED,      // any other error; the next read may fail at once as well
};

struct ROUTERShellLineReader {
    std::FILE* input;
    bool isDropping = false; // up to the next line feed: the rest of a line that an error cut off
    std::size_t pendingLength = 0;
    char pending[ROUTER_SHELL_LINE_SIZE] = {};
};

// Reads at most ROUTER_SHELL_LINE_SIZE - 1 characters, line feed included, into `line`, which is left alone
// unless a line was read. Waits for input, also where the descriptor does not block. The stream's end and
// error flags are cleared, so that a terminal can be read again.
ROUTERShellReadStatus ROUTERShellLineReader_read(ROUTERShellLineReader* self, char* line);
