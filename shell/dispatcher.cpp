#include "shell/dispatcher.h"

#include "middleware/base/semaphore.h"
#include "middleware/base/strings.h"
#include "middleware/base/terminal_text.h"
#include "remote_config/entity_commands.h"
#include "remote_config/exchange.h"
#include "remote_config/url_commands.h"
#include "shell/help.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>
#include <string_view>

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
    UNANSWERED, // nobody answered, or the request was not sent; the cause, if any, is already printed
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

// The word after an XML URL says who reads a path: the router (also when it is absent) or the shell.
bool readRemoteFlag(const Line& line, std::size_t position, bool& isRemote) {
    const bool isLocal = ZULString_equalsIgnoreCase(line.wordOrEmpty(position), "local");
    isRemote = !isLocal;
    return isLocal || position >= line.words.size() ||
           ZULString_equalsIgnoreCase(line.words[position], "remote");
}

// The outcome of a URL command's status; `xmlUrl` is the word that names a local file.
Outcome reportStatus(int status, const char* xmlUrl) {
    switch (status) {
    case ROUTER_URL_COMMAND_OK:
        return Outcome::ANSWERED;
    case ROUTER_URL_COMMAND_FILE_OPEN_ERROR:
        std::printf("Can't open local file %s\n", xmlUrl);
        break;
    case ROUTER_URL_COMMAND_FILE_READ_ERROR:
        std::printf("Error reading local file\n");
        break;
    case ROUTER_URL_COMMAND_SEND_ERROR:
        std::printf("Error sending request\n");
        break;
    default:
        break;
    }
    return Outcome::UNANSWERED;
}

Outcome runLoad(const Line& line) {
    bool isRemote = true;
    if (!readRemoteFlag(line, 4, isRemote)) {
        return Outcome::SYNTAX_ERROR;
    }
    return reportStatus(ROUTERRemoteConfigClient_sendCommandLoad(line.client(), line.words[1], line.words[2],
                                                                 line.words[3], isRemote, &line.result),
                        line.words[3]);
}

// A dupdate's sender returns a success flag, which is printed as if it were a status: a successful one reads
// like a file that could not be opened. Scripts rely on it.
template <auto sender>
Outcome runUpdate(const Line& line) {
    bool isRemote = true;
    if (!readRemoteFlag(line, 4, isRemote)) {
        return Outcome::SYNTAX_ERROR;
    }
    const bool namesEntity = line.words.size() >= 4;
    const char* entity = namesEntity ? line.words[2] : "";
    const char* xmlUrl = line.words[namesEntity ? 3 : 2];
    if (std::string_view(entity) == ".") {
        entity = ""; // the router itself
    }
    return reportStatus(sender(line.client(), line.words[1], entity, xmlUrl, isRemote, &line.result), xmlUrl);
}

Outcome runCreate(const Line& line) {
    struct EntityKind {
        const char* name;
        bool hasParent;
    };
    constexpr EntityKind KINDS[] = {
        {"domain_route", false}, {"session", true}, {"topic_route", true}, {"auto_route", true}};
    const auto* kind = std::find_if(std::begin(KINDS), std::end(KINDS), [&line](const EntityKind& known) {
        return ZULString_equalsIgnoreCase(known.name, line.words[2]);
    });
    if (kind == std::end(KINDS)) {
        return Outcome::SYNTAX_ERROR;
    }
    const std::size_t url = kind->hasParent ? 4 : 3;
    bool isRemote = true;
    if (line.words.size() <= url || !readRemoteFlag(line, url + 1, isRemote)) {
        return Outcome::SYNTAX_ERROR;
    }
    // The kind itself is not passed on: what is created follows from the XML.
    return answered(ROUTERRemoteConfigClient_sendCommandCreate(
                        line.client(), line.words[1], kind->hasParent ? line.words[3] : "", line.words[url],
                        isRemote, &line.result) == ROUTER_URL_COMMAND_OK);
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
constexpr const char* UPDATE_SYNTAX =
    "Command syntax: update <target_router> [<entity_name>] <xml_url> [remote|local]";

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
    {{"update"}, 3, ANY, UPDATE_SYNTAX, runUpdate<ROUTERRemoteConfigClient_sendCommandUpdate>},
    {{"dupdate"}, 3, ANY, UPDATE_SYNTAX, runUpdate<ROUTERRemoteConfigClient_sendCommandsDUE>},
    {{"unload"},
     2,
     2,
     "Command syntax: unload <target_router>",
     runRouterCommand<ROUTERRemoteConfigClient_sendCommandUnload>},
    {{"load"}, 4, ANY, "Command syntax: load <target_router> <cfg_name> <xml_url> [remote|local]", runLoad},
    {{"create"},
     3,
     ANY,
     "Command syntax: create <target_router> domain_route|session|topic_route|auto_route "
     "[<parent_entity_name>] "
     "<xml_url> [remote|local]",
     runCreate},
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
    const Line line{.shell = *self, .words = {words, static_cast<std::size_t>(wordCount)}, .result = result};
    const bool isCountRight =
        line.words.size() >= command->leastWords && line.words.size() <= command->mostWords;
    printOutcome(isCountRight ? command->run(line) : Outcome::SYNTAX_ERROR, *command, result);
    ROUTERRemoteConfigResult_finalize(&result);
}
