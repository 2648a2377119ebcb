// Why a router does not answer: the cause, from what is known of the domain, with the evidence for it. Knows
// nothing of DDS; the same picture gives the same cause.
#pragma once

#include "fleet/discovery.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace zul::fleet {

// What is known when the question is asked.
struct Picture {
    std::int32_t domain = 0;
    Product product = Product::ROUTING;
    std::vector<Participant> participants{};
    std::set<Guid> matched{}; // endpoints of others that match ours
    Clock::time_point now{};
    // What became of a request to the router, if one was sent and that is known.
    enum class Reply { NOT_ASKED, ANSWERED, NONE } reply = Reply::NOT_ASKED;
    std::chrono::milliseconds waited{}; // for the answer, or until it came
    // What other domains showed, where they were looked at.
    std::vector<Picture> others{};

    // It matches ours, and what it exchanges is encoded as ours is.
    bool isMatched(const Endpoint& endpoint) const;
    // It is here, and its request reader and its response writer both match.
    bool isMatched(const Participant& participant) const;
};

enum class CauseKind {
    ANSWERS,
    NOBODY,
    OTHER_DOMAIN,
    NO_SUCH_NAME,
    WRONG_PRODUCT,
    TYPE_MISMATCH,
    INCOMPATIBLE_QOS,
    ONE_WAY,
    SILENT,
    GONE,
    NOT_AUTHENTICATED,
    UNKNOWN,
};
// "answers", "nobody", ...
const char* nameOf(CauseKind kind);

struct Cause {
    CauseKind kind = CauseKind::UNKNOWN;
    std::string text{};                  // one sentence for the operator
    std::vector<std::string> evidence{}; // what was seen, a fact each
};

Cause findCause(const Picture& picture, const std::string& router);

// The names in the order of their likeness to `name`, the nearest first.
std::vector<std::string> nearestFirst(std::vector<std::string> names, const std::string& name);

} // namespace zul::fleet
