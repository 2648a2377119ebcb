// Elements and attributes lie one after the other in memory that is freed as a whole.
#include "middleware/xml/type_elements.h"

#include <new>

namespace zul::xml {

TypeSections::TypeSections(const ZULXMLDocument& document) : path_(document.path) {
    for (const ZULXMLObject* child = document.root->children.first; child != nullptr; child = child->next) {
        if (std::string_view(child->tagName) == "types") {
            addTree(*child, all_);
        }
    }
}

void TypeSections::addTree(const ZULXMLObject& object, TypeElement& parent) {
    TypeElement& element = add({.tag = object.tagName,
                                .attributes = {object.attributes, object.attributeCount},
                                .line = object.line,
                                .holdsText = object.text != nullptr},
                               parent);
    for (const ZULXMLObject* child = object.children.first; child != nullptr; child = child->next) {
        addTree(*child, element);
    }
}

TypeElement& TypeSections::add(const TypeElement& child, TypeElement& parent) {
    void* place = memory_.allocate(sizeof(TypeElement), alignof(TypeElement));
    auto* element = new (place) TypeElement(child);
    (parent.last != nullptr ? parent.last->next : parent.first) = element;
    parent.last = element;
    ++parent.count;
    ++count_;
    return *element;
}

std::span<ZULXMLAttribute> TypeSections::allocateAttributes(std::size_t count) {
    void* place = memory_.allocate(count * sizeof(ZULXMLAttribute), alignof(ZULXMLAttribute));
    return {new (place) ZULXMLAttribute[count], count};
}

} // namespace zul::xml
