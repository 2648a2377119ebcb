// Values as configuration documents write them, already without the blanks around them.
#pragma once

#include <libxml/tree.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace zul::plan {

constexpr std::int64_t INTEGER_MAX = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t INTEGER_MIN = std::numeric_limits<std::int32_t>::min();

// Decimal with an optional sign, or hexadecimal after 0x, in 32 bits with a sign.
std::optional<std::int64_t> parseInteger(std::string_view text);

// A name that a document defines: letters, digits, "_" and "-", at most MAX_ENTITY_NAME.
bool isName(std::string_view text);
// Blanks inside and missing "=" at the end are accepted.
bool isBase64(std::string_view text);

// The length of time of an element with sec and nanosec, in nanoseconds; INFINITE where it says so. Nothing:
// one of them is not as it should be.
constexpr std::int64_t NANOSECONDS = 1'000'000'000; // in a second
constexpr std::int64_t INFINITE = std::numeric_limits<std::int64_t>::max();
std::optional<std::int64_t> parseDuration(const xmlNode* duration);

} // namespace zul::plan
