// CLI11 knows options and commands; the words of a command are counted here, because --all takes the place of
// the first.
#include "zulctl/arguments.h"

#include "middleware/base/version.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <sstream>
#include <system_error>

namespace zul::ctl {

namespace {

constexpr std::size_t ANY = 10'000'000; // words; more than a command line holds
constexpr char MARK = '\x01';
constexpr double LONGEST_SECONDS = 1e6;

// clang-format off
constexpr CommandRow COMMANDS[] = {
    {.name = "list", .help = "show the routers that are there", .words = "", .kind = CommandRow::Kind::LIST},
    {.name = "why", .help = "say why a router does not answer", .words = "ROUTER", .kind = CommandRow::Kind::WHY},
    {.name = "enable", .help = "start an entity, or the router itself", .words = "ROUTERS [ENTITY]",
     .request = ZUL_ROUTING_SERVICE_COMMAND_ENABLE, .mostWords = 1},
    {.name = "disable", .help = "stop it", .words = "ROUTERS [ENTITY]",
     .request = ZUL_ROUTING_SERVICE_COMMAND_DISABLE, .mostWords = 1},
    {.name = "pause", .help = "hold back its data", .words = "ROUTERS [ENTITY]",
     .request = ZUL_ROUTING_SERVICE_COMMAND_PAUSE, .mostWords = 1},
    {.name = "resume", .help = "let its data flow again", .words = "ROUTERS [ENTITY]",
     .request = ZUL_ROUTING_SERVICE_COMMAND_RESUME, .mostWords = 1},
    {.name = "delete", .help = "delete an entity", .words = "ROUTERS ENTITY",
     .request = ZUL_ROUTING_SERVICE_COMMAND_DELETE, .leastWords = 1, .mostWords = 1},
    {.name = "get", .help = "print the router's configuration", .words = "ROUTERS",
     .request = ZUL_ROUTING_SERVICE_COMMAND_GET},
    {.name = "save", .help = "have the router save its configuration", .words = "ROUTERS",
     .request = ZUL_ROUTING_SERVICE_COMMAND_SAVE},
    {.name = "unload", .help = "unload the current configuration", .words = "ROUTERS",
     .request = ZUL_ROUTING_SERVICE_COMMAND_UNLOAD},
    {.name = "load", .help = "load a configuration by name from a document", .words = "ROUTERS CONFIGURATION SOURCE",
     .request = ZUL_ROUTING_SERVICE_COMMAND_LOAD, .leastWords = 1, .mostWords = 1, .hasSource = true},
    {.name = "update", .help = "change the configuration of an entity, or of the router itself", .words = "ROUTERS [ENTITY] SOURCE",
     .request = ZUL_ROUTING_SERVICE_COMMAND_UPDATE, .mostWords = 1, .hasSource = true, .hasAssignment = true},
    {.name = "create", .help = "create a domain_route, or a session, topic_route or auto_route in a PARENT",
     .words = "ROUTERS KIND [PARENT] SOURCE",
     .request = ZUL_ROUTING_SERVICE_COMMAND_CREATE, .leastWords = 1, .mostWords = 2, .hasSource = true},
    {.name = "add-peer", .help = "add discovery peers to a participant of a domain route", .words = "ROUTERS ROUTE p1|p2 PEER...",
     .request = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .leastWords = 3, .mostWords = ANY},
    {.name = "dupdate", .help = "disable, update and enable, and show each answer", .words = "ROUTERS [ENTITY] SOURCE",
     .kind = CommandRow::Kind::DUPDATE, .mostWords = 1, .hasSource = true, .hasAssignment = true},
    {.name = "tree", .help = "show the entities of the router's configuration and their state", .words = "ROUTERS",
     .kind = CommandRow::Kind::TREE},
    {.name = "check", .help = "say what is wrong with configuration documents, without any router", .words = "FILE...",
     .kind = CommandRow::Kind::CHECK, .leastWords = 1, .mostWords = ANY},
    {.name = "diff", .help = "say what differs between what runs and a file", .words = "ROUTER FILE",
     .kind = CommandRow::Kind::DIFF, .leastWords = 1, .mostWords = 1},
    {.name = "apply", .help = "bring a router to what a file says, with a plan, a question and a backup",
     .words = "ROUTER FILE [--dry-run] [--yes] [--backup FILE]",
     .kind = CommandRow::Kind::APPLY, .leastWords = 1, .mostWords = 1},
    {.name = "restore", .help = "bring a router back to a backup", .words = "ROUTER BACKUP [--dry-run] [--yes] [--backup FILE]",
     .kind = CommandRow::Kind::RESTORE, .leastWords = 1, .mostWords = 1},
    {.name = "shell", .help = "all of this at a prompt, with the options given as defaults", .words = "", .kind = CommandRow::Kind::SHELL},
};
// clang-format on

constexpr const char* FOOTER =
    "ROUTERS is a name, names with commas between, a pattern with * and ?, or --all.\n"
    "Exit status: 0 done; 1 a router refused, or diff or check found something; 2 usage, or a local file;\n"
    "3 no such entity; 4 no such router, or no answer; 5 interrupted; 6 the domain cannot be joined.";

constexpr bool isComparing(const CommandRow& row) {
    return row.kind == CommandRow::Kind::DIFF || row.kind == CommandRow::Kind::APPLY ||
           row.kind == CommandRow::Kind::RESTORE;
}

// The words of a command are shown as they are typed.
class HelpFormatter final : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* app, std::string /*name*/) const override {
        const auto* row =
            std::ranges::find(COMMANDS, app->get_name(), [](const auto& each) { return each.name; });
        return row == std::end(COMMANDS)
                   ? "Usage: zulctl [OPTIONS] COMMAND ...\n"
                   : std::string("Usage: zulctl [OPTIONS] ") + row->name + " " + row->words + "\n";
    }
};

