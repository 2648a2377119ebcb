// Reading and setting what an element holds; libxml2 hands out copies that must be freed.
#include "practice_router/document/xml_nodes.h"

#include "practice_router/document/text.h"
#include "practice_router/document/xml.h"

namespace {

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

std::string_view trimmed(std::string_view text) {
    constexpr const char* BLANKS = " \t\r\n";
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

} // namespace

std::string PracticeNode_attribute(const xmlNode* node, const char* name) {
    return toString(xmlGetNoNsProp(node, reinterpret_cast<const xmlChar*>(name)));
}

std::string PracticeNode_describe(const xmlNode* node) {
    using namespace zul::practice;
    const std::string name = PracticeNode_name(node);
    return shortened(PracticeNode_tag(node)) + (name.empty() ? "" : " " + quoted(name));
}

std::string PracticeNode_text(const xmlNode* node) {
    const xmlNode* only = node->children;
    return only != nullptr && only->next == nullptr && only->type == XML_TEXT_NODE
               ? std::string(trimmed(reinterpret_cast<const char*>(only->content)))
               : std::string(trimmed(toString(xmlNodeGetContent(node))));
}

xmlNode* PracticeNode_firstChild(const xmlNode* node) {
    return elementFrom(node->children);
}

xmlNode* PracticeNode_next(const xmlNode* node) {
    return elementFrom(node->next);
}

bool PracticeNode_setText(xmlNode* node, const std::string& text) {
    const xmlNode* only = node->children;
    if (only != nullptr && only->next == nullptr && only->type == XML_TEXT_NODE &&
        text == reinterpret_cast<const char*>(only->content)) {
        return true;
    }
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
