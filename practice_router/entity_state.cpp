// What commands change without touching the document: the state of entities, and the peers of participants.
#include "practice_router/configuration.h"
#include "practice_router/entity.h"
#include "practice_router/xml_nodes.h"

#include <algorithm>
#include <array>

namespace {

xmlNode* findEntity(const PracticeConfiguration& self, std::string_view path) {
    xmlNode* service = PracticeEntity_findService(self.document.get(), self.serviceName);
    return service != nullptr ? PracticeEntity_find(service, path) : nullptr;
}

std::string describe(const std::string& path) {
    return path.empty() ? "the router" : path;
}

PracticeEntityState stateOf(const PracticeConfiguration& self, const xmlNode* entity) {
    const auto known = self.states.find(PracticeEntity_path(entity));
    return known != self.states.end()
               ? known->second
               : PracticeEntityState{.enabled = PracticeNode_attribute(entity, "enabled") != "false",
                                     .paused = false};
}

// The nearest entity around that is disabled; null when all are enabled.
const xmlNode* disabledAncestor(const PracticeConfiguration& self, const xmlNode* entity) {
    for (entity = entity->parent; PracticeEntity_level(PracticeNode_tag(entity)); entity = entity->parent) {
        if (!stateOf(self, entity).enabled) {
            return entity;
        }
    }
    return nullptr;
}

struct StateChange {
    const char* done;
    bool needsEnabledAncestors;
    // Changes the state, or says why it makes no sense.
    const char* (*apply)(PracticeEntityState&);
};

// By PracticeStateChange.
constexpr std::array STATE_CHANGES{
    StateChange{"enabled", true,
                [](PracticeEntityState& state) {
                    const char* refusal = state.enabled ? "is enabled already" : nullptr;
                    state.enabled = true;
                    return refusal;
                }},
    StateChange{"disabled", false,
                [](PracticeEntityState& state) {
                    const char* refusal = state.enabled ? nullptr : "is disabled already";
                    state = {.enabled = false, .paused = false};
                    return refusal;
                }},
    StateChange{"paused", true,
                [](PracticeEntityState& state) -> const char* {
                    if (!state.enabled || state.paused) {
                        return state.enabled ? "is paused already" : "is disabled; enable it first";
                    }
                    state.paused = true;
                    return nullptr;
                }},
    StateChange{"resumed", true,
                [](PracticeEntityState& state) -> const char* {
                    if (!state.enabled || !state.paused) {
                        return state.enabled ? "is not paused" : "is disabled; enable it first";
                    }
                    state.paused = false;
                    return nullptr;
                }},
};

std::string join(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined.append(joined.empty() ? "" : ", ").append(text);
    }
    return joined;
}

} // namespace

PracticeAnswer PracticeConfiguration_changeState(PracticeConfiguration& self, PracticeStateChange change,
                                                 std::string_view path) {
    const xmlNode* entity = findEntity(self, path);
    if (entity == nullptr) {
        return PracticeAnswer_notFound("no entity named " + std::string(path));
    }
    const StateChange& wanted = STATE_CHANGES[static_cast<std::size_t>(change)];
    const std::string own = PracticeEntity_path(entity);
    PracticeEntityState state = stateOf(self, entity);
    if (const char* refusal = wanted.apply(state)) {
        return PracticeAnswer_error(describe(own) + " " + refusal);
    }
    const xmlNode* around = wanted.needsEnabledAncestors ? disabledAncestor(self, entity) : nullptr;
    if (around != nullptr) {
        return PracticeAnswer_error(describe(PracticeEntity_path(around)) + " is disabled; enable it first");
    }
    self.states[own] = state;
    return PracticeAnswer_ok(std::string(wanted.done) + " " + describe(own));
}

PracticeAnswer PracticeConfiguration_addPeers(PracticeConfiguration& self, std::string_view domainRoutePath,
                                              bool isFirstParticipant,
                                              const std::vector<std::string>& peers) {
    const xmlNode* entity = findEntity(self, domainRoutePath);
    if (entity == nullptr ||
        PracticeEntity_level(PracticeNode_tag(entity)) != PracticeEntityLevel::DOMAIN_ROUTE) {
        return PracticeAnswer_notFound("no domain route named " + std::string(domainRoutePath));
    }
    const std::string own = PracticeEntity_path(entity);
    const std::string participant = isFirstParticipant ? "participant_1" : "participant_2";
    const xmlNode* side = PracticeNode_firstChild(entity);
    while (side != nullptr && PracticeNode_tag(side) != participant) {
        side = PracticeNode_next(side);
    }
    if (side == nullptr) {
        return PracticeAnswer_error(own + " has no " + participant +
                                    "; that side is the connection of an adapter");
    }
    if (peers.empty()) {
        return PracticeAnswer_error("no peers are given; name at least one");
    }
    std::vector<std::string> known = self.peers[{own, isFirstParticipant}];
    for (const std::string& peer : peers) {
        if (std::find(known.begin(), known.end(), peer) == known.end()) {
            known.push_back(peer);
        }
    }
    if (known.size() > PRACTICE_MAX_PEERS) {
        return PracticeAnswer_error(own + " would have more than " + std::to_string(PRACTICE_MAX_PEERS) +
                                    " peers; give fewer");
    }
    const std::string text = "peers of " + own + " " + participant + ": " + join(known);
    self.peers[{own, isFirstParticipant}] = std::move(known);
    return PracticeAnswer_ok(text);
}
