// Largest and smallest encoded sizes, against the numbers that endpoints of other makers reckon with.
#include "admin_types/plugins.h"
#include "tests/admin_types/samples.h"

#include <gtest/gtest.h>

namespace {

using BoundFunction = std::size_t (*)(ZULEndpointData*, bool header, std::uint16_t id, std::size_t alignment);
struct Row {
    const char* name;
    BoundFunction bound;
    std::size_t size;
    std::size_t alignment; // of the first member
};
#define ZUL_ROWS(Type, maximum, minimum, alignment)                                                          \
    {#Type " maximum", ZUL_RoutingService_Administration_##Type##Plugin_get_serialized_sample_max_size,      \
     maximum, alignment},                                                                                    \
    {                                                                                                        \
#Type " minimum", ZUL_RoutingService_Administration_##Type##Plugin_get_serialized_sample_min_size,   \
            minimum, alignment                                                                               \
    }
const Row ROWS[] = {
    ZUL_ROWS(EntityName, 260, 5, 4),          ZUL_ROWS(XmlUrl, 4105, 9, 1),
    ZUL_ROWS(EntityDescription, 4365, 13, 4), ZUL_ROWS(PeerUpdateDescription, 4428, 12, 4),
    ZUL_ROWS(CommandKind, 4, 4, 4),           ZUL_ROWS(CommandResponseKind, 4, 4, 4),
    ZUL_ROWS(CommandId, 12, 12, 4),           ZUL_ROWS(Command, 4468, 28, 4),
    ZUL_ROWS(CommandRequest, 4788, 88, 4),    ZUL_ROWS(CommandResponse, 4118, 22, 4),
};

TEST(Bounds, OfEveryTypeFromEveryAlignment) {
    for (const auto& [name, bound, size, alignment] : ROWS) {
        for (std::size_t at = 0; at < 8; ++at) {
            SCOPED_TRACE(name + std::string(" at ") + std::to_string(at));
            // A value that begins with a boolean takes up part of its own padding instead.
            const std::size_t bare = alignment == 4 ? size + (4 - at % 4) % 4 : size - at % 4;
            EXPECT_EQ(bound(nullptr, false, 1, at), bare);
            // Behind a header, aligned to 2, members count from 0.
            EXPECT_EQ(bound(nullptr, true, 0, at), size + 4 + at % 2);
            EXPECT_EQ(bound(nullptr, true, 3, at), size + 4 + at % 2);
            EXPECT_EQ(bound(nullptr, true, 4, at), 1U);
        }
    }
}

TEST(Bounds, ExactSizeFromEveryAlignment) {
    const auto response = newSample<Response>();
    const auto size = plugin<Response>().getSerializedSampleSize;
    for (std::size_t at = 0; at < 8; ++at) {
        EXPECT_EQ(size(nullptr, false, 1, at, response.get()), 22 + (4 - at % 4) % 4) << at;
        EXPECT_EQ(size(nullptr, true, 1, at, response.get()), 26 + at % 2) << at;
        EXPECT_EQ(size(nullptr, true, 4, at, response.get()), 1U) << at;
    }
}

TEST(Bounds, HoldTheLargestSample) {
    const auto request = newSample<Request>();
    request->command._d = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER;
    auto& peer = request->command._u.peer_desc;
    const std::string longest(255, 'n');
    set(request->target_router, longest);
    set(peer.domain_route_name, longest);
    peer.peer_list.length = 16;
    for (DDS_Long i = 0; i < 16; ++i) {
        set(peer.peer_list.contiguous[i], longest);
    }
    // Under short headers: id, target and command; kind and branch with its 4428 bytes; two list ends.
    const std::size_t exact = 4 + 16 + (4 + 260) + 4 + 8 + (4 + 4428) + 4 + 4;
    EXPECT_EQ(plugin<Request>().getSerializedSampleSize(nullptr, true, 1, 0, request.get()), exact);
    const auto bytes = encode(*request, 1, exact);
    ASSERT_TRUE(bytes.has_value());
    const auto decoded = newSample<Request>();
    EXPECT_TRUE(decode(*decoded, *bytes).accepted);
    EXPECT_EQ(text(*decoded), text(*request));
}

} // namespace
