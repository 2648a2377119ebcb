// Lines into words, as a POSIX shell splits them: '...' keeps everything, "..." all but \" \\ \$ \`, a
// backslash outside the character after it, # at the beginning of a word ends the line. Nothing is expanded.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zul::ctl::prompt {

struct Line {
    std::vector<std::string> words{};
    enum class End {
        BETWEEN_WORDS,
        IN_WORD,
        IN_SINGLE_QUOTES,
        IN_DOUBLE_QUOTES,
        AFTER_BACKSLASH,
        IN_COMMENT
    };
    End end = End::BETWEEN_WORDS;

    bool isWhole() const {
        return end == End::BETWEEN_WORDS || end == End::IN_WORD || end == End::IN_COMMENT;
    }
};

Line split(std::string_view line);

// What to type for `text` at the end of such a line, so that it becomes a part of the last word.
std::string escaped(std::string_view text, Line::End end);

} // namespace zul::ctl::prompt
