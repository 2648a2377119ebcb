// Reads lines from a stream. A read that a signal interrupts keeps the characters it already has for the next
// one, so no input is lost.
#pragma once

#include <cstddef>
#include <cstdio>

constexpr std::size_t ROUTER_SHELL_LINE_SIZE = 4096; // buffer, terminator included

enum ROUTERShellReadStatus {
    ROUTER_SHELL_READ_LINE,        // a line, or what the stream ended with
    ROUTER_SHELL_READ_INTERRUPTED, // by a signal
    ROUTER_SHELL_READ_END,         // end of input, or an error that will stay
};

struct ROUTERShellLineReader {
    std::FILE* input;
    std::size_t pendingLength;
    char pending[ROUTER_SHELL_LINE_SIZE];
};

// Reads at most ROUTER_SHELL_LINE_SIZE - 1 characters, line feed included, into `line`, which is left alone
// unless a line was read. The stream's end and error flags are cleared, so that a terminal can be read again.
ROUTERShellReadStatus ROUTERShellLineReader_read(ROUTERShellLineReader* self, char* line);