struct UsageError {
    std::string message;
};

std::vector<std::string> split(const std::string& list) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0;;) {
        const std::size_t comma = list.find(',', begin);
        parts.push_back(list.substr(begin, comma - begin));
        if (comma == std::string::npos) {
            return parts;
        }
        begin = comma + 1;
    }
}

std::vector<std::int32_t> parseDomains(const std::string& range) {
    std::int32_t first = 0;
    std::int32_t last = -1; // stays when it is no number or does not fit
    const char* end = range.data() + range.size();
    const auto [dash, error] = std::from_chars(range.data(), end, first);
    const bool isRange = error == std::errc() && dash != end && *dash == '-' &&
                         std::from_chars(dash + 1, end, last).ptr == end;
    if (!isRange || first < 0 || last > DDS_DOMAIN_ID_MAX || first > last) {
        throw UsageError{"--domains takes a range such as 0-9, within 0-" +
                         std::to_string(DDS_DOMAIN_ID_MAX)};
    }
    std::vector<std::int32_t> domains;
    for (std::int32_t domain = first; domain <= last; ++domain) {
        domains.push_back(domain);
    }
    return domains;
}

// CLI11 takes "[a,b]" for a list, and "++" for the end of a command: such a word is marked, so that it goes
// through as it is.
bool needsMark(std::string_view word) {
    return word == "++" || word.starts_with(MARK) || (word.starts_with('[') && word.ends_with(']'));
}

// It also gives the words after "--" to nobody, and the next word to an option with nothing after its "=".
std::vector<std::string> marked(int argc, const char* const* argv) {
    std::vector<std::string> words;
    bool takesOptions = true;
    for (const std::string word : std::span(argv, static_cast<std::size_t>(argc)).subspan(argc > 0 ? 1 : 0)) {
        if (takesOptions && word == "--") {
            takesOptions = false;
        } else if (needsMark(word) || (!takesOptions && word.starts_with('-'))) {
            words.push_back(MARK + word);
        } else if (word.starts_with("--") && word.find('=') == word.size() - 1) {
            words.insert(words.end(), {word.substr(0, word.size() - 1), ""});
        } else {
            words.push_back(word);
        }
    }
    return words;
}

void unmark(std::string& word) {
    if (word.starts_with(MARK) && (needsMark(std::string_view(word).substr(1)) || word.substr(1, 1) == "-")) {
        word.erase(0, 1);
    }
}

// What CLI11 stores into, before it is looked at.
struct Raw {
    double timeout;
    double discovery;
    bool isFederation;
    bool isVersion = false;
    std::vector<std::string> words{};
    bool isAll = false;
    std::string domains{};
};

// CLI::Range lets pass what no comparison holds for.
std::string refuseNan(const std::string& seconds) {
    return std::isnan(std::strtod(seconds.c_str(), nullptr))
               ? "Value " + seconds + " not in range " + std::to_string(0.0) + " to " +
                     std::to_string(LONGEST_SECONDS)
               : "";
}

