// XML objects: the elements of a parsed configuration document, as a tree that programs may change. An object
// owns its texts, its attributes and its children; whoever makes one and does not add it to a parent owns it.
// All memory comes from the platform's heap. A tree belongs to one thread at a time.
#pragma once

#include "middleware/xml/ordered_set.h"

#include <cstdint>
#include <span>
#include <string_view>

struct ZULXMLDocument;
struct ZULXMLObject;

struct ZULXMLAttribute {
    const char* name;
    const char* value;
};

// Siblings in the order in which they were added.
struct ZULXMLObjectList {
    ZULXMLObject* first;
    ZULXMLObject* last;
    std::size_t count;
};

struct ZULXMLObject {
    char* tagName;
    char* name;           // own name: unique among siblings
    char* fullName;       // the parent's full name, "::" and the own name; "::" and the own name for a root
    char* formerFullName; // while a renaming is open; otherwise null
    char* text;           // character data directly inside, blanks around it cut; null for none
    std::int32_t line;    // where its start tag ends in the document, from 1; 0 for one made by a program
    std::size_t attributeCount;
    ZULXMLAttribute* attributes; // in the order of the document
    ZULXMLObject* parent;        // null for a root
    ZULXMLDocument* context;     // the document it belongs to; null for none
    ZULOrderedSet childSet;      // the children by full name
    ZULXMLObjectList children;   // the same children, in insertion order
    ZULXMLObjectList* list;      // the list it is in; null while it is in none
    ZULXMLObject* previous;      // its neighbours there
    ZULXMLObject* next;
};

// Makes an object for `parent` (null for a root) without adding it there; parameters are copied. Null when
// memory is exhausted.
ZULXMLObject* ZULXMLObject_new(const char* tagName, const char* name, ZULXMLObject* parent,
                               std::span<const ZULXMLAttribute> attributes);
// Frees the object and everything below it. It must not be in a list. Null is ignored.
void ZULXMLObject_delete(ZULXMLObject* self);

// Replaces the text. False when memory is exhausted; the old text then stays.
bool ZULXMLObject_setText(ZULXMLObject* self, std::string_view text);
// The value, valid as long as the object, or null.
const char* ZULXMLObject_getAttribute(const ZULXMLObject* self, std::string_view name);
// The child of that own name, or null.
ZULXMLObject* ZULXMLObject_findChild(const ZULXMLObject* self, std::string_view name);

// Adds `child`, made for this parent, to the set and before `next` (null: at the end) in the list. The parent
// is unchanged unless the result is OK.
// With the node that the child had when it was taken out, no memory is needed.
ZULOrderedSetStatus ZULXMLObject_insertChild(ZULXMLObject* self, ZULXMLObject* child, ZULXMLObject* next,
                                             ZULOrderedSetNode* node = nullptr);
// Takes `child` out of both; the caller owns it then, and its node, which is what this returns. Null when it
// is not a child of `self`.
ZULOrderedSetNode* ZULXMLObject_extractChild(ZULXMLObject* self, ZULXMLObject* child);

// Renaming, for a move: gives the object and all below it the full names that they have under `parent`. False
// when memory is exhausted; nothing has changed then. Until `_finishRename`, the former names are kept.
bool ZULXMLObject_rename(ZULXMLObject* self, const ZULXMLObject* parent);
// Ends a renaming: drops the former names, or goes back to them, which cannot fail.
void ZULXMLObject_finishRename(ZULXMLObject* self, bool keep);
// Makes the object and all below it belong to `context`.
void ZULXMLObject_setContext(ZULXMLObject* self, ZULXMLDocument* context);
