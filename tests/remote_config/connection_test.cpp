// The client's life: what it creates, in which order and with which QoS, and what is left when a step fails.
#include "admin_types/type_support.h"
#include "remote_config/response_listener.h"
#include "tests/remote_config/client_fixture.h"
#include "utils/participant_qos.h"

#include <algorithm>
#include <set>

namespace {

constexpr const char* CREATE = "ROUTERRemoteConfigClient_createConnection";
constexpr const char* CLOSE = "ROUTERRemoteConfigClient_closeConnection";
constexpr const char* INITIALIZE = "ROUTERRemoteConfigClient_initialize";
constexpr const char* FINALIZE = "ROUTERRemoteConfigClient_finalize";

class Connection : public testing::Test {
protected:
    Connection() {
        fake_dds::reset();
        ROUTER_setProductId(ROUTER_PRODUCT_ROUTING_SERVICE);
    }
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

    ROUTERRemoteConfigClient client{};
    LogCapture log;
};

struct Variant {
    std::int32_t productId;
    const char* product;
    const char* module;
    const char* topics;
};
constexpr Variant ROUTING{ROUTER_PRODUCT_ROUTING_SERVICE, "ZUL Routing Service", "RoutingService",
                          "routing_service"};
constexpr Variant FEDERATION{ROUTER_PRODUCT_FEDERATION_SERVICE, "ZUL Federation Service", "FederationService",
                             "federation_service"};

Lines creationOf(const Variant& variant) {
    const std::string routing = "ZUL::RoutingService::Administration::";
    const std::string types = std::string("ZUL::") + variant.module + "::Administration::";
    const std::string topics = std::string("zul/") + variant.topics + "/administration/";
    const auto registration = [&](const std::string& type) {
        return "register_type " + types + type + " plugin=" + routing + type + " code=" + types + type;
    };
    const auto topic = [&](const std::string& name, const std::string& type) {
        return "create_topic " + topics + name + " type=" + types + type + " listener=none mask=0";
    };
    return {
        "get_default_participant_qos",
        "create_participant domain=231 name='" + std::string(variant.product) +
            ": Shell' zul.service.version='5.1.0'/1 cleanup=0.0 listener=none mask=0",
        "get_default_datareader_qos",
        "get_default_datawriter_qos",
        "create_publisher listener=none mask=0",
        "create_subscriber listener=none mask=0",
        registration("CommandRequest"),
        topic("command_request", "CommandRequest"),
        registration("CommandResponse"),
        topic("command_response", "CommandResponse"),
        // Volatile, reliable with 60 s, keep all, 32 samples.
        "create_datawriter " + topics +
            "command_request durability=0 reliability=1/60.0 history=1/1 limits=32/-1/-1 window=32/32 "
            "listener=none mask=0",
        "create_datareader " + topics +
            "command_response durability=0 reliability=1/0.100000000 history=1/1 limits=32/-1/-1 "
            "delay=0.0/0.0 listener=set mask=bfffffff",
        "get_qos",
        "enable",
    };
}

TEST_F(Connection, CreatesTheEntitiesOfBothVariantsInOrderWithTheirQos) {
    for (const Variant& variant : {ROUTING, FEDERATION}) {
        SCOPED_TRACE(variant.product);
        fake_dds::reset();
        ROUTER_setProductId(variant.productId);
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 231, 9));
        EXPECT_EQ(fake_dds::calls(), creationOf(variant));
        EXPECT_EQ(client.domainId, 231);
        EXPECT_EQ(client.responseTimeout.sec, 9);
        EXPECT_EQ(client.responseTimeout.frac, 0U);
        EXPECT_FALSE(client.waitingForResponse.load());
        EXPECT_FALSE(client.noResponseWait);

