// What the shell does for each command, the table of the commands, and what is printed of an outcome.
#include "shell/dispatcher.h"

#include "middleware/base/semaphore.h"
#include "middleware/base/strings.h"
#include "middleware/base/terminal_text.h"
#include "product/product_info.h"
#include "product/vocabulary.h"
#include "remote_config/entity_commands.h"
#include "remote_config/exchange.h"
#include "remote_config/url_commands.h"
#include "shell/commands.h"
#include "shell/signals.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

// oddity 40
const char* const ROUTERShell_g_commandList[] = {"load",   "unload", "enable", "disable",  "update", "exit",
                                                 "quit",   "hello",  "help",   "history",  "clear",  "create",
                                                 "delete", "save",   "get",    "add_peer", ""};

namespace zul::shell {

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

// What an action leaves for the dispatcher to print.
enum class Outcome {
    NOTHING,
    SYNTAX_ERROR,
    ANSWERED,   // the result record holds the answer
    UNANSWERED, // nobody answered, or nothing was sent; `reportStatus` has printed the cause if it knows one
};

namespace {

Outcome answered(bool success) {
    return success ? Outcome::ANSWERED : Outcome::UNANSWERED;
}

Outcome endShell(const Line&) {
    ROUTERShell_g_terminate = 1;
    return Outcome::NOTHING;
}

Outcome doNothing(const Line&) {
    return Outcome::NOTHING;
}

Outcome sleep(const Line& line) {
    // Without a number of seconds: the time-out.
    const long seconds = line.words.size() > 1 ? std::strtol(line.words[1], nullptr, 10) : line.shell.timeout;
    ZULSleep(static_cast<std::int32_t>(std::clamp<long>(seconds, 0, INT32_MAX)), 0);
    return Outcome::NOTHING;
}

template <auto sender>
Outcome routerCommand(const Line& line) {
    return answered(sender(line.client(), line.words[1], &line.result));
}

template <auto sender>
Outcome entityCommand(const Line& line) {
    return answered(sender(line.client(), line.words[1], line.wordOrEmpty(2), &line.result));
}

Outcome addPeer(const Line& line) {
    const bool isFirst = ZULString_equalsIgnoreCase(line.words[3], "p1");
    if (!isFirst && !ZULString_equalsIgnoreCase(line.words[3], "p2")) {
        return Outcome::SYNTAX_ERROR;
    }
    return answered(ROUTERRemoteConfigClient_sendCommandAddPeer(line.client(), line.words[1], line.words[2],
                                                                isFirst, line.words[4], &line.result));
}

// The text is a router's words, or the user's.
void printLine(const char* head, const char* text) {
    std::fputs(head, stdout);
    ZULTerminal_print(stdout, text);
    std::printf("\n");
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
    const WholeOutput output;
    switch (status) {
    case ROUTER_URL_COMMAND_OK:
        return Outcome::ANSWERED;
    case ROUTER_URL_COMMAND_FILE_OPEN_ERROR:
        printLine("Can't open local file ", xmlUrl);
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

Outcome load(const Line& line) {
    bool isRemote = true;
    if (!readRemoteFlag(line, 4, isRemote)) {
        return Outcome::SYNTAX_ERROR;
    }
    return reportStatus(ROUTERRemoteConfigClient_sendCommandLoad(line.client(), line.words[1], line.words[2],
                                                                 line.words[3], isRemote, &line.result),
                        line.words[3]);
}

// oddity 3: the sender of a dupdate returns a success flag, not a status
template <auto sender>
Outcome updateWith(const Line& line) {
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

Outcome create(const Line& line) {
    const auto* kind = std::ranges::find_if(product::ENTITY_KINDS, [&line](const auto& known) {
        return known.isKeyword && ZULString_equalsIgnoreCase(known.tag, line.words[2]);
    });
    if (kind == std::end(product::ENTITY_KINDS)) {
        return Outcome::SYNTAX_ERROR;
    }
    const bool hasParent = kind->level != product::EntityLevel::DOMAIN_ROUTE;
    const std::size_t url = hasParent ? 4 : 3;
    bool isRemote = true;
    if (line.words.size() <= url || !readRemoteFlag(line, url + 1, isRemote)) {
        return Outcome::SYNTAX_ERROR;
    }
    // The kind itself is not passed on: what is created follows from the XML.
    return answered(ROUTERRemoteConfigClient_sendCommandCreate(
                        line.client(), line.words[1], hasParent ? line.words[3] : "", line.words[url],
                        isRemote, &line.result) == ROUTER_URL_COMMAND_OK);
}

Outcome announce(const Line& line) {
    ROUTERRemoteConfigClient_sendCommandAnnounce(line.client()); // its outcome is not printed
    return Outcome::NOTHING;
}

Outcome printHelp(const Line&) {
    ROUTERShell_printHelp();
    return Outcome::NOTHING;
}

constexpr const char* UPDATE_SYNTAX = "update <target_router> [<entity_name>] <xml_url> [remote|local]";

// clang-format off
constexpr Command TABLE[] = {
    {.names = {"exit", "quit", "q"}, .helpLine = 13, .help = "Exit the shell", .run = endShell},
    {.names = {"history"}, .run = doNothing},
    {.names = {"clear"}, .run = doNothing},
    {.names = {"sleep"}, .run = sleep},
    {.names = {"enable"}, .leastWords = 2, .helpLine = 3, .help = "Enable an entity",
     .syntax = "enable <target_router> [<entity_name>]",
     .run = entityCommand<ROUTERRemoteConfigClient_sendCommandEnable>},
    {.names = {"disable"}, .leastWords = 2, .helpLine = 4, .help = "Disable an entity",
     .syntax = "disable <target_router> [<entity_name>]",
     .run = entityCommand<ROUTERRemoteConfigClient_sendCommandDisable>},
    {.names = {"pause"}, .leastWords = 2, .helpLine = 5, .help = "Pause an entity",
     .syntax = "pause <target_router> [<entity_name>]",
     .run = entityCommand<ROUTERRemoteConfigClient_sendCommandPause>},
    {.names = {"resume"}, .leastWords = 2, .helpLine = 6, .help = "Resume an entity",
     .syntax = "resume <target_router> [<entity_name>]",
     .run = entityCommand<ROUTERRemoteConfigClient_sendCommandResume>},
    {.names = {"update"}, .leastWords = 3, .helpLine = 7, .help = "Update the configuration of an entity",
     .syntax = UPDATE_SYNTAX, .run = updateWith<ROUTERRemoteConfigClient_sendCommandUpdate>},
    {.names = {"dupdate"}, .leastWords = 3,
     .syntax = UPDATE_SYNTAX, .run = updateWith<ROUTERRemoteConfigClient_sendCommandsDUE>},
    {.names = {"unload"}, .leastWords = 2, .mostWords = 2, .helpLine = 2, .help = "Unload current %s configuration",
     .syntax = "unload <target_router>", .run = routerCommand<ROUTERRemoteConfigClient_sendCommandUnload>}, // oddity 39
    {.names = {"load"}, .leastWords = 4, .helpLine = 1, .help = "Load %s XML configuration",
     .syntax = "load <target_router> <cfg_name> <xml_url> [remote|local]", .run = load},
    {.names = {"create"}, .leastWords = 3, .helpLine = 8, .help = "Create an entity",
     .syntax = "create <target_router> domain_route|session|topic_route|auto_route [<parent_entity_name>] "
               "<xml_url> [remote|local]",
     .run = create},
    {.names = {"delete"}, .leastWords = 2, .helpLine = 9, .help = "Delete an entity",
     .syntax = "delete <target_router> [<entity_name>]",
     .run = entityCommand<ROUTERRemoteConfigClient_sendCommandDelete>},
    {.names = {"save"}, .leastWords = 2, .helpLine = 10, .help = "Save %s configuration to file",
     .syntax = "save <target_router>", .run = routerCommand<ROUTERRemoteConfigClient_sendCommandSave>},
    {.names = {"get"}, .leastWords = 2, .helpLine = 11, .help = "Get  %s configuration as a string", // oddity 16
     .syntax = "get <target_router>", .run = routerCommand<ROUTERRemoteConfigClient_sendCommandGet>},
    {.names = {"add_peer"}, .leastWords = 5, .helpLine = 12, .help = "Add discovery peer for domain participant",
     .syntax = "add_peer <target_router> <domain_route_name> p1|p2 <peer_list>", .run = addPeer},
    {.names = {"hello"}, .run = announce},
    {.names = {"help"}, .run = printHelp},
};
// clang-format on

const Command* findCommand(std::string_view word) {
    const auto found = std::ranges::find_if(COMMANDS, [word](const Command& command) {
        return std::ranges::any_of(command.names, [word](const char* name) {
            return name != nullptr && ZULString_equalsIgnoreCase(name, word);
        });
    });
    return found != COMMANDS.end() ? &*found : nullptr;
}

void printOutcome(Outcome outcome, const Command& command, const ROUTERRemoteConfigResult& result) {
    const WholeOutput output;
    switch (outcome) {
    case Outcome::NOTHING:
        break;
    case Outcome::SYNTAX_ERROR:
        std::printf("Command syntax: %s\n", command.syntax);
        break;
    case Outcome::ANSWERED: {
        const bool isOk = result.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
        printLine(isOk ? "Result: " : "Error: ", result.text != nullptr ? result.text : "(null)");
        break;
    }
    case Outcome::UNANSWERED:
        std::printf("No response received\n");
        break;
    }
}

} // namespace

const std::span<const Command> COMMANDS = TABLE;

} // namespace zul::shell

using namespace zul::shell;

void ROUTERShell_parseCommand(ROUTERShellInstance* self, char** words, int wordCount) {
    const Command* command = findCommand(words[0]);
    if (command == nullptr) {
        const WholeOutput output;
        printLine("Unknown command: ", words[0]);
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

void ROUTERShell_printHelp() {
    const WholeOutput output;
    const char* product = ROUTER_getProductInfo()->productName;
    std::printf("\n"
                "%s Shell, licensed under the Apache License, Version 2.0\n"
                "--------------------------------------------\n"
                "Commands:\n",
                product);
    const auto findLine = [](int line) {
        return std::ranges::find(COMMANDS, line, &Command::helpLine);
    };
    for (int line = 1; findLine(line) != COMMANDS.end(); ++line) {
        std::printf("%-8s - ", findLine(line)->names[0]);
        std::printf(findLine(line)->help, product);
        std::printf("\n");
    }
    std::printf("\n");
}
