// The lines and indentation of a document while elements are added to it and taken out.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <unordered_map>

namespace zul::plan {

class Layout {
public:
    // Lines are indented as the first one in the document is.
    explicit Layout(const xmlDoc* document);

    // Puts `element`, which is in no tree but belongs to the document, into `parent` in front of its child
    // `before` (null: at the end). The new element gets a line and, if they have none, so do its siblings
    // and the elements around it. Elements that hold text are left as they are. The time depends on the
    // number of siblings only for the first of several elements put into one parent.
    void insert(xmlNode* parent, xmlNode* element, xmlNode* before);

    // Removes and frees `element` with its line.
    static void remove(xmlNode* element);

private:
    bool isInLines(xmlNode* parent);
    void startLines(xmlNode* parent) const;
    void layOutInside(xmlNode* element) const;
    std::string indentationIn(const xmlNode* parent) const;
    void startLine(xmlNode* parent, xmlNode* child) const;

    std::string unit_;
    std::unordered_map<const xmlNode*, bool> inLines_; // whether the children of an element have lines
};

} // namespace zul::plan
