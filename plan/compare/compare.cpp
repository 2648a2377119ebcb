// Parts are matched in the order of the documents as long as that fits, then by a map. A path is made
// only for what differs.
#include "plan/compare/compare.h"

#include "plan/document/entity.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace zul::plan {

namespace {

constexpr std::size_t MAX_PATH = 4096; // bytes; a longer one is cut
constexpr std::size_t NONE = static_cast<std::size_t>(-1);

std::string keyOf(const Part& part) {
    return (part.isAttribute ? "@" : "") + std::string(part.tag) + '\0' + part.identity;
}

// Finds the counterparts of one list's parts in another.
class Matches {
public:
    explicit Matches(const std::vector<Part>& parts) : parts_(parts), isTaken_(parts.size()) {}

    // NONE: there is none.
    std::size_t take(const Part& part) {
        std::size_t at = next_;
        if (at >= parts_.size() || !parts_[at].isSame(part)) {
            at = find(part);
        }
        if (at != NONE) {
            isTaken_[at] = true;
            next_ = at + 1;
        }
        return at;
    }
    bool isTaken(std::size_t at) const { return isTaken_[at]; }

private:
    std::size_t find(const Part& part) {
        if (index_.empty()) {
            for (std::size_t i = 0; i < parts_.size(); ++i) {
                index_.emplace(keyOf(parts_[i]), i);
            }
        }
        const auto found = index_.find(keyOf(part));
        return found != index_.end() ? found->second : NONE;
    }

    const std::vector<Part>& parts_;
    std::vector<bool> isTaken_;
    std::size_t next_ = 0;
    std::unordered_map<std::string, std::size_t> index_;
};

std::string orderOf(const std::vector<Part>& parts, std::string_view word) {
    std::string order;
    for (const Part& part : parts) {
        if (part.order == word && order.size() <= MAX_SHOWN) {
            order.append(order.empty() ? "" : ", ").append(part.identity.empty() ? part.tag : part.identity);
        }
    }
    return "in the order " + shortened(order);
}

const xmlNode* skipBlanks(const xmlNode* node) {
    while (node != nullptr &&
           (node->type == XML_COMMENT_NODE || (node->type == XML_TEXT_NODE && !isText(node)))) {
        node = node->next;
    }
    return node;
}

// Whether two elements are written alike, blanks and comments apart. What they mean is not looked at.
bool isWrittenTheSame(const xmlNode* one, const xmlNode* other) {
    if (tagOf(one) != tagOf(other)) {
        return false;
    }
    const xmlAttr* otherAttribute = other->properties;
    for (const xmlAttr* each = one->properties; each != nullptr; each = each->next) {
        if (otherAttribute == nullptr || toView(each->name) != toView(otherAttribute->name) ||
            xmlStrEqual(each->children != nullptr ? each->children->content : nullptr,
                        otherAttribute->children != nullptr ? otherAttribute->children->content : nullptr) ==
                0) {
            return false;
        }
        otherAttribute = otherAttribute->next;
    }
    const xmlNode* otherChild = skipBlanks(other->children);
    for (const xmlNode* each = skipBlanks(one->children); each != nullptr; each = skipBlanks(each->next)) {
        const bool isSame =
            otherChild != nullptr && each->type == otherChild->type &&
            (each->type == XML_ELEMENT_NODE ? isWrittenTheSame(each, otherChild)
                                            : xmlStrEqual(each->content, otherChild->content) == 1);
        if (!isSame) {
            return false;
        }
        otherChild = skipBlanks(otherChild->next);
    }
    return otherAttribute == nullptr && otherChild == nullptr;
}

class Comparison {
public:
    Comparison(const OnDifference& onDifference, bool entersEntities)
        : onDifference_(onDifference), entersEntities_(entersEntities) {}

    void compareElements(const xmlNode* running, const xmlNode* wanted) {
        compareLists(partsOf(running), partsOf(wanted));
    }
    void compareLists(const std::vector<Part>& running, const std::vector<Part>& wanted);

private:
    void compareParts(const Part& running, const Part& wanted);
    void noteLone(const Part& part, Change change);
    void expand(const Part& part, Change change);
    void note(Change change, const std::string& from, const std::string& to) {
        onDifference_(steps_, change, from, to);
    }
    void noteOneSided(Change change, const std::string& value) {
        note(change, change == Change::REMOVED ? value : "", change == Change::ADDED ? value : "");
    }

