// The commands of the shell, one row a command: what the dispatcher, the help and the check of the manual
// read.
#pragma once

#include "remote_config/result.h"
#include "shell/instance.h"

#include <array>
#include <cstdint>
#include <span>

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
    UNANSWERED, // nobody answered, or the request was not sent; the cause, if any, is already printed
};

constexpr std::size_t ANY_NUMBER = SIZE_MAX;

struct Command {
    std::array<const char*, 3> names; // compared without regard to case; null where unused
    std::size_t leastWords = 1;       // the command counts
    std::size_t mostWords = ANY_NUMBER;
    int helpLine = 0;             // its place among the lines of the help; 0: the help leaves it out
    const char* help = nullptr;   // "%s" stands for the product's name
    const char* syntax = nullptr; // null where no words can be wrong
    Outcome (*run)(const Line&);
};

// In the order in which the dispatcher tries them.
extern const std::span<const Command> COMMANDS;

} // namespace zul::shell
