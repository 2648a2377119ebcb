// Changes to the object tree of a configuration document. The set and the list of a parent's children stay in
// step: an operation that fails leaves the tree as it was. Failures are logged.
#pragma once

#include "middleware/xml/parser.h"

#include <atomic>

// Names default objects; counts up by one a name.
extern std::atomic<std::int32_t> ROUTERUtils_g_uniqueNameSuffix; // initially 0

// Adds `child`, made for this parent, as the last one; the parent owns it then. Fails when a child has its
// full name already, when `child` is in a list or above the parent, or when memory is exhausted.
bool ROUTERUtils_addChildXMLObject(ZULXMLObject* parent, ZULXMLObject* child);
// Takes `child` out; the caller owns it then. Fails when it is not a child of `parent`.
bool ROUTERUtils_removeChildXmlObject(ZULXMLObject* parent, ZULXMLObject* child);
// Moves `child` with all below it from one parent to the end of another, where it takes over the document
// context and its full names change. When that fails, as it does when `to` is inside `child`, all is as
// before, its place among its siblings included.
bool ROUTERUtils_moveChildXmlObject(ZULXMLObject* child, ZULXMLObject* from, ZULXMLObject* to);
// Takes the object out of its parent and frees it with all below it. Fails for one without a parent.
bool ROUTERUtils_deleteXMLObject(ZULXMLParser* parser, ZULXMLObject* object);

// Makes an object of the class for `tagName`, named "default_<tag name>_<counter>", as the last child of
// `parent`, which owns it. Null when there is no such class or it cannot be made.
ZULXMLObject* ROUTERUtils_createChildQosObject(const ZULXMLExtensionRegistry* registry, ZULXMLObject* parent,
                                               const char* tagName);
// The class of exactly that tag name, or null.
const ZULXMLExtensionClass* ROUTERUtils_findExtensionClass(const ZULXMLExtensionRegistry* registry,
                                                           const char* key);
