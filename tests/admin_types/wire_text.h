// The bytes of a value, written as text, most significant digit first, and assembled in either byte order:
//   0C          a byte              'r1'   characters
//   000C        a 16-bit word       ^      the value may be cut here and is still read
//   0000000C    a 32-bit word       [ ]    the same at every place from [ up to, but not at, ]
// Blanks and | separate. The encapsulation header is not part of the text.
#pragma once

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

struct WireBytes {
    std::vector<std::uint8_t> bytes;
    std::vector<bool> mayBeCut; // by length
};

// The wire text of a long string's characters.
inline std::string chars(std::size_t count) {
    return "'" + std::string(count, 'n') + "'";
}

inline unsigned hexDigit(char digit) {
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
}

inline void markCuts(WireBytes& wire, std::size_t first, std::size_t end) {
    wire.mayBeCut.resize(std::max(wire.mayBeCut.size(), end));
    std::fill(wire.mayBeCut.begin() + static_cast<std::ptrdiff_t>(first),
              wire.mayBeCut.begin() + static_cast<std::ptrdiff_t>(end), true);
}

// With an encapsulation header for 0..3; without one, little-endian, for a negative identifier.
inline WireBytes assemble(std::string_view text, int encapsulationId) {
    WireBytes wire;
    const bool bigEndian = encapsulationId >= 0 && encapsulationId % 2 == 0;
    if (encapsulationId >= 0) {
        wire.bytes = {0, static_cast<std::uint8_t>(encapsulationId), 0, 0};
    }
    std::size_t spanStart = 0;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t at = wire.bytes.size();
        switch (text[i]) {
        case ' ':
        case '|':
            ++i;
            continue;
        case '^':
            markCuts(wire, at, at + 1);
            ++i;
            continue;
        case '[':
            spanStart = at;
            ++i;
            continue;
        case ']':
            markCuts(wire, spanStart, at);
            ++i;
            continue;
        case '\'':
            for (++i; text[i] != '\''; ++i) {
                wire.bytes.push_back(static_cast<std::uint8_t>(text[i]));
            }
            ++i;
            continue;
        default:
            break;
        }
        const std::size_t digits = std::min(text.find_first_not_of("0123456789ABCDEF", i), text.size()) - i;
        for (std::size_t byte = 0; byte < digits / 2; ++byte) {
            const std::size_t from = i + 2 * (bigEndian ? byte : digits / 2 - 1 - byte);
            wire.bytes.push_back(
                static_cast<std::uint8_t>(hexDigit(text[from]) << 4 | hexDigit(text[from + 1])));
        }
        if (digits != 2 && digits != 4 && digits != 8) {
            ADD_FAILURE() << "no byte or word: " << text.substr(i);
            break;
        }
        i += digits;
    }
    markCuts(wire, wire.bytes.size(), wire.bytes.size() + 1);
    return wire;
}
