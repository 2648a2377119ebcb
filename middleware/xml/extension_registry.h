// Element classes: how objects of particular elements are made, by tag name. The reader and programs look
// them up in a registry. Classes are constant records that outlive the registry.
#pragma once

#include "middleware/xml/object.h"

struct ZULXMLExtensionClass {
    const char* tagName;
    // Makes an object of this class for `parent`, not yet added there, under the own name `name`. Null when
    // it cannot be made.
    ZULXMLObject* (*create)(const ZULXMLExtensionClass* self, ZULXMLObject* parent, const char* name,
                            std::span<const ZULXMLAttribute> attributes);
};

struct ZULXMLExtensionRegistry {
    ZULOrderedSet<const ZULXMLExtensionClass, &ZULXMLExtensionClass::tagName> classes;
};

// The create operation of a class without needs of its own: a plain object.
ZULXMLObject* ZULXMLExtensionClass_createPlain(const ZULXMLExtensionClass* self, ZULXMLObject* parent,
                                               const char* name, std::span<const ZULXMLAttribute> attributes);

// With the classes of the quality-of-service elements; false when memory is exhausted.
bool ZULXMLExtensionRegistry_initialize(ZULXMLExtensionRegistry* self);
// False when the tag name is taken or memory is exhausted.
bool ZULXMLExtensionRegistry_add(ZULXMLExtensionRegistry* self, const ZULXMLExtensionClass* extensionClass);
// The class of exactly that tag name, or null.
const ZULXMLExtensionClass* ZULXMLExtensionRegistry_find(const ZULXMLExtensionRegistry* self,
                                                         const char* tagName);
void ZULXMLExtensionRegistry_finalize(ZULXMLExtensionRegistry* self);
