// A set of constant records by tag name, and the classes of the quality-of-service elements.
#include "middleware/xml/extension_registry.h"

#include <algorithm>

namespace {

constexpr ZULXMLExtensionClass BUILTIN_CLASSES[] = {
    {"participant_qos", ZULXMLExtensionClass_createPlain},
    {"topic_qos", ZULXMLExtensionClass_createPlain},
    {"publisher_qos", ZULXMLExtensionClass_createPlain},
    {"subscriber_qos", ZULXMLExtensionClass_createPlain},
    {"datawriter_qos", ZULXMLExtensionClass_createPlain},
    {"datareader_qos", ZULXMLExtensionClass_createPlain},
};

} // namespace

ZULXMLObject* ZULXMLExtensionClass_createPlain(const ZULXMLExtensionClass* self, ZULXMLObject* parent,
                                               const char* name,
                                               std::span<const ZULXMLAttribute> attributes) {
    return ZULXMLObject_new(self->tagName, name, parent, attributes);
}

bool ZULXMLExtensionRegistry_initialize(ZULXMLExtensionRegistry* self) {
    *self = {};
    return std::ranges::all_of(BUILTIN_CLASSES, [self](const ZULXMLExtensionClass& extensionClass) {
        return ZULXMLExtensionRegistry_add(self, &extensionClass);
    });
}

bool ZULXMLExtensionRegistry_add(ZULXMLExtensionRegistry* self, const ZULXMLExtensionClass* extensionClass) {
    try {
        return self->classes.insert(extensionClass).second;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

const ZULXMLExtensionClass* ZULXMLExtensionRegistry_find(const ZULXMLExtensionRegistry* self,
                                                         const char* tagName) {
    const auto found = self->classes.find(tagName);
    return found != self->classes.end() ? *found : nullptr;
}

void ZULXMLExtensionRegistry_finalize(ZULXMLExtensionRegistry* self) {
    self->classes.clear();
}