void addSource(CLI::App& app, const CommandRow& row, Source& source) {
    auto* group = app.add_option_group("SOURCE", "where the XML comes from");
    group->add_option("--file", source.file, "a file that is read here")->type_name("FILE");
    group->add_option("--remote-file", source.remoteFile, "a file that the router reads")->type_name("FILE");
    group->add_option("--xml", source.xml, "the XML itself")->type_name("TEXT");
    if (row.hasAssignment) {
        group->add_option("--set", source.assignment, "a dotted assignment, as in the shell")
            ->type_name("a.b.c=v");
    }
    group->require_option(1);
}

void addComparing(CLI::App& app, const CommandRow& row, Arguments& arguments) {
    app.add_option("--configuration", arguments.configuration,
                   "the one that runs, where the router's document holds several")
        ->type_name("NAME");
    if (row.kind != CommandRow::Kind::DIFF) {
        app.add_flag("--dry-run", arguments.isDryRun, "show the plan and send nothing");
        app.add_flag("-y,--yes", arguments.isYes, "do not ask");
        app.add_option("--backup", arguments.backup, "where to keep what ran (default ROUTER.backup.xml)")
            ->type_name("FILE");
    }
}

void unmark(Raw& raw, Arguments& arguments) {
    for (std::string& word : raw.words) {
        unmark(word);
    }
    Source& source = arguments.source;
    for (auto* value : {&source.file, &source.remoteFile, &source.xml, &source.assignment, &arguments.output,
                        &arguments.configuration, &arguments.backup}) {
        if (*value) {
            unmark(**value);
        }
    }
}

// Takes ROUTERS off the words and checks how many are left.
void assignWords(const Raw& raw, Arguments& arguments) {
    const CommandRow& row = *arguments.command;
    arguments.words = raw.words;
    if (raw.isAll) {
        arguments.routers = {"*"};
    } else if (std::string_view(row.words).starts_with("ROUTER")) {
        if (arguments.words.empty()) {
            throw UsageError{"whom? Name a router, or give --all"};
        }
        const bool isOne = row.kind == CommandRow::Kind::WHY || isComparing(row);
        arguments.routers = isOne ? std::vector{arguments.words.front()} : split(arguments.words.front());
        arguments.words.erase(arguments.words.begin());
    }
    if (arguments.words.size() < row.leastWords || arguments.words.size() > row.mostWords) {
        throw UsageError{std::string("usage: zulctl ") + row.name + " " + row.words};
    }
    if (std::ranges::any_of(arguments.routers, &std::string::empty)) {
        throw UsageError{"a router's name is empty"};
    }
    if (isComparing(row) && fleet::isPattern(arguments.routers.front())) {
        throw UsageError{std::string(row.name) + " is for one router; name it"};
    }
}

std::chrono::nanoseconds nanoseconds(double seconds) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
}

double seconds(fleet::Clock::duration span) {
    return std::chrono::duration<double>(span).count();
}

// The options and commands, and what they store into.
struct CommandLine {
    explicit CommandLine(const Arguments& defaults);
    void add(const CommandRow& row);

    Arguments arguments{};
    Raw raw;
    CLI::App app{"Administers routers on a DDS network.", "zulctl"};
};

CommandLine::CommandLine(const Arguments& defaults)
    : raw{.timeout = seconds(defaults.settings.timeout),
          .discovery = seconds(defaults.settings.discovery),
          .isFederation = defaults.settings.product == fleet::Product::FEDERATION} {
    arguments.domain = defaults.domain;
    arguments.isJson = defaults.isJson;
    app.footer(FOOTER);
    app.formatter(std::make_shared<HelpFormatter>());
    app.require_subcommand(0, 1);
    app.add_option("-d,--domain", arguments.domain, "DDS domain (default 0)")
        ->check(CLI::Range(0, DDS_DOMAIN_ID_MAX))
        ->type_name("N");
    app.add_option("-t,--timeout", raw.timeout,
                   "how long an answer, or its next part, is waited for (default 15)")
        ->check(CLI::Range(0.0, LONGEST_SECONDS))
        ->check(refuseNan)
        ->type_name("SECONDS");
    app.add_option("--discovery", raw.discovery, "how long routers are looked for, at most (default 3)")
        ->check(CLI::Range(0.0, LONGEST_SECONDS))
        ->check(refuseNan)
        ->type_name("SECONDS");
    app.add_flag("--federation", raw.isFederation, "federation services instead of routing services");
    app.add_flag("--json", arguments.isJson, "one JSON object a line");
    app.add_flag("--version", raw.isVersion, "show the version and end");
    for (const CommandRow& row : COMMANDS) {
        add(row);
    }
}

