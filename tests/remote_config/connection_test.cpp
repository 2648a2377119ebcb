// The client's life: what it creates, in which order and with which QoS, and what is left when a step fails.
#include "admin_types/type_support.h"
#include "tests/remote_config/client_fixture.h"

#include <algorithm>
#include <set>

namespace {

constexpr const char* CREATE = "ROUTERRemoteConfigClient_createConnection";
constexpr const char* CLOSE = "ROUTERRemoteConfigClient_closeConnection";
constexpr const char* INITIALIZE = "ROUTERRemoteConfigClient_initialize";
constexpr const char* FINALIZE = "ROUTERRemoteConfigClient_finalize";

class Connection : public testing::Test {
protected:
    Connection() { fake_dds::reset(); }
    ~Connection() override {
        ROUTER_setProductId(ROUTER_PRODUCT_ROUTING_SERVICE);
        ZULHeap_failAfter(-1);
        fake_dds::reset();
    }
    void expectNothingConnected() {
        EXPECT_EQ(fake_dds::liveEntities(), 0);
        for (const void* field : std::initializer_list<const void*>{
                 client.participant, client.publisher, client.commandTopic, client.responseTopic,
                 client.commandWriter, client.commandSample, client.commandTypePlugin,
                 client.responseTypePlugin}) {
            EXPECT_EQ(field, nullptr);
        }
    }
    void expectSemaphores(bool exist) {
        for (const void* field :
             {client.responseReadySemaphore, client.responseTakenSemaphore, client.spareSemaphore}) {
            EXPECT_EQ(field != nullptr, exist);
        }
    }
    void expectCleanFinalize() {
        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
        expectNothingConnected();
        expectSemaphores(false);
    }

    ROUTERRemoteConfigClient client{};
    LogCapture log;
};

// One call of the creation, as it is noted, and what is logged when it fails.
struct Step {
    std::string call;
    std::string failure;
    bool logsReturnCode = false;
};
std::vector<Step> creationOf(const std::string& product, const std::string& module,
                             const std::string& topics) {
    const std::string types = "ZUL::" + module + "::Administration::Command";
    const std::string prefix = "zul/" + topics + "/administration/command_";
    const auto registration = [&](const std::string& type) {
        return "register_type " + types + type + " plugin=ZUL::RoutingService::Administration::Command" +
               type + " code=" + types + type;
    };
    return {
        {"get_default_participant_qos", "failure: get default participant qos", true},
        {"create_participant domain=231 name='" + product + ": Shell' version=5.1.0 cleanup=0.0",
         "failed to create participant"},
        {"get_default_datareader_qos", "failure: get default dataReader qos", true},
        {"get_default_datawriter_qos", "failure: get default dataWriter qos", true},
        {"create_publisher", "failed to create publisher"},
        {"create_subscriber", "failed to create subscriber"},
        {registration("Request"), "failure: register type"},
        {"create_topic " + prefix + "request type=" + types + "Request", "failed to create topic command"},
        {registration("Response"), "failure: register type"},
        {"create_topic " + prefix + "response type=" + types + "Response", "failed to create topic response"},
        {"create_datawriter " + prefix + "request reliability=1/60.0 history=1 samples=32 window=32/32",
         "failed to create writer"},
        {"create_datareader " + prefix +
             "response reliability=1/0.100000000 history=1 samples=32 delay=0.0/0.0 mask=3221225471",
         "failed to create reader"},
        {"get_qos", "failed to get participant qos"},
        {"enable", "failure: enable participant"},
    };
}
const std::vector<Step> ROUTING = creationOf("ZUL Routing Service", "RoutingService", "routing_service");
const std::vector<Step> FEDERATION =
    creationOf("ZUL Federation Service", "FederationService", "federation_service");

TEST_F(Connection, CreatesTheEntitiesOfBothVariantsInOrderWithTheirQos) {
    for (const auto& [product, steps] : {std::pair(ROUTER_PRODUCT_ROUTING_SERVICE, ROUTING),
                                         {ROUTER_PRODUCT_FEDERATION_SERVICE, FEDERATION}}) {
        SCOPED_TRACE(product);
        fake_dds::reset();
        ROUTER_setProductId(product);
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 231, 9));
        Lines calls;
        for (const Step& step : steps) {
            calls.push_back(step.call);
        }
        EXPECT_EQ(fake_dds::calls(), calls);
        EXPECT_EQ(client.responseTimeout.sec, 9);
        // The middleware's ids, with the highest bit set here, go into the request as they are.
        EXPECT_EQ(static_cast<std::uint32_t>(client.commandSample->id.host), 0xF0000001U);
        EXPECT_EQ(static_cast<std::uint32_t>(client.commandSample->id.app), 0xA0000001U);
        EXPECT_EQ(client.commandSample->id.invocation, 0);
        expectCleanFinalize();
        EXPECT_EQ(log.take(), Lines{});
    }
}

