#include "shell/line_reader.h"

#include <cerrno>
#include <cstring>

ROUTERShellReadStatus ROUTERShellLineReader_read(ROUTERShellLineReader* self, char* line) {
    bool complete = false;
    while (!complete && self->pendingLength < ROUTER_SHELL_LINE_SIZE - 1) {
        errno = 0;
        const int character = std::getc(self->input);
        if (character == EOF) {
            const bool interrupted = std::ferror(self->input) != 0 && errno == EINTR;
            std::clearerr(self->input);
            if (interrupted) {
                return ROUTER_SHELL_READ_INTERRUPTED;
            }
            if (self->pendingLength == 0) {
                return ROUTER_SHELL_READ_END;
            }
            break;
        }
        self->pending[self->pendingLength++] = static_cast<char>(character);
        complete = character == '\n';
    }
    std::memcpy(line, self->pending, self->pendingLength);
    line[self->pendingLength] = '\0';
    self->pendingLength = 0;
    return ROUTER_SHELL_READ_LINE;
}
