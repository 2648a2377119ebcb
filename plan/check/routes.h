// What holds between the ends of a route and the sides of its domain route.
#pragma once

#include "plan/document/definition.h"

namespace zul::plan {

// What the two sides of a domain route are.
struct Sides {
    bool hasParticipant[2] = {};
    bool hasConnection[2] = {};
    // Whether each side has exactly one of the two; if not, the check against the definition reports it.
    bool areKnown() const;
};
Sides sidesOf(const xmlNode* domainRoute);

// Reports what is wrong with the ends of a route of any kind.
void checkRoute(const xmlNode* route, const Sides& sides, const Report& report);

} // namespace zul::plan
