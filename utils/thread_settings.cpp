// The text is copied into a buffer of fixed size and cut at each "|" there.
#include "utils/thread_settings.h"

#include "middleware/base/strings.h"
#include "middleware/xml/text.h"
#include "product/log_masks.h"

#include <cstring>
#include <optional>

namespace {

// clang-format off
struct Keyword {
    std::string_view spellings[3];
    std::uint32_t bits;
};
constexpr Keyword KEYWORDS[] = {
    {{"MASK_DEFAULT", "DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT", "THREAD_SETTINGS_KIND_MASK_DEFAULT"},
     DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT},
    {{"FLOATING_POINT", "DDS_THREAD_SETTINGS_FLOATING_POINT", "THREAD_SETTINGS_FLOATING_POINT"},
     DDS_THREAD_SETTINGS_FLOATING_POINT},
    {{"STDIO", "DDS_THREAD_SETTINGS_STDIO", "THREAD_SETTINGS_STDIO"},
     DDS_THREAD_SETTINGS_STDIO},
    {{"REALTIME_PRIORITY", "DDS_THREAD_SETTINGS_REALTIME_PRIORITY", "THREAD_SETTINGS_REALTIME_PRIORITY"},
     DDS_THREAD_SETTINGS_REALTIME_PRIORITY},
    {{"PRIORITY_ENFORCE", "DDS_THREAD_SETTINGS_PRIORITY_ENFORCE", "THREAD_SETTINGS_PRIORITY_ENFORCE"},
     DDS_THREAD_SETTINGS_PRIORITY_ENFORCE},
};
// clang-format on

std::optional<std::uint32_t> bitsOf(std::string_view word) {
    for (const Keyword& keyword : KEYWORDS) {
        for (const std::string_view spelling : keyword.spellings) {
            if (ZULString_equalsIgnoreCase(word, spelling)) {
                return keyword.bits;
            }
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
