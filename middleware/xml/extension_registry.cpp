// A set of constant records by tag name, and the classes of the quality-of-service elements.
#include "middleware/xml/extension_registry.h"

namespace {

const char* tagNameOf(const void* extensionClass) {
    return static_cast<const ZULXMLExtensionClass*>(extensionClass)->tagName;
}

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
    self->classes.keyOf = tagNameOf;
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
    // The set hands items out as it got them; what comes out is const again.
    return ZULOrderedSet_insert(&self->classes, const_cast<ZULXMLExtensionClass*>(extensionClass)) ==
           ZUL_ORDERED_SET_OK;
}

const ZULXMLExtensionClass* ZULXMLExtensionRegistry_find(const ZULXMLExtensionRegistry* self,
                                                         const char* tagName) {
    return static_cast<const ZULXMLExtensionClass*>(ZULOrderedSet_find(&self->classes, tagName));
}

void ZULXMLExtensionRegistry_finalize(ZULXMLExtensionRegistry* self) {
    ZULOrderedSet_finalize(&self->classes);
}
