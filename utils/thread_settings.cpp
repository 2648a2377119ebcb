// The text is copied into a buffer of fixed size and cut at each "|" there. A keyword's three spellings
// differ only in what comes before it.
#include "utils/thread_settings.h"

#include "middleware/base/strings.h"
#include "middleware/xml/text.h"
#include "product/log_masks.h"

#include <cstring>
#include <optional>

namespace {

// The bare spelling of a keyword; the full ones have "THREAD_SETTINGS_" and the infix before it.
struct Keyword {
    std::string_view bare;
    std::string_view infix;
    std::uint32_t bits;
};
constexpr Keyword KEYWORDS[] = {
    {"MASK_DEFAULT", "KIND_", DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT},
    {"FLOATING_POINT", "", DDS_THREAD_SETTINGS_FLOATING_POINT},
    {"STDIO", "", DDS_THREAD_SETTINGS_STDIO},
    {"REALTIME_PRIORITY", "", DDS_THREAD_SETTINGS_REALTIME_PRIORITY},
    {"PRIORITY_ENFORCE", "", DDS_THREAD_SETTINGS_PRIORITY_ENFORCE},
};
constexpr std::string_view FULL_PREFIXES[] = {"DDS_THREAD_SETTINGS_", "THREAD_SETTINGS_"};

bool isSpellingOf(const Keyword& keyword, std::string_view word) {
    if (ZULString_equalsIgnoreCase(word, keyword.bare)) {
        return true;
    }
    for (const std::string_view prefix : FULL_PREFIXES) {
        const std::size_t start = prefix.size() + keyword.infix.size();
        if (word.size() == start + keyword.bare.size() &&
            ZULString_equalsIgnoreCase(word.substr(0, prefix.size()), prefix) &&
            ZULString_equalsIgnoreCase(word.substr(prefix.size(), keyword.infix.size()), keyword.infix) &&
            ZULString_equalsIgnoreCase(word.substr(start), keyword.bare)) {
            return true;
        }
    }
    return false;
}

std::optional<std::uint32_t> bitsOf(std::string_view word) {
    for (const Keyword& keyword : KEYWORDS) {
        if (isSpellingOf(keyword, word)) {
            return keyword.bits;
        }
    }
    return std::nullopt;
}

} // namespace

char* ROUTERUtils_separateFirstElementFromMask(char* text) {
    char* bar = std::strchr(text, '|');
    if (bar == nullptr) {
        return nullptr;
    }
    *bar = '\0';
    return bar + 1;
}

std::uint32_t ROUTERUtils_getThreadSettingsKindMaskElement(std::int32_t line, const char* text, bool* error) {
    *error = true;
    if (text == nullptr) {
        ROUTERLog_error(ROUTER_SUBMODULE_UTILS, __func__, ZUL_LOG_XML_INTERNAL_FAILURE_s, "trim string");
        return 0;
    }
    const std::string_view words = zul::xml::trimmed(text);
    if (words.size() > ROUTER_THREAD_SETTINGS_TEXT_MAX) {
        static_assert(ROUTER_THREAD_SETTINGS_TEXT_MAX == 1023);
        ROUTERLog_error(ROUTER_SUBMODULE_UTILS, __func__, ZUL_LOG_XML_PARSE_FAILURE_ds, line,
                        "a thread-settings mask has at most 1023 characters; name each keyword once");
        return 0;
    }
    char buffer[ROUTER_THREAD_SETTINGS_TEXT_MAX + 1];
    ZULString_copyBounded(buffer, sizeof(buffer), words);
    std::uint32_t mask = 0;
    for (char* element = *buffer != '\0' ? buffer : nullptr; element != nullptr;) {
        char* rest = ROUTERUtils_separateFirstElementFromMask(element);
        const std::optional<std::uint32_t> bits = bitsOf(zul::xml::trimmed(element));
        if (!bits) {
            ROUTERLog_error(ROUTER_SUBMODULE_UTILS, __func__, ZUL_LOG_XML_ILLEGAL_VALUE_d, line);
            return 0;
        }
        mask |= *bits;
        element = rest;
    }
    *error = false;
    return mask;
}
