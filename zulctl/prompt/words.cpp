// One state a character; the state at the end says what could follow.
#include "zulctl/prompt/words.h"

namespace zul::ctl::prompt {

namespace {

constexpr std::string_view BLANKS = " \t\r\n";
constexpr std::string_view ESCAPED_IN_QUOTES = "\"\\$`";
// More than has a meaning here: what is typed here works in a shell, too.
constexpr std::string_view SPECIAL = " \t'\"\\#$`&|;<>()*?[]{}~!";

} // namespace

Line split(std::string_view text) {
    Line line;
    using End = Line::End;
    End before = End::BETWEEN_WORDS; // what a backslash was in
    for (const char c : text) {
        switch (line.end) {
        case End::BETWEEN_WORDS:
            if (BLANKS.find(c) != std::string_view::npos) {
                break;
            }
            if (c == '#') {
                line.end = End::IN_COMMENT;
                break;
            }
            line.words.emplace_back();
            line.end = End::IN_WORD;
            [[fallthrough]];
        case End::IN_WORD:
            if (BLANKS.find(c) != std::string_view::npos) {
                line.end = End::BETWEEN_WORDS;
            } else if (c == '\'' || c == '"') {
                line.end = c == '"' ? End::IN_DOUBLE_QUOTES : End::IN_SINGLE_QUOTES;
            } else if (c == '\\') {
                before = End::IN_WORD;
                line.end = End::AFTER_BACKSLASH;
            } else {
                line.words.back() += c;
            }
            break;
        case End::IN_SINGLE_QUOTES:
            if (c == '\'') {
                line.end = End::IN_WORD;
            } else {
                line.words.back() += c;
            }
            break;
        case End::IN_DOUBLE_QUOTES:
            if (c == '"') {
                line.end = End::IN_WORD;
            } else if (c == '\\') {
                before = End::IN_DOUBLE_QUOTES;
                line.end = End::AFTER_BACKSLASH;
            } else {
                line.words.back() += c;
            }
            break;
        case End::AFTER_BACKSLASH:
            if (before == End::IN_DOUBLE_QUOTES && ESCAPED_IN_QUOTES.find(c) == std::string_view::npos) {
                line.words.back() += '\\';
            }
            line.words.back() += c;
            line.end = before;
            break;
        case End::IN_COMMENT:
            break;
        }
    }
    return line;
}

std::string escaped(std::string_view text, Line::End end) {
    std::string typed;
    for (const char c : text) {
        const std::string_view marked = end == Line::End::IN_DOUBLE_QUOTES ? ESCAPED_IN_QUOTES : SPECIAL;
        if (end == Line::End::IN_SINGLE_QUOTES) {
            typed += c == '\'' ? std::string("'\\''") : std::string(1, c);
            continue;
        }
        if (marked.find(c) != std::string_view::npos) {
            typed += '\\';
        }
        typed += c;
    }
    return typed;
}

} // namespace zul::ctl::prompt
