// The client's life: what it creates, in which order and with which QoS, and what is left when a step fails.
#include "admin_types/type_support.h"
#include "tests/remote_config/client_fixture.h"

#include <algorithm>

namespace {

constexpr const char* CREATE = "ROUTERRemoteConfigClient_createConnection";

class Connection : public testing::Test {
protected:
    Connection() { fake_dds::reset(); }
    ~Connection() override {
        ROUTER_setProductId(ROUTER_PRODUCT_ROUTING_SERVICE);
        fake_dds::reset();
    }
    void expectNothingLeft(bool areSemaphoresLeft) {
        EXPECT_EQ(fake_dds::world().participant, nullptr);
        for (const void* field : std::initializer_list<const void*>{
                 client.participant, client.publisher, client.commandTopic, client.responseTopic,
                 client.commandWriter, client.commandSample, client.commandTypePlugin,
                 client.responseTypePlugin}) {
            EXPECT_EQ(field, nullptr);
        }
        for (const void* field :
             {client.responseReadySemaphore, client.responseTakenSemaphore, client.spareSemaphore}) {
            EXPECT_EQ(field != nullptr, areSemaphoresLeft);
        }
    }
    void expectCleanFinalize() {
        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
        expectNothingLeft(false);
    }

    ROUTERRemoteConfigClient client{};
    LogCapture log;
};

// What only a peer that is slow or asks for type descriptions would notice.
TEST_F(Connection, HasTheQosAndTypeDescriptionsOfItsVariant) {
    for (const auto& [product, module] : {std::pair(ROUTER_PRODUCT_ROUTING_SERVICE, "RoutingService"),
                                          {ROUTER_PRODUCT_FEDERATION_SERVICE, "FederationService"}}) {
        ROUTER_setProductId(product);
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
        const std::string types = std::string("ZUL::") + module + "::Administration::Command";
        EXPECT_EQ(client.commandTypePlugin->typeCode->name, types + "Request");
        EXPECT_EQ(client.responseTypePlugin->typeCode->name, types + "Response");
        expectCleanFinalize();
    }
    const DDS_DataWriterQos& writer = fake_dds::world().writerQos;
    const DDS_DataReaderQos& reader = fake_dds::world().readerQos;
    EXPECT_EQ(fake_dds::world().cleanupPeriod.sec, 0);
    EXPECT_EQ(fake_dds::world().readerMask, 0xBFFFFFFF);
    EXPECT_EQ(writer.reliability.max_blocking_time.sec, 60);
    EXPECT_EQ(writer.history.kind, DDS_KEEP_ALL_HISTORY_QOS);
    EXPECT_EQ(writer.resource_limits.max_samples, 32);
    EXPECT_EQ(writer.rtps_reliable_writer.min_send_window_size, 32);
    EXPECT_EQ(writer.rtps_reliable_writer.max_send_window_size, 32);
    EXPECT_EQ(reader.history.kind, DDS_KEEP_ALL_HISTORY_QOS);
    EXPECT_EQ(reader.resource_limits.max_samples, 32);
    EXPECT_EQ(reader.rtps_reliable_reader.min_heartbeat_response_delay.nanosec, 0U);
    EXPECT_EQ(reader.rtps_reliable_reader.max_heartbeat_response_delay.nanosec, 0U);
}

TEST_F(Connection, AFailedStepLeavesNothingBehind) {
    ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
    const Lines steps = fake_dds::world().calls;
    expectCleanFinalize();
    EXPECT_EQ(steps.size(), 14U);
    EXPECT_EQ(steps.back(), "enable");
    for (std::size_t count = 1; count <= steps.size(); ++count) {
        Lines expectedCalls(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(count));
        SCOPED_TRACE(expectedCalls.back());
        if (count > 2) { // there is a participant
            expectedCalls.insert(expectedCalls.end(), {"delete_contained_entities", "delete_participant"});
        }
        fake_dds::reset();
        fake_dds::fail("", static_cast<int>(count));
        EXPECT_FALSE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
        EXPECT_EQ(log.take().size(), 2U); // what failed, and that there is no connection
        EXPECT_EQ(fake_dds::world().calls, expectedCalls);
        expectNothingLeft(true);
        expectCleanFinalize();
    }
}

TEST_F(Connection, RunsOutOfMemoryAtEveryAllocation) {
    const std::string noVersion = errorLine(CREATE, "failure: set service version");
    bool complete = false;
    for (long n = 0; !complete; ++n) {
        ASSERT_LT(n, 1000);
        SCOPED_TRACE(n);
        ZULHeap_failAfter(n);
        const bool initialized = ROUTERRemoteConfigClient_initialize(&client, 1, 1);
        ZULHeap_failAfter(-1);
        const Lines lines = log.take();
        complete = initialized && lines.empty();
        // The version is what it goes on without.
        EXPECT_EQ(initialized, complete || std::ranges::count(lines, noVersion) > 0);
        EXPECT_EQ(initialized, fake_dds::world().participant != nullptr);
        expectCleanFinalize();
    }
}

TEST_F(Connection, CloseGoesOnAfterAFailedStepAndKeepsTheSemaphores) {
    for (const int failing : {1, 2}) {
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
        fake_dds::forget();
        fake_dds::fail("", failing);
        EXPECT_FALSE(ROUTERRemoteConfigClient_finalize(&client));
        EXPECT_EQ(fake_dds::world().calls, (Lines{"delete_contained_entities", "delete_participant"}));
        EXPECT_FALSE(log.take().empty());
        EXPECT_NE(client.responseTakenSemaphore, nullptr);
        EXPECT_NE(client.responseReader, nullptr); // left stale
        fake_dds::reset();
        expectCleanFinalize(); // nothing but the semaphores is left to do
    }
}

} // namespace