        // The middleware's ids, with the highest bit set here, go into the request as they are.
        const auto& id = client.commandSample->id;
        EXPECT_EQ(static_cast<std::uint32_t>(id.host), 0xF0000001U);
        EXPECT_EQ(static_cast<std::uint32_t>(id.app), 0xA0000001U);
        EXPECT_EQ(id.invocation, 0);
        // Both variants carry the routing module's records.
        EXPECT_NE(ZUL_RoutingService_Administration_CommandResponseDataReader_narrow(client.responseReader),
                  nullptr);
        EXPECT_NE(ZUL_RoutingService_Administration_CommandRequestDataWriter_narrow(client.commandWriter),
                  nullptr);

        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
        expectNothingConnected();
        expectSemaphores(false);
        EXPECT_EQ(log.take(), Lines{});
    }
}

TEST_F(Connection, InstallsAListenerThatIgnoresAllButData) {
    ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
    fake_dds::forget();
    const DDS_DataReaderListener listener = client.responseReader->listener;
    EXPECT_EQ(listener.listener_data, &client);
    EXPECT_EQ(listener.on_data_available,
              ZUL_RoutingService_Administration_CommandResponseListener_on_data_available);
    for (const auto callback : {listener.on_requested_deadline_missed, listener.on_requested_incompatible_qos,
                                listener.on_sample_rejected, listener.on_liveliness_changed,
                                listener.on_subscription_matched, listener.on_sample_lost}) {
        ASSERT_NE(callback, nullptr);
        callback(listener.listener_data, client.responseReader);
    }
    EXPECT_EQ(fake_dds::calls(), Lines{});
    EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
}

TEST_F(Connection, ConnectsAgainUnderAnotherId) {
    std::set<DDS_Long> hosts, apps;
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
        EXPECT_EQ(client.commandSample->id.invocation, 0);
        hosts.insert(client.commandSample->id.host);
        apps.insert(client.commandSample->id.app);
        EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(&client));
        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
    }
    EXPECT_EQ(hosts.size() + apps.size(), 4U);
}

struct FailingStep {
    const char* call;
    int occurrence;
    const ZULLogTemplate& message;
    const char* text;
    bool logsReturnCode;
    bool hasParticipant; // which must then be deleted again
};

TEST_F(Connection, AFailedStepLeavesNothingBehind) {
    const FailingStep steps[] = {
        {"get_default_participant_qos", 1, ZUL_LOG_ANY_FAILURE_s, "get default participant qos", true, false},
        {"create_participant", 1, ZUL_LOG_CREATION_FAILURE_s, "participant", false, false},
        {"get_default_datareader_qos", 1, ZUL_LOG_ANY_FAILURE_s, "get default dataReader qos", true, true},
        {"get_default_datawriter_qos", 1, ZUL_LOG_ANY_FAILURE_s, "get default dataWriter qos", true, true},
        {"create_publisher", 1, ZUL_LOG_CREATION_FAILURE_s, "publisher", false, true},
        {"create_subscriber", 1, ZUL_LOG_CREATION_FAILURE_s, "subscriber", false, true},
        {"register_type", 1, ZUL_LOG_ANY_FAILURE_s, "register type", false, true},
        {"create_topic", 1, ZUL_LOG_CREATION_FAILURE_s, "topic command", false, true},
        {"register_type", 2, ZUL_LOG_ANY_FAILURE_s, "register type", false, true},
        {"create_topic", 2, ZUL_LOG_CREATION_FAILURE_s, "topic response", false, true},
        {"create_datawriter", 1, ZUL_LOG_CREATION_FAILURE_s, "writer", false, true},
        {"create_datareader", 1, ZUL_LOG_CREATION_FAILURE_s, "reader", false, true},
        {"get_qos", 1, ZUL_LOG_GET_FAILURE_s, "participant qos", false, true},
        {"enable", 1, ZUL_LOG_ANY_FAILURE_s, "enable participant", false, true},
    };
    const Lines whole = creationOf(ROUTING);
    for (const FailingStep& step : steps) {
        SCOPED_TRACE(std::string(step.call) + " " + std::to_string(step.occurrence));
        fake_dds::reset();
        fake_dds::fail(step.call, step.occurrence, DDS_RETCODE_ILLEGAL_OPERATION);
        EXPECT_FALSE(ROUTERRemoteConfigClient_initialize(&client, 231, 1));

        Lines expected{errorLine(CREATE, step.message, step.text)};
        if (step.logsReturnCode) {
            expected.emplace_back(" - Return code = 12\n");
        }
        expected.push_back(errorLine(INITIALIZE, ZUL_LOG_ANY_FAILURE_s, "create connection"));
        EXPECT_EQ(log.take(), expected);
        // Everything up to the failed call, nothing behind it but the way back.
        int occurrence = 0;
        const auto isFailed = [&](const std::string& call) {
            return call.starts_with(step.call) && ++occurrence == step.occurrence;
        };
        const auto failed = std::find_if(whole.begin(), whole.end(), isFailed);
        ASSERT_NE(failed, whole.end());
        Lines calls(whole.begin(), failed + 1);
        if (step.hasParticipant) {
            calls.insert(calls.end(), {"delete_contained_entities", "delete_participant"});
        }
        EXPECT_EQ(fake_dds::calls(), calls);
        expectNothingConnected();
        expectSemaphores(true);
        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
        expectSemaphores(false);
    }
}

