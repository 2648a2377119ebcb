// One turn of the loop is one line: prompt, read, split, dispatch.
#include "shell/loop.h"

#include "middleware/base/semaphore.h"
#include "middleware/base/terminal_text.h"
#include "product/product_info.h"
#include "remote_config/exchange.h"
#include "shell/dispatcher.h"
#include "shell/line_reader.h"
#include "shell/log.h"
#include "shell/signals.h"
#include "shell/splitter.h"

#include <cstring>
#include <span>
#include <termios.h>

using zul::shell::WholeOutput;

namespace {

constexpr std::size_t LINE_LENGTH_MAX = 4094;          // characters accepted, line feed included
constexpr std::int32_t COMMAND_FILE_DELAY_SECONDS = 3; // for routers to be discovered
constexpr std::uint32_t FAILED_READ_PAUSE_NANOSECONDS = 250'000'000;
constexpr const char* CONTEXT = "ROUTERShell_finalize"; // oddity 1

void printPrompt() {
    const WholeOutput output;
    std::printf("%s> ", ROUTER_getProductInfo()->productName);
}

void printWords(std::span<char* const> words) {
    const WholeOutput output;
    for (const char* word : words) {
        ZULTerminal_print(stdout, word);
        std::printf(" ");
    }
    std::printf("\n");
}

// Whether end of input is a key that somebody typed: a terminal that reads line by line, and not hung up.
bool isTyped(std::FILE* input) {
    termios settings{};
    return tcgetattr(fileno(input), &settings) == 0 && (settings.c_lflag & ICANON) != 0;
}

// A read that a signal or a key ended fails once. All others may fail again at once, and for good: pace them.
void pauseAfterFailedRead(ROUTERShellReadStatus status, std::FILE* input) {
    const bool isBroughtAbout =
        status == ROUTER_SHELL_READ_INTERRUPTED || (status == ROUTER_SHELL_READ_END && isTyped(input));
    if (!isBroughtAbout) {
        ZULSleep(0, FAILED_READ_PAUSE_NANOSECONDS);
    }
}

} // namespace

bool ROUTERShell_initialize(ROUTERShellInstance* self) {
    {
        const WholeOutput output;
        std::printf("Domain id %d, timeout %d\n", self->domainId, self->timeout);
    }
    if (!ROUTERRemoteConfigClient_initialize(&self->client, self->domainId, self->timeout)) {
        shellError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "initialize remote configuration client");
        return false;
    }
    if (!ROUTERRemoteConfigClient_sendCommandAnnounce(&self->client)) {
        shellError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "send command announce");
        return false;
    }
    return true;
}

void ROUTERShell_main(ROUTERShellInstance* self) {
    const bool isCommandFile = self->input != stdin;
    ROUTERShellLineReader reader{.input = self->input};
    char line[ROUTER_SHELL_LINE_SIZE] = "";
    char* words[ROUTER_SHELL_MAX_WORDS];
    int wordCount = 0;

    ROUTERShell_g_terminate = 0;
    ROUTERLog_setBitmaps(0xFFFF, ZUL_LOG_LEVEL_ERROR);
    if (isCommandFile) {
        ZULSleep(COMMAND_FILE_DELAY_SECONDS, 0);
    }
    while (ROUTERShell_g_terminate == 0) {
        printPrompt();
        const ROUTERShellReadStatus status = ROUTERShellLineReader_read(&reader, line);
        if (status != ROUTER_SHELL_READ_LINE) {
            if (isCommandFile) {
                break;
            }
            // oddity 2: the buffer stays as the last line's splitting left it
            pauseAfterFailedRead(status, self->input);
        }
        if (line[0] == '\0' || line[0] == '\n') {
            continue;
        }
        if (std::strlen(line) > LINE_LENGTH_MAX) {
            const WholeOutput output;
            std::printf("Line too long\n");
            continue;
        }
        ROUTERShell_createArgv(line, words, &wordCount);
        if (wordCount == 0) {
            continue;
        }
        if (isCommandFile) {
            printWords({words, static_cast<std::size_t>(wordCount)});
        }
        ROUTERShell_parseCommand(self, words, wordCount);
    }
    ROUTERShell_g_terminate = 1;
}

bool ROUTERShell_finalize(ROUTERShellInstance* self) {
    if (!ROUTERRemoteConfigClient_finalize(&self->client)) {
        shellError(__func__, ZUL_LOG_ANY_FAILURE_s, "finalize remote configuration client");
        return false;
    }
    return true;
}
