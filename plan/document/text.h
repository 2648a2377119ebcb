// Texts for people: what comes from outside, in one line and within bounds, and why something is refused.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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

// "a, b or c", without repetitions; of many words only the first.
std::string listed(const std::vector<std::string>& words);

// "line 7: "; nothing for line 0, which is none.
std::string lineInWords(int line);

// Why something is refused, in a line that says what to do about it. Thrown where the fault is found; the
// operation that it ends makes an answer or a message of it.
struct Refusal {
    std::string why;
    bool isMissing = false; // what was named is not there
    int line = 0;           // of the document that is refused; `why` begins with it
};

} // namespace zul::plan
