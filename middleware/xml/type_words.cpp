// Integers are a magnitude and a sign, so that the limits of signed and unsigned 64-bit types compare.
#include "middleware/xml/type_words.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace zul::xml {

namespace {

constexpr std::uint64_t bits(int count) {
    return count == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

// A type code has no 8-bit integer kinds of its own: they are octets, like a byte.
constexpr TypeWord WORDS[] = {
    {"boolean", DDS_TK_BOOLEAN, 0, 1},
    {"byte", DDS_TK_OCTET, 0, bits(8)},
    {"int8", DDS_TK_OCTET, bits(7) + 1, bits(7)},
    {"uint8", DDS_TK_OCTET, 0, bits(8)},
    {"int16", DDS_TK_SHORT, bits(15) + 1, bits(15)},
    {"uint16", DDS_TK_USHORT, 0, bits(16)},
    {"int32", DDS_TK_LONG, bits(31) + 1, bits(31)},
    {"uint32", DDS_TK_ULONG, 0, bits(32)},
    {"int64", DDS_TK_LONGLONG, bits(63) + 1, bits(63)},
    {"uint64", DDS_TK_ULONGLONG, 0, bits(64)},
    {"float32", DDS_TK_FLOAT},
    {"float64", DDS_TK_DOUBLE},
    {"float128", DDS_TK_LONGDOUBLE},
    {"char8", DDS_TK_CHAR, 0, bits(8)},
    {"char16", DDS_TK_WCHAR, 0, bits(16)},
    {"string", DDS_TK_STRING},
    {"wstring", DDS_TK_WSTRING},
};

// The one character of a UTF-8 text of up to three bytes; the document reader has checked the encoding.
std::optional<Integer> parseCharacter(std::string_view text) {
    if (text.size() >= 3 && text.front() == '\'' && text.back() == '\'') {
        text = text.substr(1, text.size() - 2);
    }
    const auto byte = [text](std::size_t i) {
        return static_cast<unsigned char>(text[i]);
    };
    const std::size_t size = text.empty() ? 0 : byte(0) < 0x80 ? 1 : byte(0) < 0xE0 ? 2 : 3;
    if (size == 0 || text.size() != size) {
        return std::nullopt;
    }
    std::uint64_t code = size == 1 ? byte(0) : size == 2 ? byte(0) & 0x1Fu : byte(0) & 0x0Fu;
    for (std::size_t i = 1; i < size; ++i) {
        code = code << 6 | (byte(i) & 0x3Fu);
    }
    return Integer{false, code};
}

} // namespace

const TypeWord* findTypeWord(std::string_view word) {
    const auto* row = std::ranges::find(WORDS, word, &TypeWord::word);
    return row != std::end(WORDS) ? row : nullptr;
}

const TypeWord* discreteTypeWord(DDS_TCKind kind) {
    const auto isWanted = [kind](const TypeWord& row) {
        return row.kind == kind && row.isDiscrete();
    };
    const auto* row = std::ranges::find_if(WORDS, isWanted);
    return row != std::end(WORDS) ? row : nullptr;
}

std::optional<Integer> parseInteger(std::string_view text) {
    Integer value;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        value.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal) {
        text.remove_prefix(2);
    }
    const char* end = text.data() + text.size();
    const auto [stop, status] = std::from_chars(text.data(), end, value.magnitude, isHexadecimal ? 16 : 10);
    if (text.empty() || status != std::errc() || stop != end) {
        return std::nullopt;
    }
    value.negative = value.negative && value.magnitude != 0;
    return value;
}

std::optional<Integer> parseLiteral(const TypeWord& type, std::string_view text) {
    if (type.kind == DDS_TK_BOOLEAN) {
        return text == "true"    ? std::optional(Integer{false, 1})
               : text == "false" ? std::optional(Integer{false, 0})
                                 : std::nullopt;
    }
    const std::optional<Integer> value = type.isCharacter() ? parseCharacter(text) : parseInteger(text);
    return value && type.holds(*value) ? value : std::nullopt;
}

bool isOtherLiteral(const TypeWord& type, std::string_view text) {
    if (type.isString()) {
        return true;
    }
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    long double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, status] = std::from_chars(text.data(), end, number);
    return !text.empty() && status == std::errc() && stop == end && std::isfinite(number);
}

std::optional<std::int32_t> toInt32(const Integer& value) {
    if (value.magnitude > (value.negative ? bits(31) + 1 : bits(31))) {
        return std::nullopt;
    }
    const auto magnitude = static_cast<std::int64_t>(value.magnitude);
    return static_cast<std::int32_t>(value.negative ? -magnitude : magnitude);
}

} // namespace zul::xml
