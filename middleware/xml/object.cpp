// A parent's children are in a set (look-up by full name) and in a list (order); both change together or not
// at all. A renaming has two steps: make all new full names, then keep them or go back to the old ones.
#include "middleware/xml/object.h"

#include "middleware/base/heap.h"
#include "middleware/base/strings.h"

#include <cstring>
#include <utility>

namespace {

const char* fullNameOf(const void* object) {
    return static_cast<const ZULXMLObject*>(object)->fullName;
}

// "<prefix>::<name>"; null when memory is exhausted.
char* joinNames(std::string_view prefix, std::string_view name) {
    constexpr std::string_view SCOPE = "::";
    char* joined = DDS_String_alloc(prefix.size() + SCOPE.size() + name.size());
    char* place = joined;
    for (const std::string_view part : {prefix, SCOPE, name}) {
        place += place != nullptr ? part.copy(place, part.size()) : 0;
    }
    return joined;
}

// The attributes and their texts in one block of memory.
ZULXMLAttribute* copyAttributes(std::span<const ZULXMLAttribute> attributes) {
    std::size_t size = attributes.size_bytes();
    for (const ZULXMLAttribute& attribute : attributes) {
        size += std::strlen(attribute.name) + std::strlen(attribute.value) + 2;
    }
    void* block = ZULHeap_allocateArray(1, size);
    if (block == nullptr) {
        return nullptr;
    }
    auto* copies = static_cast<ZULXMLAttribute*>(block);
    char* place = static_cast<char*>(block) + attributes.size_bytes();
    const auto store = [&place](const char* text) {
        const std::size_t length = std::strlen(text) + 1;
        std::memcpy(place, text, length);
        return std::exchange(place, place + length);
    };
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        copies[i].name = store(attributes[i].name);
        copies[i].value = store(attributes[i].value);
    }
    return copies;
}

// Calls `visit` for the object and everything below, parents first, while it returns true.
template <class Visit>
bool visitTree(ZULXMLObject* self, const Visit& visit) {
    if (!visit(*self)) {
        return false;
    }
    for (ZULXMLObject* child = self->children.first; child != nullptr; child = child->next) {
        if (!visitTree(child, visit)) {
            return false;
        }
    }
    return true;
}

} // namespace

ZULXMLObject* ZULXMLObject_new(const char* tagName, const char* name, ZULXMLObject* parent,
                               std::span<const ZULXMLAttribute> attributes) {
    auto* self = ZULHeap_allocate<ZULXMLObject>();
    if (self == nullptr) {
        return nullptr;
    }
    self->childSet.keyOf = fullNameOf;
    self->tagName = DDS_String_dup(tagName);
    self->name = DDS_String_dup(name);
    self->fullName = joinNames(parent != nullptr ? parent->fullName : "", name);
    self->attributes = copyAttributes(attributes);
    self->attributeCount = attributes.size();
    self->parent = parent;
    self->context = parent != nullptr ? parent->context : nullptr;
    if (self->tagName == nullptr || self->name == nullptr || self->fullName == nullptr ||
        self->attributes == nullptr) {
        ZULXMLObject_delete(self);
        return nullptr;
    }
    return self;
}

void ZULXMLObject_delete(ZULXMLObject* self) {
    if (self == nullptr) {
        return;
    }
    for (ZULXMLObject* child = self->children.first; child != nullptr;) {
        ZULXMLObject_delete(std::exchange(child, child->next));
    }
    ZULOrderedSet_finalize(&self->childSet);
    DDS_String_free(self->tagName);
    DDS_String_free(self->name);
    DDS_String_free(self->fullName);
    DDS_String_free(self->formerFullName);
    DDS_String_free(self->text);
    ZULHeap_free(self->attributes);
    ZULHeap_free(self);
}

bool ZULXMLObject_setText(ZULXMLObject* self, std::string_view text) {
    char* copy = DDS_String_alloc(text.size());
    if (copy == nullptr) {
        return false;
    }
    text.copy(copy, text.size());
    DDS_String_free(self->text);
    self->text = copy;
    return true;
}

const char* ZULXMLObject_getAttribute(const ZULXMLObject* self, std::string_view name) {
    for (std::size_t i = 0; i < self->attributeCount; ++i) {
        if (name == self->attributes[i].name) {
            return self->attributes[i].value;
        }
    }
    return nullptr;
}

ZULXMLObject* ZULXMLObject_findChild(const ZULXMLObject* self, std::string_view name) {
    const ZULStringPtr key(joinNames(self->fullName, name));
    return key != nullptr ? static_cast<ZULXMLObject*>(ZULOrderedSet_find(&self->childSet, key.get()))
                          : nullptr;
}

ZULOrderedSetStatus ZULXMLObject_insertChild(ZULXMLObject* self, ZULXMLObject* child, ZULXMLObject* next,
                                             ZULOrderedSetNode* node) {
    const ZULOrderedSetStatus status = ZULOrderedSet_insert(&self->childSet, child, node);
    if (status != ZUL_ORDERED_SET_OK) {
        return status;
    }
    ZULXMLObjectList& list = self->children;
    ZULXMLObject* previous = next != nullptr ? next->previous : list.last;
    child->previous = previous;
    child->next = next;
    (previous != nullptr ? previous->next : list.first) = child;
    (next != nullptr ? next->previous : list.last) = child;
    child->list = &list;
    ++list.count;
    return ZUL_ORDERED_SET_OK;
}

ZULOrderedSetNode* ZULXMLObject_extractChild(ZULXMLObject* self, ZULXMLObject* child) {
    if (ZULOrderedSet_find(&self->childSet, child->fullName) != child) {
        return nullptr;
    }
    ZULOrderedSetNode* node = ZULOrderedSet_extract(&self->childSet, child->fullName);
    ZULXMLObjectList& list = self->children;
    (child->previous != nullptr ? child->previous->next : list.first) = child->next;
    (child->next != nullptr ? child->next->previous : list.last) = child->previous;
    --list.count;
    child->previous = nullptr;
    child->next = nullptr;
    child->list = nullptr;
    return node;
}

// The former name of a parent is set aside before its children are reached, so each child joins the new one.
bool ZULXMLObject_rename(ZULXMLObject* self, const ZULXMLObject* parent) {
    const bool complete = visitTree(self, [self, parent](ZULXMLObject& object) {
        const char* prefix = &object == self ? parent->fullName : object.parent->fullName;
        char* renamed = joinNames(prefix, object.name);
        if (renamed == nullptr) {
            return false;
        }
        object.formerFullName = std::exchange(object.fullName, renamed);
        return true;
    });
    if (!complete) {
        ZULXMLObject_finishRename(self, false);
    }
    return complete;
}

void ZULXMLObject_finishRename(ZULXMLObject* self, bool keep) {
    visitTree(self, [keep](ZULXMLObject& object) {
        if (object.formerFullName != nullptr) {
            if (!keep) {
                std::swap(object.fullName, object.formerFullName);
            }
            DDS_String_free(object.formerFullName);
            object.formerFullName = nullptr;
        }
        return true;
    });
}

void ZULXMLObject_setContext(ZULXMLObject* self, ZULXMLDocument* context) {
    visitTree(self, [context](ZULXMLObject& object) {
        object.context = context;
        return true;
    });
}
