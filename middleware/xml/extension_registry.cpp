// A set of constant records by tag name, and the classes of the quality-of-service elements.
#include "middleware/xml/extension_registry.h"

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

void ZULXMLExtensionRegistry_initialize(ZULXMLExtensionRegistry* self) {
    *self = {};
}

bool ZULXMLExtensionRegistry_addBuiltin(ZULXMLExtensionRegistry* self) {
    for (const ZULXMLExtensionClass& extensionClass : BUILTIN_CLASSES) {
        if (!ZULXMLExtensionRegistry_add(self, &extensionClass)) {
            return false;
        }
    }
    return true;
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
