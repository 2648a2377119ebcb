// Elements are matched through Children, each built once a merge: that keeps the time linear.
#include "practice_router/document/merge.h"

#include "practice_router/document/children.h"
#include "practice_router/document/definition.h"
#include "practice_router/document/entity.h"
#include "practice_router/document/text.h"
#include "practice_router/document/xml.h"
#include "practice_router/document/xml_nodes.h"

#include <set>
#include <unordered_map>

namespace zul::practice {

namespace {

// One merge: what it knows of the elements that it has come to.
class Merge {
public:
    Merge(const Definition& definition, const xmlDoc* document, const std::stop_token& stop,
          std::string& error)
        : definition_(definition), stop_(stop), error_(error), layout_(document) {}

    bool apply(xmlNode* entity, xmlNode* snippet);
    bool mergeChild(xmlNode* target, xmlNode* child);

private:
    bool failed(std::string what) {
        error_ = std::move(what);
        return false;
    }
    Children& childrenOf(xmlNode* target);
    bool merge(xmlNode* target, xmlNode* source);
    bool mergeLeaf(xmlNode* target, const xmlNode* source);
    bool mergeByNames(const Children& children, xmlNode* child);
    bool mergeUnmatched(xmlNode* target, xmlNode* child);
    bool checkRepetitions(const xmlNode* target, const xmlNode* source);

    const Definition& definition_;
    const std::stop_token stop_;
    std::string& error_;
    Layout layout_;
    std::unordered_map<xmlNode*, Children> children_;
};

Children& Merge::childrenOf(xmlNode* target) {
    const auto found = children_.find(target);
    // What is in an accepted document is declared.
    return found != children_.end()
               ? found->second
               : children_.try_emplace(target, target, *definition_.contentOf(tagOf(target)), layout_)
                     .first->second;
}

// Blanks and line ends around a value do not count; a typed line leaves some.
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

bool Merge::mergeLeaf(xmlNode* target, const xmlNode* source) {
    const std::string text = textOf(source);
    if (firstChild(target) == nullptr) {
        setText(target, text);
        return true;
    }
    return text.empty() ||
           failed(describe(target) + " holds elements and cannot be set to a text; name one of them");
}

// An element that the definition wants once must not be given twice. Which of two values counts would depend
// on their order.
bool Merge::checkRepetitions(const xmlNode* target, const xmlNode* source) {
    const ContentModel& content = *definition_.contentOf(tagOf(target));
    std::set<std::string_view> tags;
    for (xmlNode* child : elementsIn(source)) {
        const std::string_view tag = tagOf(child);
        if (!tags.insert(tag).second && definition_.contentOf(tag) != nullptr && !content.repeats(tag)) {
            return failed("line " + std::to_string(lineOf(child)) + " of the update: a second " +
                          shortened(tag) + " in " + describe(target) + "; expected one");
        }
    }
    return true;
}

bool Merge::merge(xmlNode* target, xmlNode* source) {
    if (stop_.stop_requested()) {
        return failed(STOPPED);
    }
    if (definition_.contentOf(tagOf(target)) == nullptr) {
        return failed(describe(target) + " is not known");
    }
    mergeAttributes(target, source);
    xmlNode* child = firstChild(source);
    if (child == nullptr) {
        return mergeLeaf(target, source);
    }
    if (!checkRepetitions(target, source)) {
        return false;
    }
    while (child != nullptr) {
        xmlNode* next = nextElement(child); // before it is moved away
        if (!mergeChild(target, child)) {
            return false;
        }
        child = next;
    }
    return true;
}

// Several elements have the tag: each next tag must be the name of one of them.
bool Merge::mergeByNames(const Children& children, xmlNode* child) {
    xmlNode* part = firstChild(child);
    xmlNode* named = nullptr;
    do {
        named = part != nullptr ? children.find(tagOf(child), std::string(tagOf(part))) : nullptr;
        if (named == nullptr) {
            return failed("several elements " + describe(child) + " match; name the one that is meant");
        }
        if (!merge(named, part)) {
            return false;
        }
        part = nextElement(part);
    } while (part != nullptr);
    return true;
}

// No element has the tag: it may be a name, or a setting that was not there before.
bool Merge::mergeUnmatched(xmlNode* target, xmlNode* child) {
    const std::string_view tag = tagOf(child);
    if (!levelOf(child)) {
        if (levelOf(target) && nameOf(target) == tag) {
            return merge(target, child);
        }
        if (xmlNode* named = childrenOf(target).findEntity(tag)) {
            return merge(named, child);
        }
    }
    if (levelOf(child) || definition_.contentOf(tag) == nullptr) {
        return failed(describe(child) + " matches nothing in " + describe(target) +
                      (levelOf(child) ? "; use create for a new entity" : ""));
    }
    return childrenOf(target).insert(child, error_);
}

bool Merge::mergeChild(xmlNode* target, xmlNode* child) {
    const std::string_view tag = tagOf(child);
    const std::string identity = identityOf(child);
    const Children& children = childrenOf(target);
    if (identity.empty() && levelOf(child) && children.hasSeveral(tag)) {
        return mergeByNames(children, child);
    }
    // Of a repeated setting the last one counts.
    xmlNode* found = identity.empty() ? children.findLast(tag) : children.find(tag, identity);
    return found != nullptr ? merge(found, child) : mergeUnmatched(target, child);
}

bool Merge::apply(xmlNode* entity, xmlNode* snippet) {
    trimValues(snippet);
    const std::string_view tag = tagOf(snippet);
    const bool isService = levelOf(entity) == EntityLevel::SERVICE;
    if (isService && tag == tagOf(entity->parent)) {
        return merge(entity->parent, snippet);
    }
    const std::string name = nameOf(snippet);
    if (tag == tagOf(entity) && (name.empty() || name == nameOf(entity))) {
        return merge(entity, snippet);
    }
    const bool isInside = name.empty() ? childrenOf(entity).findLast(tag) != nullptr
                                       : childrenOf(entity).find(tag, name) != nullptr;
    return !levelOf(snippet) || isInside
               ? mergeChild(entity, snippet)
               : failed(describe(snippet) + " matches nothing in " + describe(entity));
}

} // namespace

bool applySnippet(xmlNode* entity, xmlNode* snippet, const std::stop_token& stop, std::string& error) {
    return Merge(Definition::ofProduct(), entity->doc, stop, error).apply(entity, snippet);
}

bool mergeChild(xmlNode* target, xmlNode* child, std::string& error) {
    return Merge(Definition::ofProduct(), target->doc, {}, error).mergeChild(target, child);
}

} // namespace zul::practice
