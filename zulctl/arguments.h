// The command line of zulctl, as a record.
#pragma once

#include "fleet/fleet.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zul::ctl {

enum ExitStatus {
    EXIT_DONE = 0,
    EXIT_REFUSED = 1, // by a router, or diff or check found something
    EXIT_USAGE = 2,   // or a local file
    EXIT_NOT_FOUND = 3,
    EXIT_NO_ANSWER = 4, // or no such router
    EXIT_INTERRUPTED = 5,
    EXIT_CANNOT_JOIN = 6,
};

// Where the XML of a command comes from.
struct Source {
    std::optional<std::string> file{};       // read here
    std::optional<std::string> remoteFile{}; // read by the router
    std::optional<std::string> xml{};
    std::optional<std::string> assignment{};
};

struct CommandRow;

struct Arguments {
    const CommandRow* command = nullptr;
    std::int32_t domain = 0;
    fleet::Settings settings{};
    bool isJson = false;

    std::vector<std::string> routers{}; // names and patterns
    std::vector<std::string> words{};   // what follows them; of check the files
    Source source{};
    std::optional<std::string> output{};        // a file's name; {router} stands for a router's
    std::vector<std::int32_t> domains{};        // of --domains
    std::optional<std::string> configuration{}; // the one that runs
    std::optional<std::string> backup{};        // a file's name
    bool isDryRun = false;
    bool isYes = false;
    bool isDot = false;
};

// What a command takes. The words after ROUTERS are named in its syntax.
struct CommandRow {
    enum class Kind { LIST, WHY, REQUEST, DUPDATE, TREE, CHECK, DIFF, APPLY, RESTORE, SHELL };

    const char* name;
    const char* help;
    const char* words; // for the help, and for completion at the prompt
    Kind kind = Kind::REQUEST;
    fleet::CommandKind request{}; // of REQUEST
    std::size_t leastWords = 0;   // after ROUTERS
    std::size_t mostWords = 0;
    bool hasSource = false;
    bool hasAssignment = false; // the source may be --set
};

std::span<const CommandRow> commandRows();

// Either arguments, or the exit status of a program that is done, with what it had to say printed.
struct Parsed {
    std::optional<Arguments> arguments{};
    int status = EXIT_DONE;
};
// What `defaults` say of domain, product, times and JSON holds where the line says nothing.
Parsed parseArguments(int argc, const char* const* argv, const Arguments& defaults = {});

struct Option {
    std::string name{};  // "--domain", "-d"
    std::string value{}; // what it takes, in capitals; empty: nothing
};
// Those of the program and, if it is not null, the command.
std::vector<Option> optionsOf(const CommandRow* command);

} // namespace zul::ctl
