// What asking one router and asking whole domains have in common.
#pragma once

#include "fleet/cause.h"
#include "fleet/domain.h"

#include <algorithm>

namespace zul::fleet {

// Asks for nothing but an answer.
inline const Command GREETING{.kind = ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE};

// Whether a name that was heard, maybe from a stranger, can be asked by, and asks nobody else.
inline bool isOfOne(const std::string& name) {
    return refusal(GREETING, name) == nullptr && name != "*";
}

inline Picture pictureOf(Domain& domain, Product product) {
    return {.domain = domain.id(),
            .product = product,
            .participants = domain.discovery().participants(),
            .matched = domain.matched(),
            .now = Clock::now()};
}

// When it is settled who is there: `discovery` after the domain was joined or the last participant came that
// `isAwaited`, but not later than `discovery` after `begin`, when the look began.
template <class IsAwaited>
Clock::time_point settled(const Domain& domain, const Picture& picture, Clock::duration discovery,
                          Clock::time_point begin, IsAwaited isAwaited) {
    Clock::time_point last = domain.joined();
    for (const Participant& participant : picture.participants) {
        if (participant.isHere() && isAwaited(participant)) {
            last = std::max(last, participant.since);
        }
    }
    return std::min(last, begin) + discovery;
}

// What ends waits. To be noted before responses are taken: then all that came before it is in the gathering,
// however long whoever is told of results takes.
struct Ends {
    explicit Ends(Domain& domain) : gone(domain.discovery().takeGone()) {}
    void loseWhoLeft(Gathering& gathering) const {
        for (const GuidPrefix& prefix : gone) {
            gathering.lose(prefix);
        }
    }

    std::vector<GuidPrefix> gone;
    Clock::time_point now = Clock::now();
};

} // namespace zul::fleet