TEST_F(Connection, GoesOnWithoutAServiceVersion) {
    fake_dds::world().defaultProperties = DDS_PROPERTY_LIST_MAX;
    EXPECT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
    EXPECT_EQ(log.take(), (Lines{errorLine("ROUTERUtils_setServiceVersion", ZUL_LOG_ADD_FAILURE_s,
                                           "zul.service.versionproperty"),
                                 errorLine(CREATE, ZUL_LOG_ANY_FAILURE_s, "set service version")}));
    EXPECT_EQ(fake_dds::calls().back(), "enable");
    EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
}

TEST_F(Connection, RunsOutOfMemoryAtEveryAllocation) {
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
        EXPECT_EQ(initialized, fake_dds::liveEntities() > 0);
        if (!initialized) {
            expectNothingConnected();
            ASSERT_FALSE(lines.empty());
        }
        for (const std::string& line : lines) {
            failures.insert(line);
        }
        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
        expectSemaphores(false);
        expectNothingConnected();
    }
    for (const char* semaphore : {"semaphore 1", "semaphore 2", "semaphore 3"}) {
        EXPECT_TRUE(failures.contains(errorLine(INITIALIZE, ZUL_LOG_CREATION_FAILURE_s, semaphore)));
    }
    for (const char* text : {"request type plugin", "response type plugin", "data sample"}) {
        EXPECT_TRUE(failures.contains(errorLine(CREATE, ZUL_LOG_CREATION_FAILURE_s, text))) << text;
    }
    EXPECT_TRUE(failures.contains(errorLine(CREATE, ZUL_LOG_ANY_FAILURE_s, "set participant name")));
    // "ZUL Routing Service" and "Shell", and the three separators that are counted whether used or not.
    EXPECT_TRUE(failures.contains(
        errorLine("ROUTERCfgFileDomainRoute_setParticipantName", ZUL_LOG_OUT_OF_HEAP_STRING_d, "27")));
}

TEST_F(Connection, CloseGoesOnAfterAFailedStepAndKeepsTheSemaphores) {
    struct Case {
        const char* call;
        Lines lines;
    };
    const auto destruction = [](const char* what) {
        return errorLine(CLOSE, ZUL_LOG_DESTRUCTION_FAILURE_s, what);
    };
    const Case cases[] = {
        // A participant with entities in it cannot be deleted either.
        {"delete_contained_entities",
         {destruction("participant contained entities"), destruction("participant")}},
        {"delete_participant", {destruction("participant")}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.call);
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, 1));
        DDS_Subscriber* subscriber = client.subscriber;
        DDS_DataReader* reader = client.responseReader;
        fake_dds::fail(row.call);
        fake_dds::forget();
        EXPECT_FALSE(ROUTERRemoteConfigClient_finalize(&client));
        EXPECT_EQ(fake_dds::calls(), (Lines{"delete_contained_entities", "delete_participant"}));
        Lines expected = row.lines;
        expected.push_back(errorLine(FINALIZE, ZUL_LOG_ANY_FAILURE_s, "close connection"));
        EXPECT_EQ(log.take(), expected);
        expectSemaphores(true);
        EXPECT_EQ(client.subscriber, subscriber); // these two are left stale
        EXPECT_EQ(client.responseReader, reader);
        fake_dds::reset();
        expectNothingConnected();
        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client)); // nothing but the semaphores is left to do
        expectSemaphores(false);
    }
}

