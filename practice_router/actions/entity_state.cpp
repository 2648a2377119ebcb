// Enabling, disabling, pausing, resuming, and the peers of participants.
#include "practice_router/actions/configuration.h"
#include "practice_router/actions/draft.h"
#include "practice_router/document/entity.h"
#include "practice_router/document/merge.h"
#include "practice_router/document/xml_nodes.h"

#include <algorithm>
#include <array>

using namespace zul::practice;

namespace {

// The nearest entity around that is disabled; null when all are enabled.
const xmlNode* disabledAncestor(const xmlNode* entity) {
    for (entity = entity->parent; PracticeEntity_level(PracticeNode_tag(entity)); entity = entity->parent) {
        if (!PracticeEntity_state(entity).enabled) {
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

// Of several the last one counts.
xmlNode* lastChildNamed(const xmlNode* parent, std::string_view tag) {
    xmlNode* last = nullptr;
    for (xmlNode* child = PracticeNode_firstChild(parent); child != nullptr;
         child = PracticeNode_next(child)) {
        last = PracticeNode_tag(child) == tag ? child : last;
    }
    return last;
}

// The element that lists the initial peers, as something to merge into a participant.
PracticeXmlDocument peerSnippet(const std::vector<std::string>& peers) {
    const auto name = [](const char* text) {
        return reinterpret_cast<const xmlChar*>(text);
    };
    PracticeXmlDocument document(xmlNewDoc(name("1.0")));
    xmlNode* node = document != nullptr
                        ? xmlNewDocNode(document.get(), nullptr, name("participant_qos"), nullptr)
                        : nullptr;
    if (node == nullptr) {
        return nullptr;
    }
    xmlDocSetRootElement(document.get(), node);
    for (const char* tag : {"discovery", "initial_peers"}) {
        node = node != nullptr ? xmlNewChild(node, nullptr, name(tag), nullptr) : nullptr;
    }
    for (const std::string& peer : peers) {
        if (node == nullptr ||
            xmlNewTextChild(node, nullptr, name("element"), name(peer.c_str())) == nullptr) {
            return nullptr;
        }
    }
    return document;
}

// Printable UTF-8: nothing else can stand in a document or be an address.
bool isPeer(const std::string& peer) {
    return !peer.empty() && xmlCheckUTF8(reinterpret_cast<const xmlChar*>(peer.c_str())) == 1 &&
           std::none_of(peer.begin(), peer.end(),
                        [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == 0x7F; });
}

// The initial peers of a participant, with ", " between them.
std::string peersOf(const xmlNode* participant, std::size_t& count) {
    const xmlNode* list = participant;
    for (const char* tag : {"participant_qos", "discovery", "initial_peers"}) {
        list = lastChildNamed(list, tag);
    }
    std::string joined;
    for (const xmlNode* peer = PracticeNode_firstChild(list); peer != nullptr;
         peer = PracticeNode_next(peer)) {
        joined.append(joined.empty() ? "" : ", ").append(PracticeNode_text(peer));
        ++count;
    }
    return joined;
}

} // namespace

PracticeAnswer PracticeConfiguration_changeState(PracticeConfiguration& self, PracticeStateChange change,
                                                 std::string_view path) {
    Draft draft(self, path);
    xmlNode* entity = draft.entity();
    if (entity == nullptr) {
        return noEntity(path);
    }
    const StateChange& wanted = STATE_CHANGES[static_cast<std::size_t>(change)];
    PracticeEntityState state = PracticeEntity_state(entity);
    if (const char* refusal = wanted.apply(state)) {
        return PracticeAnswer_error(pathInWords(entity) + " " + refusal);
    }
    const xmlNode* around = wanted.needsEnabledAncestors ? disabledAncestor(entity) : nullptr;
    if (around != nullptr) {
        return PracticeAnswer_error(pathInWords(around) + " is disabled; enable it first");
    }
    std::string error = "out of memory";
    return PracticeEntity_setState(entity, state) && draft.activate(error)
               ? PracticeAnswer_ok(std::string(wanted.done) + " " + pathInWords(entity))
               : PracticeAnswer_error(error);
}

PracticeAnswer PracticeConfiguration_addPeers(PracticeConfiguration& self, std::string_view domainRoutePath,
                                              bool isFirstParticipant,
                                              const std::vector<std::string>& peers) {
    Draft draft(self, domainRoutePath);
    const xmlNode* entity = draft.entity();
    if (entity == nullptr ||
        PracticeEntity_level(PracticeNode_tag(entity)) != PracticeEntityLevel::DOMAIN_ROUTE) {
        return noEntity(domainRoutePath, "domain route");
    }
    const std::string side = isFirstParticipant ? "participant_1" : "participant_2";
    xmlNode* participant = lastChildNamed(entity, side);
    if (participant == nullptr) {
        return PracticeAnswer_error(pathInWords(entity) + " has no " + side +
                                    "; that side is the connection of an adapter");
    }
    if (peers.empty()) {
        return PracticeAnswer_error("no peers are given; name at least one");
    }
    const auto bad = std::find_if_not(peers.begin(), peers.end(), isPeer);
    if (bad != peers.end()) {
        return PracticeAnswer_error(quoted(*bad) + " is no peer; give addresses without blanks");
    }
    const PracticeXmlDocument snippet = peerSnippet(peers);
    std::string error = "out of memory";
    if (snippet == nullptr || !mergeChild(participant, xmlDocGetRootElement(snippet.get()), error)) {
        return PracticeAnswer_error(error);
    }
    std::size_t count = 0;
    const std::string known = peersOf(participant, count);
    if (count > PRACTICE_MAX_PEERS) {
        return PracticeAnswer_error(pathInWords(entity) + " would have more than " +
                                    std::to_string(PRACTICE_MAX_PEERS) + " peers; give fewer");
    }
    return draft.activate(error)
               ? PracticeAnswer_ok("peers of " + pathInWords(entity) + " " + side + ": " + known)
               : PracticeAnswer_error(error);
}
