#include "shell/dispatcher.h"

#include "middleware/semaphore.h"
#include "middleware/strings.h"
#include "remote_config/entity_commands.h"
#include "remote_config/exchange.h"
#include "shell/help.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>

const char* const ROUTERShell_g_commandList[] = {"load",   "unload", "enable", "disable",  "update", "exit",
                                                 "quit",   "hello",  "help",   "history",  "clear",  "create",
                                                 "delete", "save",   "get",    "add_peer", ""};

namespace {

// One line of input under dispatch. words[0] is the command.
struct Line {
    ROUTERShellInstance& shell;
    std::span<char* const> words;
    ROUTERRemoteConfigResult& result;

    ROUTERRemoteConfigClient* client() const { return &shell.client; }
    // The word at a position, or the empty text.
    const char* wordOrEmpty(std::size_t position) const {
        return position < words.size() ? words[position] : "";
    }
};

// What a handler leaves for the dispatcher to print.
enum class Outcome {
    NOTHING,
    SYNTAX_ERROR,
    ANSWERED,   // the result record holds the answer
    UNANSWERED, // nobody answered, or the request was not sent
};

Outcome answered(bool success) {
    return success ? Outcome::ANSWERED : Outcome::UNANSWERED;
}

Outcome runExit(const Line&) {
    ROUTERShell_g_terminate = 1;
    return Outcome::NOTHING;
}

Outcome runNothing(const Line&) {
    return Outcome::NOTHING;
}

Outcome runSleep(const Line& line) {
    // Without a number of seconds: the time-out.
    const long seconds = line.words.size() > 1 ? std::strtol(line.words[1], nullptr, 10) : line.shell.timeout;
    ZULSleep(static_cast<std::int32_t>(std::clamp<long>(seconds, 0, INT32_MAX)), 0);
    return Outcome::NOTHING;
}

template <auto sender>
Outcome runRouterCommand(const Line& line) {
    return answered(sender(line.client(), line.words[1], &line.result));
}

template <auto sender>
Outcome runEntityCommand(const Line& line) {
    return answered(sender(line.client(), line.words[1], line.wordOrEmpty(2), &line.result));
}

Outcome runAddPeer(const Line& line) {
    const bool isFirst = ZULString_equalsIgnoreCase(line.words[3], "p1");
    if (!isFirst && !ZULString_equalsIgnoreCase(line.words[3], "p2")) {
        return Outcome::SYNTAX_ERROR;
    }
    return answered(ROUTERRemoteConfigClient_sendCommandAddPeer(line.client(), line.words[1], line.words[2],
                                                                isFirst, line.words[4], &line.result));
}

Outcome runHello(const Line& line) {
    ROUTERRemoteConfigClient_sendCommandAnnounce(line.client()); // its outcome is not printed
    return Outcome::NOTHING;
}

Outcome runHelp(const Line&) {
    ROUTERShell_printHelp();
    return Outcome::NOTHING;
}

constexpr std::size_t ANY = SIZE_MAX;

struct Command {
    std::array<const char*, 3> names; // compared without regard to case; null where unused
    std::size_t leastWords;
    std::size_t mostWords;
    const char* syntax;
    Outcome (*run)(const Line&);
};

// Walked in order; the first match decides.
constexpr Command COMMANDS[] = {
    {{"exit", "quit", "q"}, 1, ANY, "", runExit},
    {{"history"}, 1, ANY, "", runNothing},
    {{"clear"}, 1, ANY, "", runNothing},
    {{"sleep"}, 1, ANY, "", runSleep},
    {{"enable"},
     2,
     ANY,
     "Command syntax: enable <target_router> [<entity_name>]",
     runEntityCommand<ROUTERRemoteConfigClient_sendCommandEnable>},
    {{"disable"},
     2,
     ANY,
     "Command syntax: disable <target_router> [<entity_name>]",
     runEntityCommand<ROUTERRemoteConfigClient_sendCommandDisable>},
    {{"pause"},
     2,
     ANY,
     "Command syntax: pause <target_router> [<entity_name>]",
     runEntityCommand<ROUTERRemoteConfigClient_sendCommandPause>},
    {{"resume"},
     2,
     ANY,
     "Command syntax: resume <target_router> [<entity_name>]",
     runEntityCommand<ROUTERRemoteConfigClient_sendCommandResume>},
    {{"unload"},
     2,
     2,
     "Command syntax: unload <target_router>",
     runRouterCommand<ROUTERRemoteConfigClient_sendCommandUnload>},
    {{"delete"},
     2,
     ANY,
     "Command syntax: delete <target_router> [<entity_name>]",
     runEntityCommand<ROUTERRemoteConfigClient_sendCommandDelete>},
    {{"save"},
     2,
     ANY,
     "Command syntax: save <target_router>",
     runRouterCommand<ROUTERRemoteConfigClient_sendCommandSave>},
    {{"get"},
     2,
     ANY,
     "Command syntax: get <target_router>",
     runRouterCommand<ROUTERRemoteConfigClient_sendCommandGet>},
    {{"add_peer"},
     5,
     ANY,
     "Command syntax: add_peer <target_router> <domain_route_name> p1|p2 <peer_list>",
     runAddPeer},
    {{"hello"}, 1, ANY, "", runHello},
    {{"help"}, 1, ANY, "", runHelp},
};

const Command* findCommand(const char* word) {
    const auto* found =
        std::find_if(std::begin(COMMANDS), std::end(COMMANDS), [word](const Command& command) {
            return std::any_of(command.names.begin(), command.names.end(), [word](const char* name) {
                return name != nullptr && ZULString_equalsIgnoreCase(name, word);
            });
        });
    return found != std::end(COMMANDS) ? found : nullptr;
}

void printOutcome(Outcome outcome, const Command& command, const ROUTERRemoteConfigResult& result) {
    switch (outcome) {
    case Outcome::NOTHING:
        break;
    case Outcome::SYNTAX_ERROR:
        std::printf("%s\n", command.syntax);
        break;
    case Outcome::ANSWERED: {
        const bool isOk = result.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
        std::printf(isOk ? "Result: %s\n" : "Error: %s\n", result.text != nullptr ? result.text : "(null)");
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
    const Line line{.shell = *self, .words = {words, static_cast<std::size_t>(wordCount)}, .result = result};
    const bool isCountRight =
        line.words.size() >= command->leastWords && line.words.size() <= command->mostWords;
    printOutcome(isCountRight ? command->run(line) : Outcome::SYNTAX_ERROR, *command, result);
    ROUTERRemoteConfigResult_finalize(&result);
}