TEST_F(Connection, NewAndDelete) {
    ROUTERRemoteConfigClient* made = ROUTERRemoteConfigClient_new(3, 4);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->domainId, 3);
    EXPECT_EQ(made->responseTimeout.sec, 4);
    ROUTERRemoteConfigClient_delete(made);
    EXPECT_EQ(fake_dds::liveEntities(), 0);
    EXPECT_EQ(log.take(), Lines{});

    ZULHeap_failAfter(0);
    EXPECT_EQ(ROUTERRemoteConfigClient_new(3, 4), nullptr);
    EXPECT_EQ(log.take(), Lines{errorLine("ROUTERRemoteConfigClient_new", ZUL_LOG_OUT_OF_HEAP_STRUCT_d,
                                          std::to_string(sizeof(ROUTERRemoteConfigClient)))});
    fake_dds::fail("enable");
    EXPECT_EQ(ROUTERRemoteConfigClient_new(3, 4), nullptr);
    EXPECT_EQ(log.take().back(), errorLine("ROUTERRemoteConfigClient_new", ZUL_LOG_INIT_FAILURE_s,
                                           "ROUTERRemoteConfigClient object"));
    EXPECT_EQ(fake_dds::liveEntities(), 0);

    ROUTERRemoteConfigClient_delete(nullptr);
    EXPECT_EQ(log.take(),
              Lines{errorLine("ROUTERRemoteConfigClient_delete", ZUL_LOG_ANY_s, "bad parameter self")});

    // Freed even when closing fails; its semaphores then stay, for a listener that may still use them.
    made = ROUTERRemoteConfigClient_new(3, 4);
    ASSERT_NE(made, nullptr);
    ZULSemaphore* const semaphores[] = {made->responseReadySemaphore, made->responseTakenSemaphore,
                                        made->spareSemaphore};
    fake_dds::fail("delete_contained_entities");
    ROUTERRemoteConfigClient_delete(made);
    EXPECT_EQ(log.take().back(), errorLine("ROUTERRemoteConfigClient_delete", ZUL_LOG_DESTRUCTION_FAILURE_s,
                                           "remote config client"));
    std::for_each(std::begin(semaphores), std::end(semaphores), ZULSemaphore_delete);
}

TEST_F(Connection, ParticipantNameAndVersionProperty) {
    const std::string product = "ZUL Routing Service";
    const std::string fits(254 - product.size() - 3, 'n');
    struct Case {
        std::string name, qualifier, suffix, expected;
    };
    const Case cases[] = {
        {"Shell", "", "", product + ": Shell"}, {"a", "q", "s", product + ": a.qs"},
        {"a", "q", "", product + ": a"},        {"a", "", "s", product + ": a"},
        {"", "", "", product + ": "},           {fits, "", "", product + ": " + fits},
        {fits + "n", "", "", product},          {fits, "", "s", product}, // counted although not used
    };
    DDS_DomainParticipantQos qos;
    DDS_DomainParticipantQos_initialize(&qos);
    for (const Case& row : cases) {
        EXPECT_TRUE(ROUTERUtils_setParticipantName(&qos, row.name.c_str(), row.qualifier.c_str(),
                                                   row.suffix.c_str()));
        EXPECT_EQ(qos.participant_name.name, row.expected);
        EXPECT_TRUE(ROUTERUtils_setServiceVersion(&qos));
    }
    ASSERT_EQ(qos.property.value.length, 1); // replaced, not added again
    EXPECT_STREQ(DDS_PropertyQosPolicyHelper_lookup_property(&qos.property, "zul.service.version"), "5.1.0");
    DDS_DomainParticipantQos_finalize(&qos);
}

} // namespace
