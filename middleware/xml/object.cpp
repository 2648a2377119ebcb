// A parent's children are in a set (look-up by full name) and in a list (order); both change together or not
// at all. A move gets all the memory that it needs before it changes anything.
#include "middleware/xml/object.h"

#include "middleware/base/heap.h"
#include "middleware/base/strings.h"

#include <cstring>
#include <utility>
#include <vector>

namespace {

// "<prefix>::<name>"; null when memory is exhausted.
char* joinNames(std::string_view prefix, std::string_view name) {
    return ZULString_join({prefix, "::", name});
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

// The full names of the object and of all below it, parents first, if `prefix` were that of its parent.
using FullNames = std::vector<ZULStringPtr, ZULHeapAllocator<ZULStringPtr>>;
void collectNames(const ZULXMLObject& object, const char* prefix, FullNames& names) {
    names.push_back(ZULStringPtr(joinNames(prefix, object.name)));
    const char* own = names.back().get();
    if (own == nullptr) {
        throw std::bad_alloc();
    }
    for (const ZULXMLObject* child = object.children.first; child != nullptr; child = child->next) {
        collectNames(*child, own, names);
    }
}

// Takes the names in the order in which they were collected. Sets stay in order: their names change alike.
void settle(ZULXMLObject& object, ZULXMLDocument* context, FullNames::iterator& name) {
    DDS_String_free(std::exchange(object.fullName, (name++)->release()));
    object.context = context;
    for (ZULXMLObject* child = object.children.first; child != nullptr; child = child->next) {
        settle(*child, context, name);
    }
}

using Node = decltype(ZULXMLObject::childSet)::node_type;

void append(ZULXMLObjectList& list, ZULXMLObject* child) {
    child->previous = list.last;
    child->list = &list;
    (list.last != nullptr ? list.last->next : list.first) = child;
    list.last = child;
    ++list.count;
}

Node extract(ZULXMLObject& parent, ZULXMLObject* child) {
    ZULXMLObjectList& list = parent.children;
    (child->previous != nullptr ? child->previous->next : list.first) = child->next;
    (child->next != nullptr ? child->next->previous : list.last) = child->previous;
    --list.count;
    child->previous = nullptr;
    child->next = nullptr;
    child->list = nullptr;
    return parent.childSet.extract(parent.childSet.find(child));
}

} // namespace

ZULXMLObject* ZULXMLObject_new(const char* tagName, const char* name, ZULXMLObject* parent,
                               std::span<const ZULXMLAttribute> attributes) {
    auto* memory = ZULHeap_allocate<ZULXMLObject>();
    if (memory == nullptr) {
        return nullptr;
    }
    auto* self = new (memory) ZULXMLObject{};
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
    DDS_String_free(self->tagName);
    DDS_String_free(self->name);
    DDS_String_free(self->fullName);
    DDS_String_free(self->text);
    ZULHeap_free(self->attributes);
    std::destroy_at(self);
    ZULHeap_free(self);
}

bool ZULXMLObject_setText(ZULXMLObject* self, std::string_view text) {
    char* copy = ZULString_join({text});
    if (copy == nullptr) {
        return false;
    }
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
    const auto found = key != nullptr ? self->childSet.find(key.get()) : self->childSet.end();
    return found != self->childSet.end() ? *found : nullptr;
}

ZULXMLInsertion ZULXMLObject_insertChild(ZULXMLObject* self, ZULXMLObject* child) {
    try {
        if (!self->childSet.insert(child).second) {
            return ZUL_XML_NAME_TAKEN;
        }
    } catch (const std::bad_alloc&) {
        return ZUL_XML_OUT_OF_MEMORY;
    }
    append(self->children, child);
    return ZUL_XML_INSERTED;
}

void ZULXMLObject_extractChild(ZULXMLObject* self, ZULXMLObject* child) {
    extract(*self, child);
}

bool ZULXMLObject_move(ZULXMLObject* self, ZULXMLObject* from, ZULXMLObject* to) {
    FullNames names;
    try {
        collectNames(*self, to->fullName, names);
    } catch (const std::bad_alloc&) {
        return false;
    }
    const auto other = to->childSet.find(names.front().get());
    if (other != to->childSet.end() && *other != self) {
        return false;
    }
    Node node = extract(*from, self);
    auto name = names.begin();
    settle(*self, to->context, name);
    self->parent = to;
    to->childSet.insert(std::move(node));
    append(to->children, self);
    return true;
}