TEST_F(Connection, AFailedStepLeavesNothingBehind) {
    Lines calls; // up to the failed one
    std::map<std::string, int> occurrences;
    for (const Step& step : ROUTING) {
        SCOPED_TRACE(step.call);
        const std::string name = step.call.substr(0, step.call.find(' '));
        fake_dds::reset();
        fake_dds::fail(name, ++occurrences[name], DDS_RETCODE_ILLEGAL_OPERATION);
        EXPECT_FALSE(ROUTERRemoteConfigClient_initialize(&client, 231, 1));

        Lines expectedLog{errorLine(CREATE, step.failure)};
        if (step.logsReturnCode) {
            expectedLog.emplace_back(" - Return code = 12\n");
        }
        expectedLog.push_back(errorLine(INITIALIZE, "failure: create connection"));
        EXPECT_EQ(log.take(), expectedLog);
        calls.push_back(step.call);
        Lines expectedCalls = calls;
        if (calls.size() > 2) { // there is a participant
            expectedCalls.insert(expectedCalls.end(), {"delete_contained_entities", "delete_participant"});
        }
        EXPECT_EQ(fake_dds::calls(), expectedCalls);
        expectNothingConnected();
        expectSemaphores(true);
        expectCleanFinalize();
    }
}

TEST_F(Connection, RunsOutOfMemoryAtEveryAllocation) {
    const std::string noVersion = errorLine(CREATE, "failure: set service version");
    std::set<std::string> failures;
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
        if (!initialized) {
            expectNothingConnected();
        }
        failures.insert(lines.begin(), lines.end());
        expectCleanFinalize();
    }
    for (const char* what : {"semaphore 1", "semaphore 2", "semaphore 3", "request type plugin",
                             "response type plugin", "data sample"}) {
        const bool isSemaphore = std::string(what).starts_with("semaphore");
        EXPECT_TRUE(failures.contains(
            errorLine(isSemaphore ? INITIALIZE : CREATE, std::string("failed to create ") + what)))
            << what;
    }
    EXPECT_TRUE(failures.contains(errorLine(CREATE, "failure: set participant name")));
    EXPECT_TRUE(failures.contains(noVersion));
}

TEST_F(Connection, CloseGoesOnAfterAFailedStepAndKeepsTheSemaphores) {
    const auto destruction = [](const char* what) {
        return errorLine(CLOSE, std::string("failed to destroy ") + what);
    };
    const std::pair<const char*, Lines> cases[] = {
        // A participant with entities in it cannot be deleted either.
        {"delete_contained_entities",
         {destruction("participant contained entities"), destruction("participant")}},
        {"delete_participant", {destruction("participant")}},
    };
    for (const auto& [call, lines] : cases) {
        SCOPED_TRACE(call);
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
        fake_dds::fail(call);
        fake_dds::forget();
        EXPECT_FALSE(ROUTERRemoteConfigClient_finalize(&client));
        EXPECT_EQ(fake_dds::calls(), (Lines{"delete_contained_entities", "delete_participant"}));
        Lines expected = lines;
        expected.push_back(errorLine(FINALIZE, "failure: close connection"));
        EXPECT_EQ(log.take(), expected);
        expectSemaphores(true);
        EXPECT_NE(client.responseReader, nullptr); // left stale
        fake_dds::reset();
        expectCleanFinalize(); // nothing but the semaphores is left to do
    }
}

TEST_F(Connection, NewLeavesNothingBehindWhenItFails) {
    fake_dds::fail("enable");
    EXPECT_EQ(ROUTERRemoteConfigClient_new(3, 4), nullptr);
    EXPECT_EQ(log.take().back(), errorLine("ROUTERRemoteConfigClient_new",
                                           "failed to initialize ROUTERRemoteConfigClient object"));
    EXPECT_EQ(fake_dds::liveEntities(), 0);
}

} // namespace
