#include "practice_router/answer_parts.h"

#include "admin_types/modules.h"

#include <algorithm>

namespace {

constexpr std::size_t MAX_UTF8_LENGTH = 4; // bytes of one character

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// At most `length` characters of the text, ending in front of a character that would be cut.
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

} // namespace

std::vector<std::string_view> PracticeAnswerParts_split(std::string_view text, std::size_t atLeast) {
    std::vector<std::string_view> parts;
    do {
        const std::size_t missing = atLeast > parts.size() ? atLeast - parts.size() : 1;
        const std::size_t share = std::min<std::size_t>(text.size() / missing, admin::XML_CONTENT_BOUND);
        const std::size_t length = wholeCharacters(text, share);
        parts.push_back(text.substr(0, length));
        text.remove_prefix(length);
    } while (!text.empty() || parts.size() < atLeast);
    return parts;
}
