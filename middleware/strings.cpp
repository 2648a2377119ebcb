#include "middleware/strings.h"

#include "middleware/heap.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {
char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
} // namespace

char* DDS_String_alloc(std::size_t length) {
    return length == SIZE_MAX ? nullptr : ZULHeap_allocate<char>(length + 1);
}

char* DDS_String_dup(const char* text) {
    if (text == nullptr) {
        return nullptr;
    }
    const std::size_t length = std::strlen(text);
    char* copy = DDS_String_alloc(length);
    if (copy != nullptr) {
        std::memcpy(copy, text, length + 1);
    }
    return copy;
}

void DDS_String_free(char* text) {
    ZULHeap_free(text);
}

bool ZULString_equalsIgnoreCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

void ZULString_copyBounded(char* buffer, std::size_t size, std::string_view text) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::copy_n(text.begin(), length, buffer);
    buffer[length] = '\0';
}

char* ZULString_tokenize(char* text, const char* delimiters, char** context) {
    return strtok_r(text, delimiters, context);
}
