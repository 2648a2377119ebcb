// What holds between the ends of a route and the sides of its domain route.
#pragma once

#include "plan/document/definition.h"

namespace zul::plan {

// What the two sides of a domain route are.
struct Sides {
    bool hasParticipant[2] = {};
    bool hasConnection[2] = {};
    // Of which exactly one is there on each side; otherwise the definition is broken, which is told
    // elsewhere.
    bool areKnown() const;
};
Sides sidesOf(const xmlNode* domainRoute);

// Reports what is wrong with the ends of a route of any kind.
void checkRoute(const xmlNode* route, const Sides& sides, const Report& report);

} // namespace zul::plan
