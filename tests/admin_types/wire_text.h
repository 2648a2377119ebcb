// The bytes of a value, written as text, most significant digit first, and assembled in either byte order:
//   0C          a byte              'r1'   characters
//   000C        a 16-bit word       ^      the value may be cut here and is still read
//   0000000C    a 32-bit word       [ ]    the same at every place from [ up to, but not at, ]
// Blanks and | separate. The encapsulation header is not part of the text.
#pragma once

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

struct WireBytes {
    std::vector<std::uint8_t> bytes;
    std::set<std::size_t> cuts; // lengths that are still read, the whole one among them
};

// With an encapsulation header for 0..3; without one, little-endian, for a negative identifier.
inline WireBytes assemble(const std::string& text, int encapsulationId) {
    WireBytes wire;
    if (encapsulationId >= 0) {
        wire.bytes = {0, static_cast<std::uint8_t>(encapsulationId), 0, 0};
    }
    const bool isBigEndian = encapsulationId >= 0 && encapsulationId % 2 == 0;
    bool isSpan = false;
    const auto put = [&wire, &isSpan](unsigned long byte) {
        if (isSpan) {
            wire.cuts.insert(wire.bytes.size());
        }
        wire.bytes.push_back(static_cast<std::uint8_t>(byte));
    };
    for (std::size_t i = 0, end = 0; i < text.size(); i = end) {
        end = i + 1;
        if (text[i] == '^') {
            wire.cuts.insert(wire.bytes.size());
        } else if (text[i] == '[' || text[i] == ']') {
            isSpan = text[i] == '[';
        } else if (text[i] == '\'') {
            end = text.find('\'', end) + 1;
            std::ranges::for_each(text.substr(i + 1, end - i - 2), put);
        } else if (text[i] != ' ' && text[i] != '|') {
            end = std::min(text.find_first_not_of("0123456789ABCDEF", i), text.size());
            const std::size_t size = (end - i) / 2;
            const unsigned long value = std::stoul(text.substr(i, end - i), nullptr, 16);
            for (std::size_t byte = 0; byte < size; ++byte) {
                put(value >> 8 * (isBigEndian ? size - 1 - byte : byte));
            }
        }
    }
    wire.cuts.insert(wire.bytes.size());
    return wire;
}
