// Texts for people: what comes from outside is shown in one line and within bounds; why something is refused.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zul::plan {

constexpr std::size_t MAX_SHOWN = 80;     // bytes of a name or value inside a message
constexpr std::size_t MAX_FAILURE = 1024; // bytes of a line that says why something failed

// How many of the first `length` bytes to keep so that no UTF-8 character is cut. All of them in text
// that is not UTF-8.
std::size_t wholeCharacters(std::string_view text, std::size_t length);

// The beginning of a text, at most `most` bytes and then "...". Control characters and runs of blanks become
// one blank.
std::string shortened(std::string_view text, std::size_t most = MAX_SHOWN);
// The same in double quotes.
std::string quoted(std::string_view text);

// Why something is refused, in a line that says what to do about it. Thrown where that is found; the
// operation of the configuration or router that it ends makes an answer of it.
struct Refusal {
    std::string why;
    bool isMissing = false; // what was named is not there
};

} // namespace zul::plan
