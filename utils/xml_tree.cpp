// Checks come before changes, and a child keeps its node of the set, so that going back needs no memory.
#include "utils/xml_tree.h"

#include "product/log_masks.h"

#include <string>

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

// Adds the child before `next` (null: at the end), with `node` as ZULXMLObject_insertChild takes it. The name
// is checked first: one that is taken has a message of its own. A child that is in another list, or above the
// parent, would tie the tree into a knot.
bool addBefore(ZULXMLObject* parent, ZULXMLObject* child, ZULXMLObject* next, ZULOrderedSetNode* node) {
    if (ZULOrderedSet_find(&parent->childSet, child->fullName) != nullptr) {
        if (ROUTERLog_isEnabled(ZUL_LOG_LEVEL_ERROR, ROUTER_SUBMODULE_UTILS)) {
            ZULLog_debug("%s: XML object with name '%s' already exists\n", ADD_CONTEXT, child->fullName);
        }
        return false;
    }
    const bool isFree = child->list == nullptr && !isWithin(parent, child);
    return (isFree && ZULXMLObject_insertChild(parent, child, next, node) == ZUL_ORDERED_SET_OK) ||
           refuse(ADD_CONTEXT, ZUL_LOG_ADD_FAILURE_s, "XML object");
}

// The child's node, which the caller owns; null, reported, when it is not a child.
ZULOrderedSetNode* extract(ZULXMLObject* parent, ZULXMLObject* child) {
    ZULOrderedSetNode* node = ZULXMLObject_extractChild(parent, child);
    if (node == nullptr) {
        refuse("ROUTERUtils_removeChildXmlObject", ZUL_LOG_REMOVE_FAILURE_s, "XML object");
    }
    return node;
}

} // namespace

bool ROUTERUtils_addChildXMLObject(ZULXMLObject* parent, ZULXMLObject* child) {
    return addBefore(parent, child, nullptr, nullptr);
}

bool ROUTERUtils_removeChildXmlObject(ZULXMLObject* parent, ZULXMLObject* child) {
    ZULOrderedSetNode* node = extract(parent, child);
    ZULOrderedSetNode_free(node);
    return node != nullptr;
}

bool ROUTERUtils_moveChildXmlObject(ZULXMLObject* child, ZULXMLObject* from, ZULXMLObject* to) {
    ZULXMLObject* const next = child->next;
    ZULOrderedSetNode* const node = extract(from, child); // kept, so that going back needs no memory
    if (node == nullptr) {
        return refuse(__func__, ZUL_LOG_ANY_FAILURE_s, "removeChildXmlObject");
    }
    const bool isRenamed = !isWithin(to, child) && ZULXMLObject_rename(child, to);
    if (isRenamed && addBefore(to, child, nullptr, nullptr)) {
        ZULOrderedSetNode_free(node);
        ZULXMLObject_finishRename(child, true);
        child->parent = to;
        ZULXMLObject_setContext(child, to->context);
        return true;
    }
    if (isRenamed) {
        ZULXMLObject_finishRename(child, false);
    }
    refuse(__func__, ZUL_LOG_ANY_FAILURE_s, "addChildXmlObject");
    return addBefore(from, child, next, node) ? false : refuse(__func__, ZUL_LOG_ANY_FAILURE_s, "roll back");
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
    const std::string name =
        "default_" + std::string(tagName) + "_" + std::to_string(ROUTERUtils_g_uniqueNameSuffix.fetch_add(1));
    const ZULXMLAttribute attribute{"name", name.c_str()};
    ZULXMLObject* child = extensionClass->create(extensionClass, parent, name.c_str(), {&attribute, 1});
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
