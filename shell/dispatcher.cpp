// Finds the row of a line's command, has it act, and prints what came of it.
#include "shell/dispatcher.h"

#include "middleware/base/strings.h"
#include "middleware/base/terminal_text.h"
#include "shell/commands.h"

#include <algorithm>
#include <string_view>

using zul::shell::Command;
using zul::shell::Outcome;

const char* const ROUTERShell_g_commandList[] = {"load",   "unload", "enable", "disable",  "update", "exit",
                                                 "quit",   "hello",  "help",   "history",  "clear",  "create",
                                                 "delete", "save",   "get",    "add_peer", ""};

namespace {

const Command* findCommand(std::string_view word) {
    const auto isNamed = [word](const char* name) {
        return name != nullptr && ZULString_equalsIgnoreCase(name, word);
    };
    for (const Command& command : zul::shell::COMMANDS) {
        if (std::ranges::any_of(command.names, isNamed)) {
            return &command;
        }
    }
    return nullptr;
}

void printOutcome(Outcome outcome, const Command& command, const ROUTERRemoteConfigResult& result) {
    switch (outcome) {
    case Outcome::NOTHING:
        break;
    case Outcome::SYNTAX_ERROR:
        std::printf("Command syntax: %s\n", command.syntax);
        break;
    case Outcome::ANSWERED: {
        const bool isOk = result.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
        std::printf(isOk ? "Result: " : "Error: ");
        ZULTerminal_print(stdout, result.text != nullptr ? result.text : "(null)"); // a router's words
        std::printf("\n");
        break;
    }
    case Outcome::UNANSWERED:
        std::printf("No response received\n");
        break;
    }
}

} // namespace

void ROUTERShell_parseCommand(ROUTERShellInstance* self, char** words, int wordCount) {
    const Command* command = findCommand(words[0]);
    if (command == nullptr) {
        std::printf("Unknown command: %s\n", words[0]);
        return;
    }
    ROUTERRemoteConfigResult result{};
    ROUTERRemoteConfigResult_initialize(&result);
    result.kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ERROR; // what a refused argument is printed as
    const zul::shell::Line line{
        .shell = *self, .words = {words, static_cast<std::size_t>(wordCount)}, .result = result};
    const bool isCountRight =
        line.words.size() >= command->leastWords && line.words.size() <= command->mostWords;
    printOutcome(isCountRight ? command->run(line) : Outcome::SYNTAX_ERROR, *command, result);
    ROUTERRemoteConfigResult_finalize(&result);
}
