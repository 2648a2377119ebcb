// The client's life: what it creates, in which order and with which QoS, and what is left when a step fails.
#include "product/product_info.h"
#include "remote_config/client.h"
#include "tests/remote_config/client_fixture.h"
#include "tests/support/failing_heap.h"

namespace {

class Connection : public testing::Test {
protected:
    Connection() { fake_dds::reset(); }
    bool connect() { return ROUTERRemoteConfigClient_initialize(&client, 1, 1); }
    void expectNothingLeft(bool areSemaphoresLeft) {
        EXPECT_FALSE(fake_dds::world().isConnected);
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
    CapturedLog log;
};

// What only a peer that is slow or asks for type descriptions would notice.
TEST_F(Connection, HasTheQosAndTypeDescriptionsOfItsVariant) {
    for (const auto& [product, module] : {std::pair(ROUTER_PRODUCT_FEDERATION_SERVICE, "FederationService"),
                                          {ROUTER_PRODUCT_ROUTING_SERVICE, "RoutingService"}}) {
        ROUTER_setProductId(product);
        ASSERT_TRUE(connect());
        const std::string types = std::string("ZUL::") + module + "::Administration::Command";
        EXPECT_EQ(client.commandTypePlugin->typeCode->name, types + "Request");
        EXPECT_EQ(client.responseTypePlugin->typeCode->name, types + "Response");
        EXPECT_EQ(client.commandSample->id.host, static_cast<DDS_Long>(0xF0000001U));
        EXPECT_EQ(client.commandSample->id.app, static_cast<DDS_Long>(0xA0000001U));
        expectCleanFinalize();
    }
    const DDS_DataWriterQos& writer = fake_dds::world().writerQos;
    const DDS_DataReaderQos& reader = fake_dds::world().readerQos;
    const auto& [minDelay, maxDelay] = reader.rtps_reliable_reader;
    EXPECT_EQ(fake_dds::world().readerMask, 0xBFFFFFFF);
    EXPECT_EQ(writer.history.kind, DDS_KEEP_ALL_HISTORY_QOS);
    EXPECT_EQ(reader.history.kind, DDS_KEEP_ALL_HISTORY_QOS);
    for (const DDS_Long samples : {writer.resource_limits.max_samples, reader.resource_limits.max_samples,
                                   writer.rtps_reliable_writer.min_send_window_size,
                                   writer.rtps_reliable_writer.max_send_window_size}) {
        EXPECT_EQ(samples, 32);
    }
    EXPECT_EQ(writer.reliability.max_blocking_time.sec, 60);
    EXPECT_EQ(fake_dds::world().cleanupPeriod.sec, 0);
    EXPECT_EQ(minDelay.nanosec + maxDelay.nanosec, 0U);
}

TEST_F(Connection, AFailedStepLeavesNothingBehind) {
    ASSERT_TRUE(connect());
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
        EXPECT_FALSE(connect());
        EXPECT_NE(log.take().find("[ROUTERRemoteConfigClient_createConnection] fail"), std::string::npos);
        EXPECT_EQ(fake_dds::world().calls, expectedCalls);
        expectNothingLeft(true);
        expectCleanFinalize();
    }
}

TEST_F(Connection, RunsOutOfMemoryAtEveryAllocation) {
    bool isConnected = false;
    std::string lines;
    const auto connects = [&] {
        isConnected = connect();
        lines = log.take();
        return isConnected && lines.empty();
    };
    failEachAllocation(connects, [&](bool isDone) {
        // The version is what it goes on without.
        EXPECT_EQ(isConnected, isDone || lines.find("failure: set service version\n") != lines.npos);
        EXPECT_EQ(isConnected, fake_dds::world().isConnected);
        expectCleanFinalize();
    });
}

TEST_F(Connection, CloseGoesOnAfterAFailedStepAndKeepsTheSemaphores) {
    for (const int failing : {1, 2}) {
        ASSERT_TRUE(connect());
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
