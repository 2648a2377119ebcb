// Largest and smallest encoded sizes, against the numbers that endpoints of other makers reckon with.
#include "tests/admin_types/samples.h"

#include <gtest/gtest.h>

namespace {

using admin::Bound;

struct Row {
    const char* name;
    std::size_t maximum;
    std::size_t minimum;
    std::size_t alignment; // of the first member
    std::size_t (*bound)(Bound bound, bool header, std::uint16_t id, std::size_t alignment);
};
template <class IdlType>
std::size_t boundOf(Bound bound, bool header, std::uint16_t id, std::size_t alignment) {
    return bound == Bound::MAXIMUM ? admin::boundOf<Bound::MAXIMUM>(IdlType{}, header, id, alignment)
                                   : admin::boundOf<Bound::MINIMUM>(IdlType{}, header, id, alignment);
}
#define ZUL_TYPE(Form, Name) admin::Form<ZUL_RoutingService_Administration_##Name>
const Row ROWS[] = {
    {"EntityName", 260, 5, 4, boundOf<admin::EntityName<admin::RoutingModule>>},
    {"XmlUrl", 4105, 9, 1, boundOf<ZUL_TYPE(Struct, XmlUrl)>},
    {"EntityDescription", 4365, 13, 4, boundOf<ZUL_TYPE(Struct, EntityDescription)>},
    {"PeerUpdateDescription", 4428, 12, 4, boundOf<ZUL_TYPE(Struct, PeerUpdateDescription)>},
    {"CommandKind", 4, 4, 4, boundOf<ZUL_TYPE(Enum, CommandKind)>},
    {"CommandResponseKind", 4, 4, 4, boundOf<ZUL_TYPE(Enum, CommandResponseKind)>},
    {"CommandId", 12, 12, 4, boundOf<ZUL_TYPE(Struct, CommandId)>},
    {"Command", 4468, 28, 4, boundOf<ZUL_TYPE(Union, Command)>},
    {"CommandRequest", 4788, 88, 4, boundOf<ZUL_TYPE(Struct, CommandRequest)>},
    {"CommandResponse", 4118, 22, 4, boundOf<ZUL_TYPE(Struct, CommandResponse)>},
};

TEST(Bounds, OfEveryTypeFromEveryAlignment) {
    for (const Row& row : ROWS) {
        for (const auto& [bound, size] :
             {std::pair{Bound::MAXIMUM, row.maximum}, {Bound::MINIMUM, row.minimum}}) {
            for (std::size_t at = 0; at < 8; ++at) {
                SCOPED_TRACE(std::string(row.name) + " at " + std::to_string(at));
                // A value that begins with a boolean takes up part of its own padding instead.
                const std::size_t bare = row.alignment == 4 ? size + (4 - at % 4) % 4 : size - at % 4;
                EXPECT_EQ(row.bound(bound, false, 1, at), bare);
                // Behind a header, aligned to 2, members count from 0.
                for (const std::uint16_t id : {std::uint16_t{0}, std::uint16_t{3}}) {
                    EXPECT_EQ(row.bound(bound, true, id, at), size + 4 + at % 2);
                }
                EXPECT_EQ(row.bound(bound, true, 4, at), 1U);
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
