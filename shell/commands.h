// The commands of the shell, one row a command: what the dispatcher, the help and the check of the
// manual read.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace zul::shell {

struct Line;        // of input, under dispatch
enum class Outcome; // what is printed after an action

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
