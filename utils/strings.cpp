// A string counts as long as its text is, whatever room it has.
#include "utils/strings.h"

#include "product/log_masks.h"

bool ROUTERUtils_StringSeq_equals(const DDS_StringSeq* a, const DDS_StringSeq* b) {
    if (a == nullptr || b == nullptr) {
        return a == b;
    }
    const DDS_Long length = ZULSequence::get_length(a, __func__);
    if (length != ZULSequence::get_length(b, __func__)) {
        return false;
    }
    for (DDS_Long i = 0; i < length; ++i) {
        const char* left = ZULSequence::at(*a, i);
        const char* right = ZULSequence::at(*b, i);
        if (left != right && (left == nullptr || right == nullptr || std::strcmp(left, right) != 0)) {
            return false;
        }
    }
    return true;
}

char* ROUTERUtils_String_assertLength(char** string, std::size_t length) {
    if (*string != nullptr && std::strlen(*string) >= length) {
        return *string;
    }
    DDS_String_free(*string);
    *string = DDS_String_alloc(length);
    if (*string == nullptr) {
        ROUTERLog_error(ROUTER_SUBMODULE_UTILS, __func__, ZUL_LOG_OUT_OF_HEAP_STRING_d, length);
    }
    return *string;
}

char* ROUTERUtils_String_replace(char** string, const char* newText) {
    if (newText == nullptr) {
        DDS_String_free(*string);
        *string = nullptr;
        return nullptr;
    }
    // A text inside the string is never longer than it, so that the string then stays where it is.
    const std::size_t length = std::strlen(newText);
    if (ROUTERUtils_String_assertLength(string, length) == nullptr) {
        ROUTERLog_error(ROUTER_SUBMODULE_UTILS, __func__, ZUL_LOG_ANY_FAILURE_s, "reallocating string");
        return nullptr;
    }
    std::memmove(*string, newText, length + 1);
    return *string;
}