    const OnDifference& onDifference_;
    bool entersEntities_;
    std::vector<const Part*> steps_;
};

void Comparison::compareLists(const std::vector<Part>& running, const std::vector<Part>& wanted) {
    Matches matches(wanted);
    std::map<std::string_view, std::size_t> last; // of an order, where it has got to
    std::vector<std::string_view> disordered;
    for (const Part& part : running) {
        const std::size_t at = matches.take(part);
        if (at == NONE) {
            noteLone(part, Change::REMOVED);
            continue;
        }
        if (!part.order.empty()) {
            std::size_t& reached = last[part.order];
            if (at + 1 < reached && std::ranges::find(disordered, part.order) == disordered.end()) {
                disordered.push_back(part.order);
            }
            reached = std::max(reached, at + 1);
        }
        compareParts(part, wanted[at]);
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (!matches.isTaken(i)) {
            noteLone(wanted[i], Change::ADDED);
        }
    }
    for (const std::string_view order : disordered) {
        note(Change::MOVED, orderOf(running, order), orderOf(wanted, order));
    }
}

void Comparison::compareParts(const Part& running, const Part& wanted) {
    if (wanted.isEntity && !entersEntities_) {
        return;
    }
    // What has a name takes nothing from elements beside it.
    if (!wanted.identity.empty() && running.element != nullptr && wanted.element != nullptr &&
        running.identity == wanted.identity && isWrittenTheSame(running.element, wanted.element)) {
        return;
    }
    steps_.push_back(&wanted);
    if (running.value != wanted.value) {
        note(Change::CHANGED, running.value, wanted.value);
    }
    if (running.element != nullptr || wanted.element != nullptr) {
        compareLists(running.element != nullptr ? partsOf(running.element) : std::vector<Part>{},
                     wanted.element != nullptr ? partsOf(wanted.element) : std::vector<Part>{});
    }
    steps_.pop_back();
}

// A label that only one side has was made up by the service.
void Comparison::noteLone(const Part& part, Change change) {
    if ((part.isAttribute && part.tag == "name") || (part.isEntity && !entersEntities_)) {
        return;
    }
    steps_.push_back(&part);
    if (part.absent != nullptr) {
        const bool isWanted = change == Change::ADDED;
        note(Change::CHANGED, isWanted ? part.absent : part.value, isWanted ? part.value : part.absent);
    } else if (part.isEntity) {
        noteOneSided(change, std::string(part.tag));
    } else {
        expand(part, change);
    }
    steps_.pop_back();
}

// A part that holds others is reported by what it holds.
void Comparison::expand(const Part& part, Change change) {
    const std::vector<Part> inside = part.element != nullptr ? partsOf(part.element) : std::vector<Part>{};
    const bool isItem = part.tag.empty(); // a pair is not complete without its value, however empty
    if (!part.value.empty() || isItem || (inside.empty() && (part.isPresent || part.isAttribute))) {
        noteOneSided(change, part.value);
    }
    for (const Part& each : inside) {
        noteLone(each, change);
    }
}

std::string pathOf(Steps steps) {
    std::string path;
    std::size_t entities = 0;
    for (; entities < steps.size() && steps[entities]->isEntity; ++entities) {
        path.append(entities == 0 ? "" : PATH_SEPARATOR).append(steps[entities]->identity);
    }
    for (std::size_t i = entities; i < steps.size(); ++i) {
        const Part& step = *steps[i];
        path.append(i == entities ? "/" : step.tag.empty() ? "" : ".").append(step.tag);
        if (step.tag.empty() || !step.identity.empty()) {
            path.append("[").append(step.identity).append("]");
        }
    }
    return path.empty() ? "/" : path.size() > MAX_PATH ? shortened(path, MAX_PATH) : path;
}

} // namespace

std::vector<Difference> compare(const xmlDoc* running, const xmlDoc* wanted, std::string_view configuration) {
    std::vector<Difference> differences;
    const OnDifference collect = [&](Steps steps, Change change, const std::string& from,
                                     const std::string& to) {
        differences.push_back({pathOf(steps), change, from, to});
    };
    compareSections(running, wanted, collect);
    Comparison(collect, true)
        .compareElements(findService(running, configuration), findService(wanted, configuration));
    return differences;
}

std::vector<std::string> configurationsOf(const xmlDoc* document) {
    std::vector<std::string> names;
    for (const xmlNode* node : elementsIn(xmlDocGetRootElement(document))) {
        if (levelOf(node) == EntityLevel::SERVICE) {
            names.push_back(nameOf(node));
        }
    }
    return names;
}

void compareSettings(const xmlNode* running, const xmlNode* wanted, const OnDifference& onDifference) {
    Comparison(onDifference, false).compareElements(running, wanted);
}

void compareSections(const xmlDoc* running, const xmlDoc* wanted, const OnDifference& onDifference) {
    Comparison(onDifference, false).compareLists(sectionsOf(running), sectionsOf(wanted));
}

} // namespace zul::plan
