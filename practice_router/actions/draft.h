// A change of the active document: a copy of it, with the states of its entities, that takes its place only
// if it passes every check that a loaded document passes.
#pragma once

#include "practice_router/actions/configuration.h"

namespace zul::practice {

class Draft {
public:
    // Copies the active document and finds the entity at a path in it. Refuses a path that leads nowhere:
    // there is no such `what`.
    Draft(Configuration& configuration, std::string_view path, const char* what = "entity");

    xmlNode* entity() const { return entity_; }
    // Parses a snippet whose nodes may be moved into the draft.
    plan::XmlDocument parseSnippet(std::string_view text) const;
    // Makes the draft the active document and answers `done`; nothing fails after that. Refuses what would
    // not be accepted.
    Answer activate(std::string done);

private:
    Configuration& configuration_;
    plan::XmlDocument document_;
    xmlNode* service_ = nullptr;
    xmlNode* entity_ = nullptr;
};

// Refuses the name of an entity that is not there.
[[noreturn]] void refuseMissing(std::string_view path, const char* what);
// "the router", or the path of an entity.
std::string pathInWords(const xmlNode* entity);

} // namespace zul::practice
