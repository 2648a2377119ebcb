// Look-ups by tag, by tag and identity, and by the names of entities; the state of the content model after
// the last child.
#include "plan/document/children.h"

#include "plan/document/entity.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

namespace zul::plan {

namespace {

std::string keyOf(std::string_view tag, const std::string& identity) {
    return std::string(tag) + '\0' + identity;
}

// What a map holds for a key; an empty value when it holds nothing.
template <class Map>
typename Map::mapped_type lookUp(const Map& map, const std::string& key) {
    const auto found = map.find(key);
    return found != map.end() ? found->second : typename Map::mapped_type{};
}

} // namespace

bool isItem(const xmlNode* element) {
    return tagOf(element) == "element";
}

std::string identityOf(const xmlNode* element) {
    if (!isItem(element)) {
        return nameOf(element);
    }
    for (xmlNode* part : elementsIn(element)) {
        if (tagOf(part) == "name") {
            return textOf(part);
        }
    }
    return textOf(element);
}

Children::Children(xmlNode* parent, Layout& layout)
    : parent_(parent), content_(Definition::ofProduct().find(tagOf(parent))->content), layout_(layout) {
    for (xmlNode* child : elementsIn(parent)) {
        note(child);
    }
    findEnd();
}

void Children::findEnd() {
    end_ = content_.begin();
    for (xmlNode* child : elementsIn(parent_)) {
        end_ = content_.after(end_, tagOf(child)).value_or(ContentModel::State{});
    }
}

void Children::note(xmlNode* child) {
    const std::string_view tag = tagOf(child);
    const std::string identity = identityOf(child);
    Tagged& tagged = byTag_[std::string(tag)];
    tagged.last = child;
    ++tagged.count;
    if (!identity.empty() || isItem(child)) {
        byIdentity_[keyOf(tag, identity)] = child;
    }
    if (levelOf(child)) {
        entities_.emplace(nameOf(child), child);
    }
}

xmlNode* Children::find(std::string_view tag, const std::string& identity) const {
    return lookUp(byIdentity_, keyOf(tag, identity));
}

xmlNode* Children::findLast(std::string_view tag) const {
    return lookUp(byTag_, std::string(tag)).last;
}

xmlNode* Children::findEntity(std::string_view name) const {
    return lookUp(entities_, std::string(name));
}

bool Children::hasSeveral(std::string_view tag) const {
    return lookUp(byTag_, std::string(tag)).count > 1;
}

void Children::insert(xmlNode* child) {
    const std::string_view tag = tagOf(child);
    const auto atEnd = content_.after(end_, tag);
    const bool fitsAtEnd = atEnd && atEnd->isComplete;
    const std::optional<xmlNode*> place =
        fitsAtEnd ? std::optional<xmlNode*>(nullptr) : content_.placeFor(tag, parent_);
    if (!place) {
        throw Refusal{shortened(tag) + " has no place in " + describe(parent_) +
                      "; after its other elements may come " + content_.expected(end_)};
    }
    xmlUnlinkNode(child);
    xmlSetTreeDoc(child, parent_->doc);
    layout_.insert(parent_, child, *place);
    note(child);
    if (fitsAtEnd) {
        end_ = *atEnd;
    } else {
        findEnd();
    }
}

} // namespace zul::plan
