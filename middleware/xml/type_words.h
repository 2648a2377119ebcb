// Words and literals of a types section: the names of the basic types, and values written in a document.
#pragma once

#include "middleware/idl/type_code.h"

#include <optional>
#include <string_view>

namespace zul::xml {

// An integer of up to 64 bits with its sign.
struct Integer {
    bool negative = false;
    std::uint64_t magnitude = 0;
    bool operator==(const Integer&) const = default;
};

// A basic type: its word and, if it is discrete, the range of its values.
struct TypeWord {
    std::string_view word;
    DDS_TCKind kind;
    std::uint64_t below = 0; // greatest magnitude of a negative value
    std::uint64_t above = 0; // greatest value; 0 when the type is not discrete
    bool isDiscrete() const { return above != 0; }
    bool isCharacter() const { return kind == DDS_TK_CHAR || kind == DDS_TK_WCHAR; }
    bool isString() const { return kind == DDS_TK_STRING || kind == DDS_TK_WSTRING; }
    bool holds(const Integer& value) const { return value.magnitude <= (value.negative ? below : above); }
};

// Null for any other word, "nonBasic" included.
const TypeWord* findTypeWord(std::string_view word);
// The word of a discrete kind; null for another kind.
const TypeWord* discreteTypeWord(DDS_TCKind kind);

// Decimal, or hexadecimal after 0x, with an optional sign in front.
std::optional<Integer> parseInteger(std::string_view text);
// A literal of a discrete type, in its range: true, false, one character (bare or quoted), or an integer.
std::optional<Integer> parseLiteral(const TypeWord& type, std::string_view text);
// Whether the text is a literal of a type that is not discrete.
bool isOtherLiteral(const TypeWord& type, std::string_view text);

// The value in 32 bits; none when it needs more.
std::optional<std::int32_t> toInt32(const Integer& value);

} // namespace zul::xml
