#include "middleware/base/version.h"

#include <cstdio>

ZULProductVersion ZULProductVersion_get() {
    return {.major = 5, .minor = 1, .release = 'a', .revision = 0};
}

void ZULProductVersion_toString(const ZULProductVersion& version, char* text) {
    const char release = static_cast<char>(
        version.release >= 0 && version.release < 10 ? '0' + version.release : version.release);
    const int length =
        std::snprintf(text, ZUL_PRODUCT_VERSION_TEXT_SIZE, "%d.%d.%c", version.major, version.minor, release);
    if (version.revision > 0) {
        std::snprintf(text + length, ZUL_PRODUCT_VERSION_TEXT_SIZE - static_cast<std::size_t>(length),
                      " rev %d", version.revision);
    }
}
