// Enabling, disabling, pausing, resuming, and the peers of participants.
#include "plan/document/entity.h"
#include "plan/document/merge.h"
#include "plan/document/xml_nodes.h"
#include "practice_router/actions/configuration.h"
#include "practice_router/actions/draft.h"

#include <algorithm>
#include <array>

namespace zul::practice {

using namespace plan;

namespace {

// The nearest enclosing entity that is disabled; null when all are enabled.
const xmlNode* disabledAncestor(const xmlNode* entity) {
    for (entity = entity->parent; levelOf(entity); entity = entity->parent) {
        if (!stateOf(entity).enabled) {
            return entity;
        }
    }
    return nullptr;
}

struct Transition {
    const char* done;
    bool needsEnabledAncestors;
    EntityState result;
    // Why it makes no sense in an entity that is ...; null when it does.
    const char* ofDisabled;
    const char* ofRunning;
    const char* ofPaused;
};

// clang-format off
constexpr std::array TRANSITIONS{ // by StateChange
    Transition{"enabled",  true,  {true, false},  nullptr,                        "is enabled already", "is enabled already"},
    Transition{"disabled", false, {false, false}, "is disabled already",          nullptr,              nullptr},
    Transition{"paused",   true,  {true, true},   "is disabled; enable it first", nullptr,              "is paused already"},
    Transition{"resumed",  true,  {true, false},  "is disabled; enable it first", "is not paused",      nullptr},
};
// clang-format on

// Of several the last one counts.
xmlNode* lastChildNamed(const xmlNode* parent, std::string_view tag) {
    xmlNode* last = nullptr;
    for (xmlNode* child : elementsIn(parent)) {
        last = tagOf(child) == tag ? child : last;
    }
    return last;
}

// The element that lists the initial peers, as something to merge into a participant.
XmlDocument peerSnippet(const std::vector<std::string>& peers) {
    XmlDocument document(xmlNewDoc(nullptr));
    xmlNode* node = reinterpret_cast<xmlNode*>(document.get());
    for (const char* tag : {"participant_qos", "discovery", "initial_peers"}) {
        xmlNode* child = node != nullptr ? xmlNewNode(nullptr, toXml(tag)) : nullptr;
        requireMemory(child != nullptr);
        node = xmlAddChild(node, child);
    }
    for (const std::string& peer : peers) {
        requireMemory(xmlNewTextChild(node, nullptr, toXml("element"), toXml(peer)) != nullptr);
    }
    return document;
}

// Printable UTF-8: nothing else can be in a document or be an address.
bool isPeer(const std::string& peer) {
    return !peer.empty() && xmlCheckUTF8(toXml(peer)) == 1 && std::ranges::none_of(peer, [](char c) {
        return static_cast<unsigned char>(c) <= ' ' || c == 0x7F;
    });
}

// The initial peers of a participant, with ", " between them.
std::string peersOf(const xmlNode* participant, std::size_t& count) {
    const xmlNode* list = participant;
    for (const char* tag : {"participant_qos", "discovery", "initial_peers"}) {
        list = lastChildNamed(list, tag);
    }
    std::string joined;
    for (xmlNode* peer : elementsIn(list)) {
        joined.append(joined.empty() ? "" : ", ").append(textOf(peer));
        ++count;
    }
    return joined;
}

} // namespace

Answer Configuration::changeState(StateChange change, std::string_view path) {
    return answered([&] {
        Draft draft(*this, path);
        xmlNode* entity = draft.entity();
        const Transition& wanted = TRANSITIONS[static_cast<std::size_t>(change)];
        const EntityState state = stateOf(entity);
        const char* refusal = !state.enabled ? wanted.ofDisabled
                              : state.paused ? wanted.ofPaused
                                             : wanted.ofRunning;
        if (refusal != nullptr) {
            throw Refusal{pathInWords(entity) + " " + refusal};
        }
        const xmlNode* around = wanted.needsEnabledAncestors ? disabledAncestor(entity) : nullptr;
        if (around != nullptr) {
            throw Refusal{pathInWords(around) + " is disabled; enable it first"};
        }
        setState(entity, wanted.result);
        return draft.activate(std::string(wanted.done) + " " + pathInWords(entity));
    });
}

Answer Configuration::addPeers(std::string_view domainRoutePath, bool isFirstParticipant,
                               const std::vector<std::string>& peers) {
    return answered([&] {
        Draft draft(*this, domainRoutePath, "domain route");
        const xmlNode* entity = draft.entity();
        if (levelOf(entity) != EntityLevel::DOMAIN_ROUTE) {
            refuseMissing(domainRoutePath, "domain route");
        }
        const std::string side = isFirstParticipant ? "participant_1" : "participant_2";
        xmlNode* participant = lastChildNamed(entity, side);
        if (participant == nullptr) {
            throw Refusal{pathInWords(entity) + " has no " + side +
                          "; that side is the connection of an adapter"};
        }
        if (peers.empty()) {
            throw Refusal{"no peers are given; name at least one"};
        }
        const auto bad = std::ranges::find_if_not(peers, isPeer);
        if (bad != peers.end()) {
            throw Refusal{quoted(*bad) + " is no peer; give addresses without blanks"};
        }
        const XmlDocument snippet = peerSnippet(peers);
        mergeChild(participant, xmlDocGetRootElement(snippet.get()));
        std::size_t count = 0;
        const std::string known = peersOf(participant, count);
        if (count > MAX_PEERS) {
            throw Refusal{pathInWords(entity) + " would have more than " + std::to_string(MAX_PEERS) +
                          " peers; give fewer"};
        }
        return draft.activate("peers of " + pathInWords(entity) + " " + side + ": " + known);
    });
}

} // namespace zul::practice
