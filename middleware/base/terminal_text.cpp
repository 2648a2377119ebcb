// UTF-8 is checked by hand: the C library's functions depend on the locale, which is never set here.
#include "middleware/base/terminal_text.h"

#include <algorithm>
#include <cstdint>
#include <unistd.h>

namespace {

// The length of the one character that `text` begins with; 0 for a control character or what is not UTF-8.
std::size_t shownLength(std::string_view text) {
    const auto byte = [text](std::size_t i) {
        return static_cast<unsigned char>(text[i]);
    };
    const unsigned char first = byte(0);
    if (first < 0x80) {
        return (first >= ' ' && first != 0x7F) || first == '\n' || first == '\t' ? 1 : 0;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || length > text.size()) {
        return 0;
    }
    std::uint32_t code = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
        code = code << 6 | (byte(i) & 0x3FU);
    }
    constexpr std::uint32_t LEAST[] = {0, 0, 0xA0, 0x800, 0x10000}; // by length; 0x80 to 0x9F are C1
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < LEAST[length] || code > 0x10FFFF || isSurrogate ? 0 : length;
}

} // namespace

std::string_view ZULTerminal_takePiece(std::string_view& text, ZULTerminalEscape& escape) {
    std::size_t length = 0;
    std::size_t step = shownLength(text);
    while (step > 0) {
        length += step;
        step = length < text.size() ? shownLength(text.substr(length)) : 0;
    }
    std::string_view piece = text.substr(0, length);
    if (length == 0) {
        std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned char>(text[0]));
        piece = escape.data();
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
    return piece;
}

std::string ZULTerminal_shown(std::string_view text) {
    std::string shown;
    ZULTerminalEscape escape{};
    while (!text.empty()) {
        shown += ZULTerminal_takePiece(text, escape);
    }
    return shown;
}

void ZULTerminal_print(std::FILE* out, std::string_view text) {
    if (isatty(fileno(out)) == 0) {
        std::fwrite(text.data(), 1, text.size(), out);
        return;
    }
    ZULTerminalEscape escape{};
    while (!text.empty()) {
        const std::string_view piece = ZULTerminal_takePiece(text, escape);
        std::fwrite(piece.data(), 1, piece.size(), out);
    }
}
