// Strings of the platform: NUL-terminated 8-bit text on the platform's heap, and the string helpers that the
// shell relies on. Lengths are in characters and never count the terminator. A string remembers the room that
// it was allocated with, so that whoever writes into it need not guess.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string_view>

// Allocates room for `length` characters plus terminator, empty. Null when memory is exhausted.
char* DDS_String_alloc(std::size_t length);
// Duplicates `text`; null for null or when memory is exhausted. The caller owns the result.
char* DDS_String_dup(const char* text);
// The texts one after the other, as one string; null when memory is exhausted. The caller owns the result.
char* ZULString_join(std::initializer_list<std::string_view> texts);
void DDS_String_free(char* text); // null is ignored
// The length that a string from one of these operations has room for; 0 for null.
std::size_t ZULString_room(const char* text);

struct ZULStringDeleter {
    void operator()(char* text) const { DDS_String_free(text); }
};
using ZULStringPtr = std::unique_ptr<char, ZULStringDeleter>;

// Compares without regard to case (ASCII letters only, whatever the locale).
bool ZULString_equalsIgnoreCase(std::string_view left, std::string_view right);

// Copies `text` into `buffer` of `size` bytes (terminator included), cut to what fits. `size` is at least 1.
void ZULString_copyBounded(char* buffer, std::size_t size, std::string_view text);
