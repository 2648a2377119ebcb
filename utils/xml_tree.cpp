// Checks and their reports; the changes themselves are operations of the object.
#include "utils/xml_tree.h"

#include "middleware/base/strings.h"
#include "product/log_masks.h"

#include <cstdio>

std::atomic<std::int32_t> ROUTERUtils_g_uniqueNameSuffix{0};

namespace {

// oddity 30
constexpr const char* ADD_CONTEXT = "ZULXMLObject_addChild";

bool refuse(const char* context, const ZULLogTemplate& message, const char* argument) {
    ROUTERLog_error(ROUTER_SUBMODULE_UTILS, context, message, argument);
    return false;
}

// Whether `object` is `ancestor` or anywhere below it.
bool isWithin(const ZULXMLObject* object, const ZULXMLObject* ancestor) {
    while (object != nullptr && object != ancestor) {
        object = object->parent;
    }
    return object != nullptr;
}

// Whether there is no child of that name yet: `namesake` is null. Otherwise that is reported.
bool isFree(const ZULXMLObject* namesake) {
    if (namesake != nullptr && ROUTERLog_isEnabled(ZUL_LOG_LEVEL_ERROR, ROUTER_SUBMODULE_UTILS)) {
        ZULLog_debug("%s: XML object with name '%s' already exists\n", ADD_CONTEXT, namesake->fullName);
    }
    return namesake == nullptr;
}

} // namespace

bool ROUTERUtils_addChildXMLObject(ZULXMLObject* parent, ZULXMLObject* child) {
    const auto namesake = parent->childSet.find(child->fullName);
    if (!isFree(namesake != parent->childSet.end() ? *namesake : nullptr)) {
        return false;
    }
    // A child in another list would have two parents, one above the parent would close a cycle.
    const bool fits = child->list == nullptr && !isWithin(parent, child);
    return (fits && ZULXMLObject_insertChild(parent, child) == ZUL_XML_INSERTED) ||
           refuse(ADD_CONTEXT, ZUL_LOG_ADD_FAILURE_s, "XML object");
}

bool ROUTERUtils_removeChildXmlObject(ZULXMLObject* parent, ZULXMLObject* child) {
    if (!ZULXMLObject_isChild(parent, child)) {
        return refuse(__func__, ZUL_LOG_REMOVE_FAILURE_s, "XML object");
    }
    ZULXMLObject_extractChild(parent, child);
    return true;
}

// All that can fail comes before the first change, so there is nothing to take back.
bool ROUTERUtils_moveChildXmlObject(ZULXMLObject* child, ZULXMLObject* from, ZULXMLObject* to) {
    if (!ZULXMLObject_isChild(from, child)) {
        refuse("ROUTERUtils_removeChildXmlObject", ZUL_LOG_REMOVE_FAILURE_s, "XML object");
        return refuse(__func__, ZUL_LOG_ANY_FAILURE_s, "removeChildXmlObject");
    }
    const bool fits = !isWithin(to, child) && (from == to || isFree(ZULXMLObject_findChild(to, child->name)));
    return (fits && ZULXMLObject_move(child, from, to)) ||
           refuse(__func__, ZUL_LOG_ANY_FAILURE_s, "addChildXmlObject");
}

bool ROUTERUtils_deleteXMLObject(ZULXMLParser* parser, ZULXMLObject* object) {
    if (object->parent == nullptr) {
        return refuse(__func__, ZUL_LOG_GET_FAILURE_s, "parent XML object");
    }
    if (!ROUTERUtils_removeChildXmlObject(object->parent, object)) {
        return refuse(__func__, ZUL_LOG_REMOVE_FAILURE_s, "child xml object");
    }
    ZULXMLParser_freeSubtree(parser, object);
    return true;
}

ZULXMLObject* ROUTERUtils_createChildQosObject(const ZULXMLExtensionRegistry* registry, ZULXMLObject* parent,
                                               const char* tagName) {
    const ZULXMLExtensionClass* extensionClass = ROUTERUtils_findExtensionClass(registry, tagName);
    if (extensionClass == nullptr) {
        refuse(__func__, ZUL_LOG_ANY_FAILURE_s, "find builtin extension class");
        return nullptr;
    }
    char number[16];
    std::snprintf(number, sizeof(number), "%d", ROUTERUtils_g_uniqueNameSuffix.fetch_add(1));
    const ZULStringPtr name(ZULString_join({"default_", tagName, "_", number}));
    const ZULXMLAttribute attribute{"name", name.get()};
    ZULXMLObject* child = name != nullptr
                              ? extensionClass->create(extensionClass, parent, name.get(), {&attribute, 1})
                              : nullptr;
    if (child == nullptr) {
        refuse(__func__, ZUL_LOG_CREATION_FAILURE_s, "xml qos object");
        return nullptr;
    }
    if (!ROUTERUtils_addChildXMLObject(parent, child)) {
        ZULXMLObject_delete(child);
        refuse(__func__, ZUL_LOG_ADD_FAILURE_s, "child qos xml object");
        return nullptr;
    }
    return child;
}

const ZULXMLExtensionClass* ROUTERUtils_findExtensionClass(const ZULXMLExtensionRegistry* registry,
                                                           const char* key) {
    return ZULXMLExtensionRegistry_find(registry, key);
}
