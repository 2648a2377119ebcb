// What is kept of participants, in the orders in which discovery may tell of them.
#include "fleet/discovery.h"

#include <gtest/gtest.h>

namespace zul::fleet {
namespace {

struct Store : testing::Test {
    Wakeup wakeup;
    Discovery discovery{wakeup};

    void participant(std::uint16_t number, const char* name, DDS_UnsignedLong state) {
        DDS_ParticipantBuiltinTopicData data{};
        data.key.value[0] = static_cast<std::uint8_t>(number >> 8);
        data.key.value[1] = static_cast<std::uint8_t>(number);
        data.participant_name.name = name;
        data.default_unicast_address = "";
        discovery.note(data, state);
    }
    void requestReader(std::uint16_t number, std::uint8_t entity, DDS_UnsignedLong state) {
        DDS_EndpointBuiltinTopicData data{};
        data.key.value[0] = static_cast<std::uint8_t>(number >> 8);
        data.key.value[1] = static_cast<std::uint8_t>(number);
        data.key.value[15] = entity;
        data.topic_name = infoOf(Product::ROUTING).administrationRequestTopicName;
        data.type_name = "type";
        discovery.note(data, true, state);
    }
};

TEST_F(Store, ARouterThatTakesItsEndpointsAwayFirstHasStillBeenOne) {
    requestReader(1, 7, DDS_ALIVE_INSTANCE_STATE); // before its participant
    participant(1, "ZUL Routing Service: r1", DDS_ALIVE_INSTANCE_STATE);
    participant(2, "some program", DDS_ALIVE_INSTANCE_STATE);
    ASSERT_EQ(discovery.participants().size(), 2U);
    const auto since = discovery.participants()[0].since;
    EXPECT_NE(since, Clock::time_point{});
    EXPECT_EQ(discovery.participants()[0].routerName(), "r1");
    EXPECT_NE(discovery.participants()[0].requestReader(Product::ROUTING), nullptr);
    EXPECT_FALSE(discovery.participants()[1].mayBeRouter());
    requestReader(1, 7, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
    EXPECT_EQ(discovery.participants()[0].requestReader(Product::ROUTING), nullptr);
    participant(1, "", DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
    participant(2, "", DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
    ASSERT_EQ(discovery.participants().size(), 1U); // the program is of no interest
    EXPECT_EQ(discovery.participants()[0].presence, Presence::LEFT);
    EXPECT_EQ(discovery.takeGone().size(), 1U);
    participant(1, "ZUL Routing Service: r1", DDS_ALIVE_INSTANCE_STATE);
    EXPECT_TRUE(discovery.participants()[0].isHere());
    EXPECT_GT(discovery.participants()[0].since, since);
    EXPECT_TRUE(discovery.participants()[0].endpoints.empty());
}

TEST_F(Store, WhatStrangersAnnounceIsBounded) {
    for (std::uint16_t number = 1; number <= 400; ++number) {
        for (std::uint8_t entity = 0; entity < 40; ++entity) {
            requestReader(number, entity, DDS_ALIVE_INSTANCE_STATE);
        }
        participant(number, "", DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
    }
    const auto kept = discovery.participants();
    ASSERT_EQ(kept.size(), 256U);
    EXPECT_EQ(kept.back().prefix[1], 400 & 0xFF);
    EXPECT_EQ(kept.back().endpoints.size(), 16U);
}

} // namespace
} // namespace zul::fleet
