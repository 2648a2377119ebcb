// Elements are matched through Children, which are built once for each element: that keeps the time linear.
#include "plan/document/merge.h"

#include "plan/document/children.h"
#include "plan/document/definition.h"
#include "plan/document/entity.h"
#include "plan/document/text.h"
#include "plan/document/xml.h"
#include "plan/document/xml_nodes.h"

#include <set>
#include <unordered_map>

namespace zul::plan {

namespace {

// Blanks and line ends around a value do not count; typing leaves some.
void trimValues(xmlNode* node) {
    if (firstChild(node) == nullptr) {
        setText(node, textOf(node));
    }
    for (xmlNode* child : elementsIn(node)) {
        trimValues(child);
    }
}

void mergeAttributes(xmlNode* target, const xmlNode* source) {
    for (const xmlAttr* attribute = source->properties; attribute != nullptr; attribute = attribute->next) {
        const std::string value = attributeOf(source, reinterpret_cast<const char*>(attribute->name));
        requireMemory(isSchemaLocation(attribute) ||
                      xmlSetProp(target, attribute->name, toXml(value)) != nullptr);
    }
}

void mergeLeaf(xmlNode* target, const xmlNode* source) {
    const std::string text = textOf(source);
    if (firstChild(target) == nullptr) {
        setText(target, text);
    } else if (!text.empty()) {
        throw Refusal{describe(target) + " holds elements and cannot be set to a text; name one of them"};
    }
}

// One merge: what it knows of the elements that it has come to.
class Merge {
public:
    Merge(const xmlDoc* document, std::stop_token stop) : stop_(std::move(stop)), layout_(document) {}

    void apply(xmlNode* entity, xmlNode* snippet) {
        trimValues(snippet);
        const std::string_view tag = tagOf(snippet);
        const std::string name = nameOf(snippet);
        if (levelOf(entity) == EntityLevel::SERVICE && tag == tagOf(entity->parent)) {
            merge(entity->parent, snippet);
            return;
        }
        if (tag == tagOf(entity) && (name.empty() || name == nameOf(entity))) {
            merge(entity, snippet);
            return;
        }
        const bool isInside = name.empty() ? childrenOf(entity).findLast(tag) != nullptr
                                           : childrenOf(entity).find(tag, name) != nullptr;
        if (levelOf(snippet) && !isInside) {
            throw Refusal{describe(snippet) + " matches nothing in " + describe(entity)};
        }
        mergeChild(entity, snippet);
    }

    void mergeChild(xmlNode* target, xmlNode* child) {
        const std::string_view tag = tagOf(child);
        const std::string identity = identityOf(child);
        const Children& children = childrenOf(target);
        if (identity.empty() && levelOf(child) && children.hasSeveral(tag)) {
            mergeByNames(children, child);
            return;
        }
        // Of a repeated setting the last one counts.
        const bool isOnly = identity.empty() && !isItem(child);
        xmlNode* found = isOnly ? children.findLast(tag) : children.find(tag, identity);
        if (found != nullptr) {
            merge(found, child);
        } else {
            mergeUnmatched(target, child);
        }
    }

private:
    Children& childrenOf(xmlNode* target) {
        // An accepted document holds only declared elements.
        return children_.try_emplace(target, target, layout_).first->second;
    }

    void merge(xmlNode* target, xmlNode* source) {
        if (definition_.find(tagOf(target)) == nullptr) {
            throw Refusal{describe(target) + " is not known"};
        }
        mergeAttributes(target, source);
        xmlNode* child = firstChild(source);
        if (child == nullptr) {
            mergeLeaf(target, source);
            return;
        }
        checkRepetitions(target, source);
        while (child != nullptr) {
            if (stop_.stop_requested()) {
                throw Refusal{STOPPED};
            }
            xmlNode* next = nextElement(child); // before it is moved away
            mergeChild(target, child);
            child = next;
        }
    }

    // An element that the definition wants once must not be given twice. Which of two values counts would
    // depend on their order.
    void checkRepetitions(const xmlNode* target, const xmlNode* source) {
        const ContentModel& content = definition_.find(tagOf(target))->content;
        std::set<std::string_view> tags;
        for (xmlNode* child : elementsIn(source)) {
            const std::string_view tag = tagOf(child);
            if (!tags.insert(tag).second && definition_.find(tag) != nullptr && !content.repeats(tag)) {
                throw Refusal{"line " + std::to_string(lineOf(child)) + " of the update: a second " +
                              shortened(tag) + " in " + describe(target) + "; expected one"};
            }
        }
    }

    // Several elements have the tag: each next tag must be the name of one of them. What else it holds would
    // be for none of them.
    void mergeByNames(const Children& children, xmlNode* child) {
        xmlNode* part = child->properties == nullptr && !holdsText(child) ? firstChild(child) : nullptr;
        do {
            xmlNode* named =
                part != nullptr ? children.find(tagOf(child), std::string(tagOf(part))) : nullptr;
            if (named == nullptr) {
                throw Refusal{"several elements " + describe(child) + " match; name the one that is meant"};
            }
            merge(named, part);
            part = nextElement(part);
        } while (part != nullptr);
    }

    // No element has the tag: it may be a name, or a setting that was not there before.
    void mergeUnmatched(xmlNode* target, xmlNode* child) {
        const std::string_view tag = tagOf(child);
        if (!levelOf(child)) {
            const bool isTarget = levelOf(target) && nameOf(target) == tag;
            if (xmlNode* named = isTarget ? target : childrenOf(target).findEntity(tag)) {
                merge(named, child);
                return;
            }
        }
        if (levelOf(child) || definition_.find(tag) == nullptr) {
            throw Refusal{describe(child) + " matches nothing in " + describe(target) +
                          (levelOf(child) ? "; use create for a new entity" : "")};
        }
        childrenOf(target).insert(child);
    }

    const Definition& definition_ = Definition::ofProduct();
    const std::stop_token stop_;
    Layout layout_;
    std::unordered_map<xmlNode*, Children> children_;
};

} // namespace

void applySnippet(xmlNode* entity, xmlNode* snippet, const std::stop_token& stop) {
    Merge(entity->doc, stop).apply(entity, snippet);
}

void mergeChild(xmlNode* target, xmlNode* child) {
    Merge(target->doc, {}).mergeChild(target, child);
}

} // namespace zul::plan
