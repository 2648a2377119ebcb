// The table of options; a value is stored by the kind of its option.
#include "practice_router/endpoints/options.h"

#include "middleware/dds/dds.h"
#include "plan/document/entity.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <variant>

namespace zul::practice {

using namespace plan;

namespace {

constexpr std::int32_t MAX_DELAY_MILLISECONDS = 3'600'000;
constexpr std::int32_t MAX_PARTS = 100'000;
constexpr std::int32_t MAX_GARBAGE = 1'000'000;
constexpr std::int32_t MAX_ROUTERS = 100;

struct Number {
    std::int32_t Options::*target;
    std::int32_t least;
    std::int32_t most;
};
struct Text {
    std::string Options::*target;
    std::size_t mostCharacters;
};
struct Flag {
    bool Options::*target;
};

struct Option {
    std::string_view name;
    std::string_view value; // what the help calls it; empty for a flag
    std::string_view help;
    std::variant<Number, Text, Flag> kind;
};

constexpr std::size_t MAX_PATH_LENGTH = 4095;

const Option OPTIONS[] = {
    {"--domain", "N", "DDS domain to join, 0 to 232 (default 0)",
     Number{&Options::domain, 0, DDS_DOMAIN_ID_MAX}},
    {"--name", "NAME", "name of this router, which requests are addressed to (default practice)",
     Text{&Options::name, MAX_ENTITY_NAME}},
    {"--count", "N", "be N routers, called NAME1 to NAMEN (default 1, called NAME)",
     Number{&Options::count, 1, MAX_ROUTERS}},
    {"--federation", "", "be a federation service instead of a routing service",
     Flag{&Options::isFederation}},
    {"--config", "FILE", "start with this document instead of the builtin default configuration",
     Text{&Options::configurationFile, MAX_PATH_LENGTH}},
    {"--save-dir", "DIR", "directory that save writes its file to (default: the current one)",
     Text{&Options::saveDirectory, MAX_PATH_LENGTH}},
    {"--count-only", "", "count the bytes of loads, updates and creates, and do nothing else with them",
     Flag{&Options::countsOnly}},
    {"--delay-ms", "N", "fault: wait N milliseconds before each answer",
     Number{&Faults::delayMilliseconds, 0, MAX_DELAY_MILLISECONDS}},
    {"--silent", "", "fault: act on requests but never answer", Flag{&Faults::isSilent}},
    {"--parts", "N", "fault: split every answer into N parts", Number{&Faults::parts, 1, MAX_PARTS}},
    {"--duplicate", "", "fault: send each response twice", Flag{&Faults::duplicates}},
    {"--wrong-invocation", "", "fault: send an answer to the request before it in front of each answer",
     Flag{&Faults::wrongInvocation}},
    {"--garbage", "N", "fault: send N undecodable samples in front of each answer",
     Number{&Faults::garbage, 0, MAX_GARBAGE}},
    {"--type-mismatch", "", "fault: have other types than those of clients, so that they are never matched",
     Flag{&Faults::hasOtherTypes}},
    {"--best-effort", "", "fault: offer less than the reliability that clients request",
     Flag{&Faults::isBestEffort}},
    {"--no-response-writer", "", "fault: hear requests and have nothing to answer with",
     Flag{&Faults::hasNoResponseWriter}},
    {"--verbose", "", "log the requests to other routers too", Flag{&Options::isVerbose}},
    {"--help", "", "show this text and end", Flag{&Options::showsHelp}},
    {"--version", "", "show the version and end", Flag{&Options::showsVersion}},
};

// Stores a value. Returns what it should have been; empty when it was good.
std::string store(Options& options, const Number& kind, std::string_view value) {
    std::int32_t number = 0;
    const auto [end, code] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (code != std::errc{} || end != value.data() + value.size() || number < kind.least ||
        number > kind.most) {
        return "an integer from " + std::to_string(kind.least) + " to " + std::to_string(kind.most);
    }
    options.*kind.target = number;
    return {};
}
std::string store(Options& options, const Text& kind, std::string_view value) {
    if (value.empty() || value.size() > kind.mostCharacters) {
        return "a text of 1 to " + std::to_string(kind.mostCharacters) + " characters";
    }
    options.*kind.target = value;
    return {};
}
std::string store(Options& options, const Flag& kind, std::string_view) {
    options.*kind.target = true;
    return {};
}

// Takes one option, with its value, off the front of the arguments. Returns what is wrong; empty when
// nothing is.
std::string parseOne(Options& options, std::span<const char* const>& arguments) {
    const std::string_view argument = arguments.front();
    arguments = arguments.subspan(1);
    const std::size_t equals = argument.find('=');
    const std::string name(argument.substr(0, equals));
    const auto* found = std::ranges::find(OPTIONS, name, &Option::name);
    if (found == std::end(OPTIONS)) {
        return "unknown option " + name + "; --help lists the options";
    }
    std::string value(equals != std::string_view::npos ? argument.substr(equals + 1) : "");
    if (found->value.empty() && equals != std::string_view::npos) {
        return name + " takes no value; leave out \"=" + value + "\"";
    }
    if (!found->value.empty() && equals == std::string_view::npos) {
        if (arguments.empty()) {
            return name + " needs a value: " + name + " " + std::string(found->value);
        }
        value = arguments.front();
        arguments = arguments.subspan(1);
    }
    const std::string wanted =
        std::visit([&](const auto& kind) { return store(options, kind, value); }, found->kind);
    return wanted.empty() ? "" : "\"" + value + "\" is no value for " + name + "; give " + wanted;
}

} // namespace

bool Options::parse(std::span<const char* const> arguments, std::string& error) {
    while (error.empty() && !arguments.empty()) {
        error = parseOne(*this, arguments);
    }
    return error.empty();
}

std::vector<std::string> Options::names() const {
    if (count == 1) {
        return {name};
    }
    std::vector<std::string> all;
    for (std::int32_t i = 1; i <= count; ++i) {
        all.push_back(name + std::to_string(i));
    }
    return all;
}

std::string Options::help() {
    constexpr std::size_t COLUMN = 24;
    std::string text = "Usage: zul-practice-router [options]\n"
                       "A router to try the administration shell on. It keeps a real configuration, acts on\n"
                       "requests, answers them, and logs one line for each; it routes no data. End it with\n"
                       "SIGINT (Ctrl-C) or SIGTERM.\n\n";
    for (const Option& each : OPTIONS) {
        std::string line = "  ";
        line.append(each.name).append(" ").append(each.value);
        line.resize(std::max(line.size() + 1, COLUMN), ' ');
        text.append(line).append(each.help).append("\n");
    }
    return text;
}

} // namespace zul::practice
