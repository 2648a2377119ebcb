// Which element says the same as which other, by the comments of the document type definitions.
#include "plan/compare/parts.h"

#include "plan/compare/values.h"
#include "plan/document/children.h"
#include "plan/document/entity.h"
#include "plan/document/xml_nodes.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

namespace zul::plan {

namespace {

constexpr std::string_view TYPES = "types";
constexpr std::string_view TYPE_ORDER = TYPES;
constexpr const char* EVERY_TOPIC = "*";

template <std::size_t size>
bool isOneOf(std::string_view tag, const std::array<std::string_view, size>& tags) {
    return std::ranges::find(tags, tag) != tags.end();
}

// A definition comes before its use, and members have their places.
bool holdsTypes(std::string_view tag) {
    constexpr std::array<std::string_view, 8> TAGS{"types",     "struct",           "enum", "module", "union",
                                                   "valuetype", "sparse_valuetype", "case"};
    return isOneOf(tag, TAGS);
}

bool isFiltered(std::string_view tag, std::string_view parent) {
    constexpr std::array<std::string_view, 3> TAGS{"datawriter_qos", "datareader_qos", "topic_qos"};
    return (parent == "qos_profile" || parent == "monitoring") && isOneOf(tag, TAGS);
}

std::string filterOf(const xmlNode* element) {
    const std::string filter = attributeOf(element, "topic_filter");
    return filter.empty() ? EVERY_TOPIC : filter;
}

bool isQos(std::string_view tag) {
    return tag.ends_with("_qos");
}

xmlNode* lastChild(const xmlNode* parent, std::string_view tag) {
    xmlNode* last = nullptr;
    for (xmlNode* child : elementsIn(parent)) {
        last = tagOf(child) == tag ? child : last;
    }
    return last;
}

// What tells an element from others with its tag beside it.
std::string identityIn(const xmlNode* element, std::string_view parent) {
    const std::string_view tag = tagOf(element);
    if (isFiltered(tag, parent)) {
        return filterOf(element);
    }
    if (isQos(tag)) {
        return {};
    }
    if (tag == "include") {
        return attributeOf(element, "file");
    }
    if (tag == "caseDiscriminator") {
        return attributeOf(element, "value");
    }
    if (tag == "case") {
        const xmlNode* member = lastChild(element, "member");
        return member != nullptr ? nameOf(member) : "";
    }
    return element->properties != nullptr ? nameOf(element) : "";
}

class Collector {
public:
    explicit Collector(const xmlNode* element) : element_(element), tag_(tagOf(element)) {}
    std::vector<Part> collect();

private:
    void addAttributes();
    void addSide();
    void addItems(const xmlNode* list);
    void addChild(const xmlNode* child);
    void addElsewhere();
    void keepOne();
    bool has(std::string_view tag) const {
        return std::ranges::any_of(parts_,
                                   [tag](const Part& each) { return each.tag == tag && !each.isAttribute; });
    }

