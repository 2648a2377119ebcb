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

const ContentModel& contentOf(const xmlNode* element) {
    return Definition::ofProduct().find(tagOf(element))->content;
}

ContentModel::State endOf(const xmlNode* parent) {
    const ContentModel& content = contentOf(parent);
    ContentModel::State end = content.begin();
    for (const xmlNode* child : elementsIn(parent)) {
        end = content.after(end, tagOf(child)).value_or(ContentModel::State{});
    }
    return end;
}

// Keeps `end` the state after all children.
void insertIn(xmlNode* parent, xmlNode* child, Layout& layout, ContentModel::State& end) {
    const ContentModel& content = contentOf(parent);
    const std::string_view tag = tagOf(child);
    const auto atEnd = content.after(end, tag);
    const bool fitsAtEnd = atEnd && atEnd->isComplete;
    const std::optional<xmlNode*> place =
        fitsAtEnd ? std::optional<xmlNode*>(nullptr) : content.placeFor(tag, parent);
    if (!place) {
        throw Refusal{shortened(tag) + " has no place in " + describe(parent) +
                      "; after its other elements may come " + content.expected(end)};
    }
    xmlUnlinkNode(child);
    xmlSetTreeDoc(child, parent->doc);
    layout.insert(parent, child, *place);
    end = fitsAtEnd ? *atEnd : endOf(parent);
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

Children::Children(xmlNode* parent, Layout& layout) : parent_(parent), layout_(layout), end_(endOf(parent)) {
    for (xmlNode* child : elementsIn(parent)) {
        note(child);
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
    insertIn(parent_, child, layout_, end_);
    note(child);
}

void insertChild(xmlNode* parent, xmlNode* child, Layout& layout) {
    ContentModel::State end = endOf(parent);
    insertIn(parent, child, layout, end);
}

} // namespace zul::plan
