// Reading and setting what an element holds; libxml2 hands out copies that must be freed.
#include "plan/document/xml_nodes.h"

#include "middleware/xml/text.h"
#include "plan/document/text.h"

namespace zul::plan {

namespace {

std::string toString(xmlChar* text) {
    const std::unique_ptr<xmlChar, XmlDeleter> owner(text);
    return std::string(toView(text));
}

xmlNode* elementFrom(xmlNode* node) {
    while (node != nullptr && node->type != XML_ELEMENT_NODE) {
        node = node->next;
    }
    return node;
}

} // namespace

std::string_view valueOf(const xmlAttr* attribute, std::string& copy) {
    const xmlNode* only = attribute->children;
    if (only == nullptr || (only->next == nullptr && only->type == XML_TEXT_NODE)) {
        return only != nullptr ? toView(only->content) : "";
    }
    copy = toString(xmlNodeListGetString(attribute->doc, only, 1));
    return copy;
}

std::string attributeOf(const xmlNode* node, const char* name) {
    return toString(xmlGetNoNsProp(node, toXml(name)));
}

bool hasBase(const xmlNode* element) {
    constexpr int LEVELS = 3;
    for (int i = 0; i < LEVELS && element != nullptr; ++i, element = element->parent) {
        if (xmlHasProp(element, toXml("base_name")) != nullptr) {
            return true;
        }
    }
    return false;
}

// A name may be long, and be described for each of many children: it is not copied.
std::string describe(const xmlNode* node) {
    const xmlAttr* name = xmlHasProp(node, toXml("name"));
    const xmlNode* text = name != nullptr ? name->children : nullptr;
    return shortened(tagOf(node)) + (text != nullptr ? " " + quoted(toView(text->content)) : "");
}

std::string textOf(const xmlNode* node) {
    const xmlNode* only = node->children;
    return only != nullptr && only->next == nullptr && only->type == XML_TEXT_NODE
               ? std::string(xml::trimmed(toView(only->content)))
               : std::string(xml::trimmed(toString(xmlNodeGetContent(node))));
}

xmlNode* firstChild(const xmlNode* node) {
    return node != nullptr ? elementFrom(node->children) : nullptr;
}

xmlNode* nextElement(const xmlNode* node) {
    return elementFrom(node->next);
}

bool isText(const xmlNode* node) {
    return node->type == XML_CDATA_SECTION_NODE || (node->type == XML_TEXT_NODE && xmlIsBlankNode(node) == 0);
}

bool holdsText(const xmlNode* element) {
    for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (isText(child)) {
            return true;
        }
    }
    return false;
}

void setText(xmlNode* node, const std::string& text) {
    const xmlNode* only = node->children;
    if (only != nullptr && only->next == nullptr && only->type == XML_TEXT_NODE &&
        text == toView(only->content)) {
        return;
    }
    xmlNodeSetContent(node, nullptr);
    if (!text.empty()) {
        xmlNode* content = xmlNewText(toXml(text));
        requireMemory(content != nullptr);
        xmlAddChild(node, content);
    }
}

} // namespace zul::plan
