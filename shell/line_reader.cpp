// What is read of a line is kept across calls until the line is whole.
#include "shell/line_reader.h"

#include <cerrno>
#include <cstring>
#include <poll.h>

namespace {

// False, with errno set, when a signal or an error ends the wait.
bool awaitInput(std::FILE* input) {
    pollfd wanted{.fd = fileno(input), .events = POLLIN, .revents = 0};
    return wanted.fd >= 0 && poll(&wanted, 1, -1) > 0;
}

// The next character, or EOF with `failure` telling why.
int nextCharacter(std::FILE* input, ROUTERShellReadStatus& failure) {
    for (;;) {
        const int character = std::getc(input);
        if (character != EOF) {
            return character;
        }
        const bool isError = std::ferror(input) != 0;
        const bool isNotThereYet = isError && (errno == EAGAIN || errno == EWOULDBLOCK);
        std::clearerr(input);
        if (!isNotThereYet || !awaitInput(input)) {
            failure = !isError         ? ROUTER_SHELL_READ_END
                      : errno == EINTR ? ROUTER_SHELL_READ_INTERRUPTED
                                       : ROUTER_SHELL_READ_FAILED;
            return EOF;
        }
    }
}

} // namespace

ROUTERShellReadStatus ROUTERShellLineReader_read(ROUTERShellLineReader* self, char* line) {
    int character = '\0';
    while (character != '\n' && self->pendingLength < ROUTER_SHELL_LINE_SIZE - 1) {
        ROUTERShellReadStatus failure = ROUTER_SHELL_READ_END;
        character = nextCharacter(self->input, failure);
        if (character == EOF) {
            if (failure == ROUTER_SHELL_READ_FAILED) {
                self->isDropping = self->isDropping || self->pendingLength > 0;
                self->pendingLength = 0;
            }
            if (failure == ROUTER_SHELL_READ_END) {
                self->isDropping = false;
            }
            if (failure != ROUTER_SHELL_READ_END || self->pendingLength == 0) {
                return failure;
            }
            break;
        }
        if (!self->isDropping) {
            self->pending[self->pendingLength++] = static_cast<char>(character);
        } else if (character == '\n') {
            self->isDropping = false;
            character = '\0'; // the line read is the one after it
        }
    }
    std::memcpy(line, self->pending, self->pendingLength);
    line[self->pendingLength] = '\0';
    self->pendingLength = 0;
    return ROUTER_SHELL_READ_LINE;
}
