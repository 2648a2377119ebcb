// Command line of the practice router.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zul::practice {

// Misbehaviour on demand, for trying out and testing clients.
struct Faults {
    std::int32_t delayMilliseconds = 0; // before each answer
    bool isSilent = false;              // requests are acted on but never answered
    std::int32_t parts = 1;             // every answer goes out in at least so many parts
    bool duplicates = false;            // each response goes out twice
    bool wrongInvocation = false;       // before each answer one to the request before it
    std::int32_t garbage = 0;           // undecodable samples before each answer
    bool hasOtherTypes = false;         // its topics have other types than those of clients
    bool isBestEffort = false;          // its endpoints are
    bool hasNoResponseWriter = false;   // requests are acted on, and nothing could answer them
};

struct Options : Faults {
    std::int32_t domain = 0;
    std::string name = "practice";
    std::int32_t count = 1; // of routers; several have numbers after the name
    bool isFederation = false;
    std::string saveDirectory = ".";
    std::string configurationFile; // empty: the builtin default configuration
    bool countsOnly = false;
    bool isVerbose = false;
    bool showsHelp = false;
    bool showsVersion = false;

    // `arguments` are those after the program's name. False, with a message that says what to do, when an
    // argument is unknown, lacks its value or has a bad one. A value follows its option as the next argument
    // or after "=".
    bool parse(std::span<const char* const> arguments, std::string& error);

    // One name for each router.
    std::vector<std::string> names() const;

    // The help text: usage and one line for each option.
    static std::string help();
};

} // namespace zul::practice
