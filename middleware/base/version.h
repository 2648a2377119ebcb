// Product version of the platform: query and text form.
#pragma once

#include <cstddef>
#include <cstdint>

// `release` of the platform's own version is a printable character; others may use a number below 10.
struct ZULProductVersion {
    std::int8_t major;
    std::int8_t minor;
    std::int8_t release;
    std::int8_t revision;
};

ZULProductVersion ZULProductVersion_get();

constexpr std::size_t ZUL_PRODUCT_VERSION_TEXT_SIZE = 32; // bytes, terminator included

// Renders "major.minor.release", followed by " rev revision" when the revision is above 0. `release` is taken
// as a number below 10 and as a character otherwise. `text` holds ZUL_PRODUCT_VERSION_TEXT_SIZE bytes.
void ZULProductVersion_toString(const ZULProductVersion& version, char* text);
