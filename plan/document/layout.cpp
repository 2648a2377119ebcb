// Indentation is text between elements: a line feed and blanks in front of each child, and in front of the
// end tag. When memory runs out, a line may lack it; that does no harm.
#include "plan/document/layout.h"

#include "plan/document/xml_nodes.h"

namespace zul::plan {

namespace {

constexpr const char* USUAL_UNIT = "    ";
constexpr std::size_t MAX_UNIT = 16; // bytes: every new line repeats it as often as it is deep

bool isBlank(const xmlNode* node) {
    return node != nullptr && node->type == XML_TEXT_NODE && xmlIsBlankNode(node) == 1;
}

bool isLineStart(const xmlNode* node) {
    return isBlank(node) && toView(node->content).find('\n') != std::string_view::npos;
}

bool isElement(const xmlNode* node) {
    return node != nullptr && node->type == XML_ELEMENT_NODE;
}

void removeNode(xmlNode* node) {
    xmlUnlinkNode(node);
    xmlFreeNode(node);
}

void removeBlanks(xmlNode* parent) {
    for (xmlNode* child = parent->children; child != nullptr;) {
        xmlNode* next = child->next;
        if (isBlank(child)) {
            removeNode(child);
        }
        child = next;
    }
}

// A name and its value, as in a property, stay on one line.
bool isPair(const xmlNode* element) {
    bool isFlat = tagOf(element) == "element";
    for (const xmlNode* part : elementsIn(element)) {
        isFlat = isFlat && firstChild(part) == nullptr;
    }
    return isFlat;
}

} // namespace

Layout::Layout(const xmlDoc* document) : unit_(USUAL_UNIT) {
    const xmlNode* root = xmlDocGetRootElement(document);
    if (root == nullptr || !isLineStart(root->children)) {
        return;
    }
    const std::string_view text = toView(root->children->content);
    const std::string_view blanks = text.substr(text.rfind('\n') + 1);
    if (!blanks.empty() && blanks.size() <= MAX_UNIT) {
        unit_ = blanks;
    }
}

// A line feed and as many units as there are elements around a child of `parent`.
std::string Layout::indentationIn(const xmlNode* parent) const {
    std::string text = "\n";
    for (; isElement(parent); parent = parent->parent) {
        text += unit_;
    }
    return text;
}

// Starts a new line for `child` or, if that is null, for the end tag of `parent`.
void Layout::startLine(xmlNode* parent, xmlNode* child) const {
    xmlNode* blank = xmlNewText(toXml(indentationIn(child != nullptr ? parent : parent->parent)));
    if ((child != nullptr ? xmlAddPrevSibling(child, blank) : xmlAddChild(parent, blank)) == nullptr) {
        xmlFreeNode(blank);
    }
}

void Layout::startLines(xmlNode* parent) const {
    removeBlanks(parent);
    for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
        startLine(parent, child);
    }
    startLine(parent, nullptr);
}

// Whether the children of an element have a line each, after giving them one if nothing is in the way.
bool Layout::isInLines(xmlNode* parent) {
    const auto known = inLines_.find(parent);
    if (known != inLines_.end()) {
        return known->second;
    }
    if (isElement(parent->parent) && !isLineStart(parent->prev)) {
        isInLines(parent->parent);
    }
    const bool hasLines = isLineStart(parent->children) || !holdsText(parent);
    if (hasLines && parent->children != nullptr && !isLineStart(parent->children)) {
        startLines(parent);
    }
    return inLines_[parent] = hasLines;
}

// Recurses as deep as documents may be.
void Layout::layOutInside(xmlNode* element) const {
    if (firstChild(element) == nullptr || holdsText(element)) {
        return;
    }
    if (isPair(element)) {
        removeBlanks(element);
        return;
    }
    startLines(element);
    for (xmlNode* child : elementsIn(element)) {
        layOutInside(child);
    }
}

void Layout::insert(xmlNode* parent, xmlNode* element, xmlNode* before) {
    const bool inLines = isInLines(parent);
    // In front of the indentation of what follows.
    xmlNode* place = before == nullptr ? parent->last : isBlank(before->prev) ? before->prev : before;
    if (before != nullptr || isBlank(place)) {
        xmlAddPrevSibling(place, element);
    } else {
        xmlAddChild(parent, element);
    }
    layOutInside(element);
    const bool isLast = parent->last == element;
    if (inLines) {
        startLine(parent, element);
        if (isLast) {
            startLine(parent, nullptr);
        }
    }
}

void Layout::remove(xmlNode* element) {
    const xmlNode* parent = element->parent;
    if (isBlank(element->prev)) {
        removeNode(element->prev);
    }
    removeNode(element);
    if (isBlank(parent->children) && parent->children == parent->last) {
        removeNode(parent->children); // the line of an end tag that has nothing before it any more
    }
}

} // namespace zul::plan
