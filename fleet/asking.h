// What asking one router and asking whole domains have in common.
#pragma once

#include "fleet/cause.h"
#include "fleet/domain.h"

namespace zul::fleet {

// Asks for nothing but an answer.
inline const Command GREETING{.kind = ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE};

inline Picture pictureOf(Domain& domain, Product product) {
    return {.domain = domain.id(),
            .product = product,
            .participants = domain.discovery().participants(),
            .matched = domain.matched(),
            .now = Clock::now()};
}

inline void loseWhoLeft(Domain& domain, Gathering& gathering) {
    for (const GuidPrefix& prefix : domain.discovery().takeGone()) {
        gathering.lose(prefix);
    }
}

} // namespace zul::fleet
