// A string is a block of the heap with its room in front of the text. The text's address is what callers see,
// so only what DDS_String_alloc has made may be asked for its room or freed.
#include "middleware/base/strings.h"

#include "middleware/base/heap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {
char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The room is in front of the text, in a head that keeps the text as aligned as the heap's memory is.
constexpr std::size_t HEAD_SIZE = alignof(std::max_align_t);
static_assert(HEAD_SIZE >= sizeof(std::size_t));
} // namespace

char* DDS_String_alloc(std::size_t length) {
    if (length >= SIZE_MAX - HEAD_SIZE) {
        return nullptr;
    }
    char* block = ZULHeap_allocate<char>(HEAD_SIZE + length + 1);
    if (block == nullptr) {
        return nullptr;
    }
    std::memcpy(block, &length, sizeof(length));
    return block + HEAD_SIZE;
}

std::size_t ZULString_room(const char* text) {
    std::size_t length = 0;
    if (text != nullptr) {
        std::memcpy(&length, text - HEAD_SIZE, sizeof(length));
    }
    return length;
}

char* DDS_String_dup(const char* text) {
    return text == nullptr ? nullptr : ZULString_join({text});
}

char* ZULString_join(std::initializer_list<std::string_view> texts) {
    std::size_t length = 0;
    for (const std::string_view text : texts) {
        length += text.size();
    }
    char* joined = DDS_String_alloc(length);
    char* place = joined;
    for (const std::string_view text : texts) {
        place += joined != nullptr ? text.copy(place, text.size()) : 0;
    }
    return joined;
}

void DDS_String_free(char* text) {
    ZULHeap_free(text != nullptr ? text - HEAD_SIZE : nullptr);
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
