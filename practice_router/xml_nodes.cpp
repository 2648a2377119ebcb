#include "practice_router/xml_nodes.h"

#include "practice_router/xml.h"

namespace {

constexpr std::size_t INDENT = 4; // blanks for each level
constexpr int MAX_PLACES = 64;    // tried for a new element: where order counts, elements have few children

std::string toString(xmlChar* text) {
    const std::unique_ptr<xmlChar, PracticeXmlDeleter> owner(text);
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

xmlNode* elementFrom(xmlNode* node) {
    while (node != nullptr && node->type != XML_ELEMENT_NODE) {
        node = node->next;
    }
    return node;
}

bool isBlank(const xmlNode* node) {
    return node != nullptr && xmlIsBlankNode(node) == 1;
}

std::size_t depthOf(const xmlNode* node) {
    std::size_t depth = 0;
    for (node = node->parent; node != nullptr && node->type == XML_ELEMENT_NODE; node = node->parent) {
        ++depth;
    }
    return depth;
}

// A line feed and the indentation in front of `node`, if its parent is laid out in lines.
void indent(xmlNode* node) {
    const std::string text = "\n" + std::string(INDENT * depthOf(node), ' ');
    xmlNode* blank = xmlNewText(reinterpret_cast<const xmlChar*>(text.c_str()));
    if (blank != nullptr && xmlAddPrevSibling(node, blank) == nullptr) {
        xmlFreeNode(blank);
    }
}

} // namespace

std::string PracticeNode_attribute(const xmlNode* node, const char* name) {
    return toString(xmlGetNoNsProp(node, reinterpret_cast<const xmlChar*>(name)));
}

std::string PracticeNode_text(const xmlNode* node) {
    const std::string text = toString(xmlNodeGetContent(node));
    constexpr const char* BLANKS = " \t\r\n";
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

xmlNode* PracticeNode_firstChild(const xmlNode* node) {
    return elementFrom(node->children);
}

xmlNode* PracticeNode_next(const xmlNode* node) {
    return elementFrom(node->next);
}

bool PracticeNode_setText(xmlNode* node, const std::string& text) {
    while (node->children != nullptr) {
        xmlNode* child = node->children;
        xmlUnlinkNode(child);
        xmlFreeNode(child);
    }
    if (text.empty()) {
        return true;
    }
    xmlNode* content = xmlNewText(reinterpret_cast<const xmlChar*>(text.c_str()));
    if (content == nullptr || xmlAddChild(node, content) == nullptr) {
        xmlFreeNode(content);
        return false;
    }
    return true;
}

xmlNode* PracticeNode_insertCopy(xmlNode* parent, xmlNode* child) {
    xmlNode* copy = xmlDocCopyNode(child, parent->doc, 1);
    if (copy == nullptr) {
        return nullptr;
    }
    const bool inLines = isBlank(parent->children);
    xmlNode* last = xmlGetLastChild(parent);
    xmlNode* behind = isBlank(last) ? last : nullptr; // in front of the indentation of the end tag
    const auto insertBefore = [parent, copy](xmlNode* place) {
        xmlUnlinkNode(copy);
        return place != nullptr ? xmlAddPrevSibling(place, copy) : xmlAddChild(parent, copy);
    };
    insertBefore(behind);
    // Order counts in some elements: go backwards until the definition is satisfied.
    bool allowed = PracticeXml_childrenFollowDtd(parent);
    xmlNode* place = xmlPreviousElementSibling(copy);
    for (int tried = 1; !allowed && place != nullptr && tried < MAX_PLACES; ++tried) {
        xmlNode* previous = xmlPreviousElementSibling(place);
        insertBefore(isBlank(place->prev) ? place->prev : place);
        allowed = PracticeXml_childrenFollowDtd(parent);
        place = previous;
    }
    if (!allowed) {
        insertBefore(behind);
    }
    if (inLines) {
        indent(copy);
    }
    return copy;
}

void PracticeNode_remove(xmlNode* node) {
    if (isBlank(node->prev)) {
        xmlNode* blank = node->prev;
        xmlUnlinkNode(blank);
        xmlFreeNode(blank);
    }
    xmlUnlinkNode(node);
    xmlFreeNode(node);
}
