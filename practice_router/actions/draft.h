// The way to change the active document: a copy of it with the states of its entities, which takes its place
// only if it passes every check that a loaded document passes.
#pragma once

#include "practice_router/actions/configuration.h"

namespace zul::practice {

class Draft {
public:
    // A copy of the active document, and the entity at a path in it.
    Draft(Configuration& configuration, std::string_view path);

    xmlNode* entity() const { return entity_; } // null: there is none of that path
    // Parses a snippet whose nodes may be moved into the draft.
    XmlDocument parseSnippet(std::string_view text, std::string& error) const;
    // Makes the draft the active document and answers `done`, or says why it would not be accepted. Nothing
    // fails after the change.
    Answer activate(std::string done);

private:
    Configuration& configuration_;
    XmlDocument document_;
    xmlNode* service_ = nullptr;
    xmlNode* entity_ = nullptr;
};

// That an operation named an entity that is not there.
Answer noEntity(std::string_view path, std::string_view what = "entity");
// "the router", or the path of an entity.
std::string pathInWords(const xmlNode* entity);

} // namespace zul::practice
