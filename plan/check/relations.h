// Which of two values inside one element must not be above the other.
#pragma once

#include "plan/document/definition.h"

#include <string_view>
#include <vector>

namespace zul::plan {

struct Relation;

// Those inside elements of one tag.
std::vector<const Relation*> findRelations(std::string_view tag);

// Reports where an element breaks the relation. Only values that are written in the element itself and are as
// they should be are compared: others may come from a base profile, or are reported elsewhere.
void checkRelation(const Relation& relation, const xmlNode* holder, const Report& report);

} // namespace zul::plan
