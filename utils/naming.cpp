// A qualified name is cut by counting colons: a part begins after one pair and ends before the next.
#include "utils/naming.h"

#include "product/log_masks.h"

#include <cstring>
#include <string_view>

static constexpr int COMPONENT_START = 4; // colons before the component text
static constexpr std::string_view SCOPE = "::";

char* ROUTERUtils_makeNameI(const char* serviceName, const char* qualifiedEntityName, int level) {
    if (serviceName == nullptr || qualifiedEntityName == nullptr || *qualifiedEntityName == '\0') {
        return nullptr;
    }
    const int lastColon = 2 * level + 3;
    const char* start = nullptr;
    // oddity 28: the first character counts as a colon, whatever it is.
    int colons = 1;
    const char* end = qualifiedEntityName + 1;
    for (; *end != '\0'; ++end) {
        colons += *end == ':' ? 1 : 0;
        if (colons == lastColon) {
            break;
        }
        if (start == nullptr && colons == COMPONENT_START) {
            start = end + 1;
        }
    }
    if (start == nullptr || *end == '\0') {
        return nullptr;
    }
    const std::string_view component(start, static_cast<std::size_t>(end - start));
    char* name = ZULString_join({SCOPE, serviceName, SCOPE, component});
    if (name == nullptr) {
        ROUTERLog_error(ROUTER_SUBMODULE_UTILS, __func__, ZUL_LOG_OUT_OF_HEAP_STRING_d,
                        2 * SCOPE.size() + std::strlen(serviceName) + component.size());
    }
    return name;
}

char* ROUTERUtils_makeDomainRouteName(const char* serviceName, const char* qualifiedEntityName) {
    return ROUTERUtils_makeNameI(serviceName, qualifiedEntityName, 1);
}

char* ROUTERUtils_makeSessionName(const char* serviceName, const char* qualifiedEntityName) {
    return ROUTERUtils_makeNameI(serviceName, qualifiedEntityName, 2);
}

const char* ROUTERUtils_removeScopeChars(const char* name) {
    const bool isScoped = name != nullptr && std::string_view(name).starts_with(SCOPE);
    return isScoped ? name + SCOPE.size() : name;
}
