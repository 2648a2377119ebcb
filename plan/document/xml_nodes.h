// Small views and edits of an XML tree. Texts come back as copies.
#pragma once

#include "plan/document/xml.h"

namespace zul::plan {

inline std::string_view tagOf(const xmlNode* node) {
    return toView(node->name);
}
// The value, with a NUL after it; in `copy` where it is not in memory as a whole.
std::string_view valueOf(const xmlAttr* attribute, std::string& copy);
// The value of an attribute; empty when it is absent.
std::string attributeOf(const xmlNode* node, const char* name);
inline std::string nameOf(const xmlNode* node) {
    return attributeOf(node, "name");
}
// Whether an element, or one of the two around it, starts from another profile: a policy is in an element for
// an entity's kind, and that is in a profile.
bool hasBase(const xmlNode* element);
// The tag and, in quotes, the name attribute of a node, for messages.
std::string describe(const xmlNode* node);
// All text inside, without the blanks around it.
std::string textOf(const xmlNode* node);

// Element children: the first, and the one after `node`; null when there is none. Null has no children.
xmlNode* firstChild(const xmlNode* node);
xmlNode* nextElement(const xmlNode* node);

// for (xmlNode* child : elementsIn(parent)); the children must stay where they are meanwhile.
struct Elements {
    struct Iterator {
        xmlNode* node;
        xmlNode* operator*() const { return node; }
        Iterator& operator++() {
            node = nextElement(node);
            return *this;
        }
        bool operator==(const Iterator&) const = default;
    };
    xmlNode* first;
    Iterator begin() const { return {first}; }
    static Iterator end() { return {nullptr}; }
};
inline Elements elementsIn(const xmlNode* parent) {
    return {firstChild(parent)};
}

// Whether a node is text that counts: anything but blanks, or a CDATA section.
bool isText(const xmlNode* node);
// Whether such a node is among the children.
bool holdsText(const xmlNode* element);

// Puts `text`, taken literally, in place of everything inside `node`.
void setText(xmlNode* node, const std::string& text);

} // namespace zul::plan
