// The form of a types section: which attributes, words and children its elements take.
#pragma once

#include "middleware/xml/document.h"

namespace zul::xml {

// Checks the element by itself, its children by their tags only, and those of a types section or module not
// at all. Throws what is wrong as a ZULXMLError.
void checkForm(const ZULXMLObject& element);

// The value of an attribute that `checkForm` has found, or "" when it is not given.
inline std::string_view attribute(const ZULXMLObject& element, std::string_view name) {
    const char* value = ZULXMLObject_getAttribute(&element, name);
    return value != nullptr ? std::string_view(value) : std::string_view();
}
inline bool hasAttribute(const ZULXMLObject& element, std::string_view name) {
    return ZULXMLObject_getAttribute(&element, name) != nullptr;
}
inline bool isTrue(const ZULXMLObject& element, std::string_view name) {
    return attribute(element, name) == "true";
}

} // namespace zul::xml
