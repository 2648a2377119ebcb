// One request as the router works on it: a copy of what the middleware delivered, free of its memory.
#pragma once

#include "admin_types/commands.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace zul::practice {

// The GUID of the writer that a request came from. Its first twelve bytes are those of the participant.
using WriterGuid = std::array<std::uint8_t, 16>;
constexpr std::size_t GUID_PREFIX = 12;

struct RequestId {
    std::int32_t host;
    std::int32_t app;
    std::int32_t invocation;
    bool operator==(const RequestId&) const = default;
};

struct Request {
    RequestId id{};
    std::string target; // name of the router addressed, or "*" for every router
    ZUL_RoutingService_Administration_CommandKind kind{};
    std::string entity;             // the entity, parent, configuration or domain route that the kind names
    bool isFinal = true;            // false: more pieces of `content` follow
    std::string content;            // XML URL, or a piece of one
    bool isFirstParticipant = true; // add_peer
    std::vector<std::string> peers; // add_peer
    WriterGuid writer{};
    bool followsLoss = false; // requests before it were lost, of whichever client
};

constexpr const char* EVERY_ROUTER = "*";

} // namespace zul::practice
