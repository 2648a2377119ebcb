// Where UTF-8 may be cut is searched for backwards, over four bytes at most.
#include "plan/document/text.h"

#include <algorithm>

namespace zul::plan {

namespace {

constexpr std::size_t MAX_UTF8_LENGTH = 4; // bytes of one character
constexpr std::size_t MAX_LISTED = 16;     // words in one list of what was expected
constexpr std::size_t MAX_READ = 16;       // bytes read for each byte of a shortened text: a run may be long

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == 0x7F;
}

} // namespace

std::size_t wholeCharacters(std::string_view text, std::size_t length) {
    if (length >= text.size()) {
        return text.size();
    }
    for (std::size_t back = 0; back < MAX_UTF8_LENGTH && back <= length; ++back) {
        if (!isContinuation(text[length - back])) {
            return length - back;
        }
    }
    return length;
}

std::string shortened(std::string_view text, std::size_t most) {
    const std::string_view read = text.substr(0, wholeCharacters(text, MAX_READ * most));
    std::string result;
    for (std::size_t i = 0; i < read.size() && result.size() <= most; ++i) {
        if (!isBlank(read[i])) {
            result += read[i];
        } else if (result.empty() || result.back() != ' ') {
            result += ' ';
        }
    }
    if (result.size() > most || read.size() < text.size()) {
        result.resize(wholeCharacters(result, most));
        result += "...";
    }
    return result;
}

std::string quoted(std::string_view text) {
    return "\"" + shortened(text) + "\"";
}

std::string listed(const std::vector<std::string>& words) {
    std::vector<std::string> list;
    for (const std::string& word : words) {
        if (std::ranges::find(list, word) == list.end()) {
            list.push_back(word);
        }
    }
    std::string text;
    const std::size_t shown = std::min(list.size(), MAX_LISTED);
    for (std::size_t i = 0; i < shown; ++i) {
        text.append(i == 0 ? "" : i + 1 == list.size() ? " or " : ", ").append(list[i]);
    }
    return text + (shown < list.size() ? " and others" : "");
}

std::string lineInWords(int line) {
    return line != 0 ? "line " + std::to_string(line) + ": " : "";
}

} // namespace zul::plan
