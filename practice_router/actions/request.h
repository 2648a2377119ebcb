// One request as the router works on it: a copy of what the middleware delivered, free of its memory.
#pragma once

#include "admin_types/modules.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// The GUID of the writer that a request came from. Its first twelve bytes are those of the participant.
using PracticeWriterGuid = std::array<std::uint8_t, 16>;
constexpr std::size_t PRACTICE_GUID_PREFIX = 12;

struct PracticeRequestId {
    std::int32_t host;
    std::int32_t app;
    std::int32_t invocation;
    bool operator==(const PracticeRequestId&) const = default;
};

struct PracticeRequest {
    PracticeRequestId id{};
    std::string target; // name of the router addressed, or "*" for every router
    ZUL_RoutingService_Administration_CommandKind kind{};
    std::string entity;             // the entity, parent, configuration or domain route that the kind names
    bool isFinal = true;            // false: more pieces of `content` follow
    std::string content;            // XML URL, or a piece of one
    bool isFirstParticipant = true; // add_peer
    std::vector<std::string> peers; // add_peer
    PracticeWriterGuid writer{};
};

constexpr const char* PRACTICE_EVERY_ROUTER = "*";

// "ENABLE" and so on; "UNKNOWN" for a value that is none.
constexpr const char* PracticeRequest_kindName(std::int32_t kind) {
    switch (kind) {
#define X(name, value)                                                                                       \
    case value:                                                                                              \
        return #name;
        ZUL_ADMINISTRATION_COMMAND_KINDS(X)
#undef X
    default:
        return "UNKNOWN";
    }
}
