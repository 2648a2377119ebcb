// Lines into words, and names into what has to be typed for them.
#include "zulctl/prompt/words.h"

#include <gtest/gtest.h>

namespace zul::ctl::prompt {
namespace {

using End = Line::End;

TEST(Words, AWordThatAPosixShellWouldSplitOtherwise) {
    // clang-format off
    const struct { const char* line; std::vector<std::string> words; End end; } ROWS[] = {
        {"", {}, End::BETWEEN_WORDS},
        {" \t get  r1 ", {"get", "r1"}, End::BETWEEN_WORDS},
        {"a'b c'\"d e\"\\ f", {"ab cd e f"}, End::IN_WORD},
        {"'' \"\"", {"", ""}, End::IN_WORD},
        {R"('a\b"' "\"\\\$\`\n'" \n\')", {R"(a\b")", R"("\$`\n')", "n'"}, End::IN_WORD},
        {"a#b #c 'd", {"a#b"}, End::IN_COMMENT},
        {"$HOME *;|& ~", {"$HOME", "*;|&", "~"}, End::IN_WORD},
        {"a 'b", {"a", "b"}, End::IN_SINGLE_QUOTES},
        {"a \"b", {"a", "b"}, End::IN_DOUBLE_QUOTES},
        {"a\\", {"a"}, End::AFTER_BACKSLASH},
        {"\"a\\", {"a"}, End::AFTER_BACKSLASH},
    };
    // clang-format on
    for (const auto& row : ROWS) {
        const Line line = split(row.line);
        EXPECT_EQ(line.words, row.words) << row.line;
        EXPECT_EQ(line.end, row.end) << row.line;
    }
}

TEST(Words, ANameThatIsCompletedIntoAnother) {
    for (const char* quote : {"", "'", "\""}) {
        for (const std::string text :
             {"a b", "'", "\"", "\\", "\\\\n", "#1", "$x`y`", "a\tb;c|d&e*", "W\u00fcrk"}) {
            const std::string begun = std::string("get ") + quote + "x";
            const std::string typed = begun + escaped(text, split(begun).end) + quote;
            EXPECT_EQ(split(typed).words, (std::vector<std::string>{"get", "x" + text})) << typed;
        }
    }
}

} // namespace
} // namespace zul::ctl::prompt