    const xmlNode* element_;
    std::string_view tag_;
    std::vector<Part> parts_;
    bool firstCounts_ = false;
    bool hasTypes_ = false;
    std::size_t parameters_ = 0;
};

void Collector::addAttributes() {
    const bool isEnd = tag_ == "input" || tag_ == "output";
    const bool isNamed = !isQos(tag_);
    for (const xmlAttr* attribute = element_->properties; attribute != nullptr; attribute = attribute->next) {
        const std::string_view name = toView(attribute->name);
        if (isSchemaLocation(attribute) || (isNamed && name == "name") ||
            (name == "topic_filter" && filterOf(element_) == EVERY_TOPIC) ||
            (isEnd && (name == "participant" || name == "connection"))) {
            continue;
        }
        const ValueRule& rule = ruleOfAttribute(name);
        std::string value =
            canonical(rule.form, attributeOf(element_, reinterpret_cast<const char*>(attribute->name)));
        if (rule.absent == nullptr || value != rule.absent) {
            parts_.push_back(
                {.tag = name, .value = std::move(value), .absent = rule.absent, .isAttribute = true});
        }
    }
    if (isEnd) {
        addSide();
    }
}

// Both words name the same two sides. Without one, an input is on side 1, an output where its input is not.
std::string sideOf(const xmlNode* end) {
    return attributeOf(end, "participant") + attributeOf(end, "connection");
}

// Whether the domain route has the connection of an adapter on that side; the sides come before its sessions.
bool isConnection(const xmlNode* end, const std::string& side) {
    constexpr int LEVELS = 3; // to the route, the session, the domain route
    const xmlNode* around = end;
    for (int i = 0; i < LEVELS && around != nullptr; ++i) {
        around = around->parent;
    }
    for (const xmlNode* child : elementsIn(around)) {
        const std::string_view tag = tagOf(child);
        if (levelOf(child)) {
            return false;
        }
        if (tag.ends_with("_" + side) && (tag.starts_with("participant") || tag.starts_with("connection"))) {
            return tag.starts_with("connection");
        }
    }
    return false;
}

void Collector::addSide() {
    std::string side = sideOf(element_);
    if (side.empty() && tag_ == "output") {
        const xmlNode* input = lastChild(element_->parent, "input");
        side = input != nullptr && sideOf(input) == "2" ? "1" : "2";
    }
    side = side.empty() ? "1" : side;
    const char* word = isConnection(element_, side) ? "connection" : "participant";
    parts_.push_back({.tag = "participant", .value = std::move(side), .written = word, .isAttribute = true});
}

void Collector::addItems(const xmlNode* list) {
    for (const xmlNode* item : elementsIn(list)) {
        Part part{.identity = identityOf(item), .isPresent = true};
        part.value = holdsPairs(tag_) ? "" : part.identity;
        for (const xmlNode* child : elementsIn(item)) {
            if (tagOf(child) == "value") {
                part.value = textOf(child);
            } else if (tagOf(child) == "propagate") {
                part.element = item;
            }
        }
        parts_.push_back(std::move(part));
    }
    if (holdsPairs(tag_)) {
        return;
    }
    // No name in a list is the same as one empty name, but counts where it replaces those of a base profile.
    const auto isEmpty = [](const Part& part) {
        return part.identity.empty();
    };
    const bool isPartition = tag_ == "partition";
    const bool replaces = isPartition && list != nullptr && hasBase(element_);
    if (!isPartition || (std::ranges::all_of(parts_, isEmpty) && !replaces)) {
        std::erase_if(parts_, isEmpty);
    } else if (parts_.empty()) {
        parts_.push_back({.isPresent = true});
    }
}

void Collector::addChild(const xmlNode* child) {
    const std::string_view tag = tagOf(child);
    if (tag == TYPES && std::exchange(hasTypes_, true)) {
        return; // the first stands for all
    }
    const ValueRule& rule = ruleOfElement(tag, tag_);
    Part part{.tag = tag,
              .identity = identityIn(child, tag_),
              .element = child,
              .absent = rule.absent,
              .isPresent = rule.isPresent || rule.form == ValueForm::DURATION,
              .isDuration = rule.form == ValueForm::DURATION,
              .isEntity = levelOf(child).has_value()};
    part.isPresent = part.isPresent || !part.identity.empty();
    if (part.isDuration) {
        part.value = durationOf(child);
        part.element = nullptr;
    } else if (firstChild(child) == nullptr) {
        part.value = canonical(rule.form, textOf(child));
        part.element = child->properties != nullptr || part.isPresent || part.isEntity ? child : nullptr;
    }
    if (holdsTypes(tag_)) {
        part.order = TYPE_ORDER;
    } else if (isFiltered(tag, tag_)) {
        part.order = tag;
        firstCounts_ = true;
    } else if (tag == "parameter") {
        part.order = tag;
        part.identity = std::to_string(parameters_++);
    }
    parts_.push_back(std::move(part));
}

// What is not given here is taken from elsewhere: a topic's name from the route's other end, a domain from
// the first domain route.
void Collector::addElsewhere() {
    const xmlNode* other = nullptr;
    std::string_view tag = "topic_name";
    if (tag_ == "input" || tag_ == "output") {
        const std::string_view route = tagOf(element_->parent);
        if ((route == "topic_route" || route == "route") && !has(tag) && !has("stream_name")) {
            other = lastChild(element_->parent, tag_ == "input" ? "output" : "input");
        }
    } else if ((tag_ == "administration" || tag_ == "monitoring") && !has("domain_id")) {
        tag = "domain_id";
        for (const xmlNode* route = firstChild(element_->parent); route != nullptr && other == nullptr;
             route = nextElement(route)) {
            other = lastChild(route, "participant_1");
        }
    }
    const xmlNode* source = other != nullptr ? lastChild(other, tag) : nullptr;
    if (source != nullptr) {
        parts_.push_back({.tag = tag, .value = canonical(ruleOfElement(tag, tag_).form, textOf(source))});
    }
}

// Of parts with one tag and identity the last one counts, of those for topics that match a filter the first;
// those after one for all topics are never reached. Definitions of types all count.
void Collector::keepOne() {
    constexpr std::size_t FEW = 8;
    const auto isSecond = [this](std::size_t at) {
        return std::any_of(parts_.begin(), parts_.begin() + static_cast<std::ptrdiff_t>(at),
                           [&](const Part& each) { return each.isSame(parts_[at]); });
    };
    bool hasSeconds = parts_.size() > FEW || firstCounts_;
    for (std::size_t i = 1; i < parts_.size() && !hasSeconds; ++i) {
        hasSeconds = isSecond(i);
    }
    if (!hasSeconds) {
        return;
    }
    std::unordered_map<std::string, std::size_t> seen; // place of the one kept; of definitions, how many
    std::unordered_map<std::string_view, bool> isClosed;
    const auto keyOf = [](const Part& part) {
        return (part.isAttribute ? "@" : "") + std::string(part.tag) + '\0' + part.identity;
    };
    std::vector<bool> isKept(parts_.size(), true);
    for (std::size_t i = 0; i < parts_.size(); ++i) {
        Part& part = parts_[i];
        const auto [found, isFirst] = seen.try_emplace(keyOf(part), i);
        if (isFiltered(part.tag, tag_)) {
            isKept[i] = isFirst && !isClosed[part.tag];
            isClosed[part.tag] = isClosed[part.tag] || part.identity == EVERY_TOPIC;
        } else if (!isFirst && part.order == TYPE_ORDER) {
            part.identity += " (" + std::to_string(++found->second) + ")";
        } else if (!isFirst) {
            isKept[found->second] = false;
            found->second = i;
        } else if (part.order == TYPE_ORDER) {
            found->second = 1;
        }
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
        if (isKept[i] && kept++ != i) {
            parts_[kept - 1] = std::move(parts_[i]);
        }
    }
    parts_.resize(kept);
}

// All sections with types are one: the next of them, null when there is none.
const xmlNode* sectionAfter(const xmlNode* section) {
    const bool isSection = tagOf(section) == TYPES;
    do {
        section = isSection ? nextElement(section) : nullptr;
    } while (section != nullptr && tagOf(section) != TYPES);
    return section;
}

// Nothing is said by an element without content, nor by one that says what counts anyway.
bool saysNothing(const Part& part) {
    return !part.isAttribute && !part.isEntity && part.element == nullptr &&
           ((part.absent != nullptr && part.value == part.absent) || (!part.isPresent && part.value.empty()));
}

std::vector<Part> Collector::collect() {
    addAttributes();
    if (holdsPairs(tag_)) {
        addItems(lastChild(element_, "value"));
    } else if (tag_ == "partition") {
        addItems(lastChild(element_, "name"));
    } else if (tag_ == "initial_peers") {
        addItems(element_);
    } else if (tag_ == "element") { // of pairs: the rest is in the item itself
        if (const xmlNode* propagate = lastChild(element_, "propagate")) {
            addChild(propagate);
        }
    } else {
        for (const xmlNode* section = element_; section != nullptr; section = sectionAfter(section)) {
            for (const xmlNode* child : elementsIn(section)) {
                addChild(child);
            }
        }
        addElsewhere();
    }
    keepOne();
    std::erase_if(parts_, saysNothing);
    return std::move(parts_);
}

} // namespace

bool holdsPairs(std::string_view tag) {
    return tag == "property" || tag == "input_parameters" || tag == "output_parameters";
}

std::vector<Part> partsOf(const xmlNode* element) {
    return Collector(element).collect();
}

std::vector<Part> sectionsOf(const xmlDoc* document) {
    std::vector<Part> sections = partsOf(xmlDocGetRootElement(document));
    std::erase_if(sections, [](const Part& part) { return part.isEntity; });
    return sections;
}

} // namespace zul::plan
