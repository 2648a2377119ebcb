// The way to change the active document: a copy of it with the states of its entities, which takes its place
// only if it passes every check that a loaded document passes.
#pragma once

#include "practice_router/actions/configuration.h"

namespace zul::practice {

class Draft {
public:
    // A copy of the active document, and the entity at a path in it.
    Draft(PracticeConfiguration& configuration, std::string_view path);

    xmlNode* entity() const { return entity_; } // null: there is none of that path
    // Parses a snippet whose nodes may be moved into the draft.
    PracticeXmlDocument parseSnippet(std::string_view text, std::string& error) const;
    // Makes the draft the active document. False, with the reason, when it would not be accepted.
    bool activate(std::string& error);

private:
    PracticeConfiguration& configuration_;
    PracticeXmlDocument document_;
    xmlNode* service_ = nullptr;
    xmlNode* entity_ = nullptr;
};

// That an operation named an entity that is not there.
PracticeAnswer noEntity(std::string_view path, std::string_view what = "entity");
// "the router", or the path of an entity.
std::string pathInWords(const xmlNode* entity);

} // namespace zul::practice
