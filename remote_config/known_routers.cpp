#include "remote_config/known_routers.h"

#include "middleware/base/strings.h"

#include <string_view>

DDS_Long ROUTERRemoteConfigClient_addKnownRouter(ROUTERRemoteConfigClient* self, const char* name) {
    char*& slot = self->knownRouters[self->knownRouterIndex];
    char* copy = DDS_String_dup(name);
    DDS_String_free(slot);
    slot = copy;
    self->knownRouterIndex = (self->knownRouterIndex + 1) % ROUTER_KNOWN_ROUTERS_MAX;
    return self->knownRouterIndex;
}

const char* ROUTERRemoteConfigClient_matchKnownRouter(const ROUTERRemoteConfigClient* self, const char* text,
                                                      DDS_Long* index) {
    while (const char* name = self->knownRouters[*index]) {
        ++*index;
        if (std::string_view(name).starts_with(text)) {
            return name;
        }
    }
    return nullptr;
}
