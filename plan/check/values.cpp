// Texts to values; what is not one gives nothing, and whoever asked says what was expected.
#include "plan/check/values.h"

#include "plan/document/entity.h"
#include "plan/document/xml_nodes.h"

#include <algorithm>
#include <charconv>

namespace zul::plan {

namespace {

bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

} // namespace

std::optional<std::int64_t> parseInteger(std::string_view text) {
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const std::size_t prefix = isHexadecimal ? 2 : text.starts_with('+') ? 1 : 0;
    text.remove_prefix(prefix);
    if (prefix != 0 && text.starts_with('-')) {
        return std::nullopt;
    }
    std::int32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, status] = std::from_chars(text.data(), end, value, isHexadecimal ? 16 : 10);
    return status == std::errc{} && stop == end ? std::optional<std::int64_t>(value) : std::nullopt;
}

bool isName(std::string_view text) {
    return !text.empty() && text.size() <= MAX_ENTITY_NAME &&
           std::ranges::all_of(text, [](char c) { return isLetterOrDigit(c) || c == '_' || c == '-'; });
}

bool isBase64(std::string_view text) {
    std::size_t digits = 0;
    std::size_t padding = 0;
    for (const char c : text) {
        if (isLetterOrDigit(c) || c == '+' || c == '/') {
            ++digits;
            if (padding != 0) {
                return false;
            }
        } else if (c == '=') {
            ++padding;
        } else if (static_cast<unsigned char>(c) > ' ') {
            return false;
        }
    }
    return digits % 4 != 1 && padding <= 2;
}

std::optional<std::int64_t> parseDuration(const xmlNode* duration) {
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    for (const xmlNode* part : elementsIn(duration)) {
        const std::string text = textOf(part);
        const bool isSeconds = tagOf(part) == "sec";
        const bool isInfinite = text == (isSeconds ? "DURATION_INFINITE_SEC" : "DURATION_INFINITE_NSEC");
        const auto value = isInfinite ? std::optional(INTEGER_MAX) : parseInteger(text);
        if (!value || *value < 0) {
            return std::nullopt;
        }
        (isSeconds ? seconds : nanoseconds) = *value; // of repeated ones the last: their sum might overflow
    }
    return seconds == INTEGER_MAX ? INFINITE : seconds * NANOSECONDS + nanoseconds;
}

} // namespace zul::plan
