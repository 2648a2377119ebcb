// The commands that lead a router from one document to another: no more than are needed, in an order that
// works, and played on a copy before they are handed out.
//
// For each parent: first deletes, then updates, then creates; sections that entities use come first of all.
// An update adds and replaces. Where something has to go that no update takes away, the nearest entity around
// is deleted and created anew. What takes effect only when an entity is enabled again is done while it is
// disabled, and an entity that takes it from a profile is disabled and enabled after that; of several
// entities inside each other the outermost is enough.
#pragma once

#include "plan/compare/compare.h"
#include "plan/document/xml.h"

namespace zul::plan {

struct Step {
    enum class Kind { UPDATE, CREATE, REMOVE, ENABLE, DISABLE, LOAD };
    Kind kind;
    std::string entity{}; // its path, empty for the router; of CREATE its parent's; of LOAD a configuration
    std::string xml{};    // of UPDATE, CREATE and LOAD
};
using Plan = std::vector<Step>;

// From what runs to what is wanted, both with a configuration of that name. Never loads. Refuses what no
// command can express, naming it, and a document that does not follow the definition.
Plan makePlan(const xmlDoc* running, const xmlDoc* wanted, std::string_view configuration);

// Back to `wanted`, which ran before and whose text is `before`: a plan as above or, where no other command
// can express it, a load of the whole text. `whyLoad`, if not null, then says why.
Plan makeWayBack(const xmlDoc* running, const xmlDoc* wanted, std::string_view configuration,
                 const std::string& before, std::string* whyLoad);

// Does to a document what a router does for a step that is no LOAD. Refuses what a router refuses.
void play(const Step& step, xmlDoc* document, std::string_view configuration);

} // namespace zul::plan
