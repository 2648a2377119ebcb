// The form of a types section: which attributes, words and children its elements take.
#pragma once

#include "middleware/xml/type_elements.h"

namespace zul::xml {

// Checks the element by itself, its children by their tags only, and those of a types section or module not
// at all. Throws what is wrong as a ZULXMLError.
void checkForm(const TypeElement& element);

// The value of an attribute, or null when it is not given.
inline const char* findAttribute(const TypeElement& element, std::string_view name) {
    for (const ZULXMLAttribute& each : element.attributes) {
        if (name == each.name) {
            return each.value;
        }
    }
    return nullptr;
}
// The same, "" when it is not given.
inline std::string_view attribute(const TypeElement& element, std::string_view name) {
    const char* value = findAttribute(element, name);
    return value != nullptr ? std::string_view(value) : std::string_view();
}
inline bool hasAttribute(const TypeElement& element, std::string_view name) {
    return findAttribute(element, name) != nullptr;
}
inline bool isTrue(const TypeElement& element, std::string_view name) {
    return attribute(element, name) == "true";
}

} // namespace zul::xml
