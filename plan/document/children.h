// The children of one element while a snippet is merged into it: found by what a snippet may call them, and
// added where the definition allows. A look-up takes the same time however many there are.
#pragma once

#include "plan/document/definition.h"
#include "plan/document/layout.h"

#include <libxml/tree.h>

#include <string>
#include <string_view>
#include <unordered_map>

namespace zul::plan {

// Whether an element is one of a list of pairs or texts.
bool isItem(const xmlNode* element);
// What tells an element from its siblings of the same tag: its name attribute or, in a list of pairs, its
// name element; in a list of texts the text itself. Empty when there can be only one, or for an empty item.
std::string identityOf(const xmlNode* element);

class Children {
public:
    // `parent` is an element that the definition declares. Both must outlive this.
    Children(xmlNode* parent, Layout& layout);

    // Null: there is none. Of several the last; names are those from before the merge.
    xmlNode* find(std::string_view tag, const std::string& identity) const;
    xmlNode* findLast(std::string_view tag) const;
    xmlNode* findEntity(std::string_view name) const;
    bool hasSeveral(std::string_view tag) const;

    // Moves `child` here, out of a document that shares the dictionary, to the last place where the
    // definition allows it. Refuses what that leaves no place for.
    void insert(xmlNode* child);

private:
    void note(xmlNode* child);

    struct Tagged {
        xmlNode* last = nullptr;
        std::size_t count = 0;
    };
    xmlNode* parent_;
    Layout& layout_;
    ContentModel::State end_; // after all children
    std::unordered_map<std::string, Tagged> byTag_;
    std::unordered_map<std::string, xmlNode*> byIdentity_; // tag and identity
    std::unordered_map<std::string, xmlNode*> entities_;   // by name
};

// As Children::insert, for a single child: nothing is prepared for look-ups.
void insertChild(xmlNode* parent, xmlNode* child, Layout& layout);

} // namespace zul::plan