void CommandLine::add(const CommandRow& row) {
    CLI::App& command = *app.add_subcommand(row.name, row.help);
    command.fallthrough();
    command.callback([this, &row] { arguments.command = &row; });
    if (*row.words != '\0') {
        command.add_option("WORDS", raw.words)->group("")->expected(0, static_cast<int>(ANY));
    }
    if (std::string_view(row.words).starts_with("ROUTERS")) {
        command.add_flag("--all", raw.isAll, "all routers, in place of ROUTERS");
    }
    if (row.kind == CommandRow::Kind::LIST || row.kind == CommandRow::Kind::WHY) {
        command.add_option("--domains", raw.domains, "these domains besides")->type_name("A-B");
    }
    if (isComparing(row)) {
        addComparing(command, row, arguments);
    }
    if (row.kind == CommandRow::Kind::TREE) {
        command.add_flag("--dot", arguments.isDot, "one graph of all routers, for Graphviz");
    }
    if (row.request == ZUL_ROUTING_SERVICE_COMMAND_GET) {
        command.add_option("-o,--output", arguments.output, "write to FILE; {router} in it is replaced")
            ->type_name("FILE");
    }
    if (row.hasSource) {
        addSource(command, row, arguments.source);
    }
}

// After help or a version. A reader that has gone is no failure, nor is an interrupt.
Parsed printed() {
    if ((std::fflush(stdout) == 0 && std::ferror(stdout) == 0) || errno == EPIPE || errno == EINTR) {
        return {};
    }
    std::fprintf(stderr, "zulctl: cannot write: %s\n", std::generic_category().message(errno).c_str());
    return {.status = EXIT_USAGE};
}

} // namespace

std::span<const CommandRow> commandRows() {
    return COMMANDS;
}

std::vector<Option> optionsOf(const CommandRow* command) {
    CommandLine line({});
    std::vector<Option> options;
    const auto note = [&options](const CLI::App& app) {
        for (const CLI::Option* option : app.get_options()) {
            const std::string value = option->get_expected_min() > 0 ? option->get_type_name() : "";
            for (const std::string& name : option->get_lnames()) {
                options.push_back({"--" + name, value});
            }
            for (const std::string& name : option->get_snames()) {
                options.push_back({"-" + name, value});
            }
        }
    };
    note(line.app);
    if (command != nullptr) {
        const CLI::App* app = line.app.get_subcommand(command->name);
        note(*app);
        for (const CLI::App* group : app->get_subcommands({})) { // the options of SOURCE
            note(*group);
        }
    }
    return options;
}

Parsed parseArguments(int argc, const char* const* argv, const Arguments& defaults) {
    CommandLine line(defaults);
    auto& [arguments, raw, app] = line;
    try {
        std::vector<std::string> words = marked(argc, argv);
        std::ranges::reverse(words); // as it takes them
        app.parse(std::move(words));
        if (raw.isVersion) {
            const ZULProductVersion version = ZULProductVersion_get();
            std::printf("zulctl %d.%d%c\n", version.major, version.minor, version.release);
            return printed();
        }
        if (arguments.command == nullptr) {
            throw UsageError{"which command? --help lists them"};
        }
        if (!raw.domains.empty()) {
            arguments.domains = parseDomains(raw.domains);
        }
        unmark(raw, arguments);
        assignWords(raw, arguments);
    } catch (const CLI::Success& wanted) {
        std::ostringstream help; // std::cout would stay bad after an interrupt
        app.exit(wanted, help);
        std::fputs(help.str().c_str(), stdout);
        return printed();
    } catch (const CLI::Error& error) {
        const std::vector<std::string> left = app.remaining();
        const bool isUnknown =
            app.get_subcommands().empty() && !left.empty() && !left.front().starts_with('-');
        std::string message =
            isUnknown ? "there is no command " + left.front() + "; --help lists them" : error.what();
        std::erase(message, MARK);
        std::fprintf(stderr, "zulctl: %s\n", message.c_str());
        return {.status = EXIT_USAGE};
    } catch (const UsageError& error) {
        std::fprintf(stderr, "zulctl: %s\n", error.message.c_str());
        return {.status = EXIT_USAGE};
    }
    arguments.settings = {.product = raw.isFederation ? fleet::Product::FEDERATION : fleet::Product::ROUTING,
                          .timeout = nanoseconds(raw.timeout),
                          .discovery = nanoseconds(raw.discovery)};
    return {.arguments = std::move(arguments)};
}

} // namespace zul::ctl
