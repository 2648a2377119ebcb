// XML objects: the elements of a parsed configuration document, as a tree that programs may change. An object
// owns its texts, its attributes and its children; whoever makes one and does not add it to a parent owns it.
// All memory comes from the platform's heap. Operations that fail change nothing. A tree belongs to one
// thread at a time.
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
    char* name;        // own name: unique among siblings
    char* fullName;    // the parent's full name, "::" and the own name; "::" and the own name for a root
    char* text;        // character data directly inside, blanks around it cut; null for none
    std::int32_t line; // where its start tag ends in the document, from 1; 0 for one made by a program
    std::size_t attributeCount;
    ZULXMLAttribute* attributes; // in the order of the document
    ZULXMLObject* parent;        // null for a root
    ZULXMLDocument* context;     // the document it belongs to; null for none
    ZULOrderedSet<ZULXMLObject, &ZULXMLObject::fullName> childSet;
    ZULXMLObjectList children; // those of the set, in insertion order
    ZULXMLObjectList* list;    // the list it is in; null while it is in none
    ZULXMLObject* previous;    // its neighbours there
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

enum ZULXMLInsertion { ZUL_XML_INSERTED, ZUL_XML_NAME_TAKEN, ZUL_XML_OUT_OF_MEMORY };
// Adds `child`, made for this parent and in no list, as the last one.
ZULXMLInsertion ZULXMLObject_insertChild(ZULXMLObject* self, ZULXMLObject* child);
inline bool ZULXMLObject_isChild(const ZULXMLObject* self, const ZULXMLObject* child) {
    return child->list == &self->children;
}
// Takes out `child`, which must be one; the caller owns it then.
void ZULXMLObject_extractChild(ZULXMLObject* self, ZULXMLObject* child);
// Moves `self`, a child of `from`, with all below it to the end of `to`, which must not be inside it; full
// names and document context change. False when the name is taken there or memory is exhausted.
bool ZULXMLObject_move(ZULXMLObject* self, ZULXMLObject* from, ZULXMLObject* to);
