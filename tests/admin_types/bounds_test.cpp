// Largest and smallest encoded sizes, against the numbers that endpoints of other makers reckon with.
#include "admin_types/plugins.h"
#include "tests/admin_types/samples.h"

#include <gtest/gtest.h>

namespace {

using BoundFunction = std::size_t (*)(ZULEndpointData*, bool header, std::uint16_t id, std::size_t alignment);
struct Row {
    const char* name;
    BoundFunction maximum;
    std::size_t maximumSize;
    BoundFunction minimum;
    std::size_t minimumSize;
    std::size_t alignment; // of the first member
};
#define ZUL_ROW(Type, maximum, minimum, alignment)                                                           \
    {                                                                                                        \
#Type, ZUL_RoutingService_Administration_##Type##Plugin_get_serialized_sample_max_size, maximum,     \
            ZUL_RoutingService_Administration_##Type##Plugin_get_serialized_sample_min_size, minimum,        \
            alignment                                                                                        \
    }
const Row ROWS[] = {
    ZUL_ROW(EntityName, 260, 5, 4),          ZUL_ROW(XmlUrl, 4105, 9, 1),
    ZUL_ROW(EntityDescription, 4365, 13, 4), ZUL_ROW(PeerUpdateDescription, 4428, 12, 4),
    ZUL_ROW(CommandKind, 4, 4, 4),           ZUL_ROW(CommandResponseKind, 4, 4, 4),
    ZUL_ROW(CommandId, 12, 12, 4),           ZUL_ROW(Command, 4468, 28, 4),
    ZUL_ROW(CommandRequest, 4788, 88, 4),    ZUL_ROW(CommandResponse, 4118, 22, 4),
};

TEST(Bounds, OfEveryTypeFromEveryAlignment) {
    for (const Row& row : ROWS) {
        for (const auto& [bound, size] :
             {std::pair{row.maximum, row.maximumSize}, {row.minimum, row.minimumSize}}) {
            for (std::size_t at = 0; at < 8; ++at) {
                SCOPED_TRACE(std::string(row.name) + " at " + std::to_string(at));
                // A value that begins with a boolean takes up part of its own padding instead.
                const std::size_t bare = row.alignment == 4 ? size + (4 - at % 4) % 4 : size - at % 4;
                EXPECT_EQ(bound(nullptr, false, 1, at), bare);
                // Behind a header, aligned to 2, members count from 0.
                for (const std::uint16_t id : {std::uint16_t{0}, std::uint16_t{3}}) {
                    EXPECT_EQ(bound(nullptr, true, id, at), size + 4 + at % 2);
                }
                EXPECT_EQ(bound(nullptr, true, 4, at), 1U);
            }
        }
    }
}

TEST(Bounds, HoldTheLargestAndTheSmallestSample) {
    const auto request = newSample<Request>();
    const ZULTypePlugin& record = plugin<Request>();
    request->command._d = ZUL_ROUTING_SERVICE_COMMAND_GET;
    EXPECT_EQ(record.getSerializedSampleMaxSize(nullptr, true, 1, 0), 4792U);
    EXPECT_EQ(record.getSerializedSampleMinSize(nullptr, true, 1, 0), 92U);
    EXPECT_EQ(record.getSerializedSampleSize(nullptr, true, 4, 0, request.get()), 1U);

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
    EXPECT_EQ(record.getSerializedSampleSize(nullptr, true, 1, 0, request.get()), exact);
    EXPECT_LE(exact, 4792U);
    const auto bytes = encode(*request, 1, exact);
    ASSERT_TRUE(bytes.has_value());
    const auto decoded = newSample<Request>();
    EXPECT_TRUE(decode(*decoded, *bytes).accepted);
    EXPECT_EQ(text(*decoded), text(*request));
}

// The padding in front of a value counts with it.
TEST(Bounds, ExactSizeFromEveryAlignment) {
    const auto response = newSample<Response>();
    for (std::size_t at = 0; at < 8; ++at) {
        EXPECT_EQ(plugin<Response>().getSerializedSampleSize(nullptr, false, 1, at, response.get()),
                  22 + (4 - at % 4) % 4);
        EXPECT_EQ(plugin<Response>().getSerializedSampleSize(nullptr, true, 1, at, response.get()),
                  26 + at % 2);
    }
}

} // namespace
