#include "practice_router/merge.h"

#include "practice_router/entity.h"
#include "practice_router/xml.h"
#include "practice_router/xml_nodes.h"

#include <algorithm>
#include <vector>

namespace {

bool mergeChild(xmlNode* target, xmlNode* child, std::string& error);

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string describe(const xmlNode* node) {
    const std::string name = PracticeNode_name(node);
    return std::string(PracticeNode_tag(node)) + (name.empty() ? "" : " " + quoted(name));
}

bool failed(std::string& error, std::string what) {
    error = std::move(what);
    return false;
}

// What tells an element from its siblings of the same tag: its name attribute or, in a list of pairs, its
// name element; in a list of texts the text itself. Empty when there can be only one.
std::string identity(const xmlNode* node) {
    if (PracticeNode_tag(node) != "element") {
        return PracticeNode_name(node);
    }
    for (const xmlNode* part = PracticeNode_firstChild(node); part != nullptr;
         part = PracticeNode_next(part)) {
        if (PracticeNode_tag(part) == "name") {
            return PracticeNode_text(part);
        }
    }
    return PracticeNode_text(node);
}

void mergeAttributes(xmlNode* target, const xmlNode* source) {
    for (const xmlAttr* attribute = source->properties; attribute != nullptr; attribute = attribute->next) {
        const auto* name = reinterpret_cast<const char*>(attribute->name);
        const std::string value = PracticeNode_attribute(source, name);
        xmlSetProp(target, attribute->name, reinterpret_cast<const xmlChar*>(value.c_str()));
    }
}

bool mergeLeaf(xmlNode* target, const xmlNode* source, std::string& error) {
    const std::string text = PracticeNode_text(source);
    if (PracticeNode_firstChild(target) == nullptr) {
        return PracticeNode_setText(target, text) || failed(error, "out of memory");
    }
    return text.empty() ||
           failed(error, describe(target) + " holds elements and cannot be set to a text; name one of them");
}

bool merge(xmlNode* target, xmlNode* source, std::string& error) {
    mergeAttributes(target, source);
    xmlNode* child = PracticeNode_firstChild(source);
    if (child == nullptr) {
        return mergeLeaf(target, source, error);
    }
    for (; child != nullptr; child = PracticeNode_next(child)) {
        if (!mergeChild(target, child, error)) {
            return false;
        }
    }
    return true;
}

std::vector<xmlNode*> candidatesFor(const xmlNode* target, const xmlNode* child) {
    const std::string wanted = identity(child);
    const bool needsIdentity = !wanted.empty();
    std::vector<xmlNode*> found;
    for (xmlNode* node = PracticeNode_firstChild(target); node != nullptr; node = PracticeNode_next(node)) {
        if (PracticeNode_tag(node) == PracticeNode_tag(child) &&
            (!needsIdentity || identity(node) == wanted)) {
            found.push_back(node);
        }
    }
    return found;
}

// Several elements have the tag: each next tag must be the name of one of them.
bool mergeByNames(const std::vector<xmlNode*>& candidates, const xmlNode* child, std::string& error) {
    xmlNode* part = PracticeNode_firstChild(child);
    bool named = part != nullptr;
    for (; named && part != nullptr; part = PracticeNode_next(part)) {
        const auto match =
            std::find_if(candidates.begin(), candidates.end(), [part](const xmlNode* candidate) {
                return PracticeNode_name(candidate) == PracticeNode_tag(part);
            });
        named = match != candidates.end();
        if (named && !merge(*match, part, error)) {
            return false;
        }
    }
    return named ||
           failed(error, "several elements " + describe(child) + " match; name the one that is meant");
}

// No element has the tag: it may be a name, or a setting that was not there before.
bool mergeUnmatched(xmlNode* target, xmlNode* child, std::string& error) {
    const std::string_view tag = PracticeNode_tag(child);
    const bool isEntity = PracticeEntity_level(tag).has_value();
    if (!isEntity && PracticeEntity_level(PracticeNode_tag(target)) && PracticeNode_name(target) == tag) {
        return merge(target, child, error);
    }
    xmlNode* named = isEntity ? nullptr : PracticeEntity_findChild(target, tag);
    if (named != nullptr) {
        return merge(named, child, error);
    }
    if (isEntity || !PracticeXml_isDeclared(child->name)) {
        return failed(error, describe(child) + " matches nothing in " + describe(target) +
                                 (isEntity ? "; use create for a new entity" : ""));
    }
    return PracticeNode_insertCopy(target, child) != nullptr || failed(error, "out of memory");
}

bool mergeChild(xmlNode* target, xmlNode* child, std::string& error) {
    const std::vector<xmlNode*> candidates = candidatesFor(target, child);
    if (candidates.empty()) {
        return mergeUnmatched(target, child, error);
    }
    const bool isEntity = PracticeEntity_level(PracticeNode_tag(child)).has_value();
    if (candidates.size() > 1 && isEntity) {
        return mergeByNames(candidates, child, error);
    }
    return merge(candidates.back(), child, error); // of a repeated setting the last one counts
}

// Blanks and line ends around a value do not count; a typed line leaves some.
bool trimValues(xmlNode* node, std::string& error) {
    xmlNode* child = PracticeNode_firstChild(node);
    if (child == nullptr) {
        return PracticeNode_setText(node, PracticeNode_text(node)) || failed(error, "out of memory");
    }
    while (child != nullptr && trimValues(child, error)) {
        child = PracticeNode_next(child);
    }
    return child == nullptr;
}

} // namespace

bool PracticeMerge_apply(xmlNode* target, xmlNode* snippet, std::string& error) {
    if (!trimValues(snippet, error)) {
        return false;
    }
    const bool isService = PracticeEntity_level(PracticeNode_tag(target)) == PracticeEntityLevel::SERVICE;
    if (isService && PracticeNode_tag(snippet) == PracticeNode_tag(target->parent)) {
        return merge(target->parent, snippet, error);
    }
    const std::string name = PracticeNode_name(snippet);
    if (PracticeNode_tag(snippet) == PracticeNode_tag(target) &&
        (name.empty() || name == PracticeNode_name(target))) {
        return merge(target, snippet, error);
    }
    if (!PracticeEntity_level(PracticeNode_tag(snippet))) {
        return mergeChild(target, snippet, error);
    }
    return !candidatesFor(target, snippet).empty()
               ? mergeChild(target, snippet, error)
               : failed(error, describe(snippet) + " matches nothing in " + describe(target));
}
