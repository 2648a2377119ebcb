// Typed writers and readers over the real library: every form of writing, reading and taking.
#include "admin_types/type_support.h"
#include "tests/middleware/captured_log.h"

#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>

namespace {

#define ZUL_RESPONSE(operation) ZUL_RoutingService_Administration_CommandResponse##operation
using Response = ZUL_RESPONSE();
using Seq = ZUL_RESPONSE(Seq);
using Reader = ZUL_RESPONSE(DataReader);
using Writer = ZUL_RESPONSE(DataWriter);

constexpr int DOMAIN = 28;
constexpr DDS_SampleStateMask ANY = DDS_ANY_SAMPLE_STATE;

// A writer and a reader of responses in one participant.
class TypedEndpoints : public testing::Test {
protected:
    TypedEndpoints() {
        DDS_DomainParticipantQos qos;
        DDS_DomainParticipantQos_initialize(&qos);
        participant = DDS_DomainParticipantFactory_create_participant(factory, DOMAIN, &qos, nullptr, 0);
        DDS_DomainParticipantQos_finalize(&qos);
        EXPECT_EQ(ZUL_RESPONSE(TypeSupport_register_type)(participant, "Response"), DDS_RETCODE_OK);
        auto* topic = DDS_DomainParticipant_create_topic(participant, "responses", "Response",
                                                         &DDS_TOPIC_QOS_DEFAULT, nullptr, 0);
        auto* subscriber =
            DDS_DomainParticipant_create_subscriber(participant, &DDS_SUBSCRIBER_QOS_DEFAULT, nullptr, 0);
        DDS_DataReaderListener listener{};
        listener.listener_data = this;
        listener.on_data_available = [](void* fixture, DDS_DataReader*) {
            auto* self = static_cast<TypedEndpoints*>(fixture);
            const std::lock_guard lock(self->mutex);
            ++self->arrivals;
            self->changed.notify_all();
        };
        DDS_DataReaderQos readerQos = DDS_DATAREADER_QOS_DEFAULT;
        readerQos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        readerQos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        readerQos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        untypedReader = DDS_Subscriber_create_datareader(subscriber, topic, &readerQos, &listener,
                                                         DDS_DATA_AVAILABLE_STATUS);
        otherReader = DDS_Subscriber_create_datareader(subscriber, topic, &readerQos, nullptr, 0);
        auto* publisher =
            DDS_DomainParticipant_create_publisher(participant, &DDS_PUBLISHER_QOS_DEFAULT, nullptr, 0);
        DDS_DataWriterQos writerQos = DDS_DATAWRITER_QOS_DEFAULT;
        writerQos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        writerQos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        writerQos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        untypedWriter = DDS_Publisher_create_datawriter(publisher, topic, &writerQos, nullptr, 0);
        EXPECT_EQ(DDS_Entity_enable(DDS_DomainParticipant_as_entity(participant)), DDS_RETCODE_OK);
        reader = ZUL_RESPONSE(DataReader_narrow)(untypedReader);
        writer = ZUL_RESPONSE(DataWriter_narrow)(untypedWriter);
        EXPECT_EQ(ZUL_RESPONSE(TypeSupport_initialize_data)(&sample), DDS_RETCODE_OK);
    }
    ~TypedEndpoints() override {
        EXPECT_TRUE(ZUL_RESPONSE(Seq_finalize)(&data));
        EXPECT_TRUE(ZULSequence::finalize(&infos, __func__));
        EXPECT_EQ(ZUL_RESPONSE(TypeSupport_finalize_data)(&sample), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(participant), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, participant), DDS_RETCODE_OK);
    }

    // Repeats `attempt` at each arrival until it is true.
    template <class Attempt>
    void await(Attempt attempt) {
        for (int seen = -1;;) {
            std::unique_lock lock(mutex);
            ASSERT_TRUE(changed.wait_for(lock, std::chrono::seconds(30), [&] { return arrivals != seen; }));
            seen = arrivals;
            lock.unlock();
            if (attempt()) {
                return;
            }
        }
    }
    void write(int invocation) {
        sample.id.invocation = invocation;
        ASSERT_EQ(ZUL_RESPONSE(DataWriter_write)(writer, &sample, &DDS_HANDLE_NIL), DDS_RETCODE_OK);
    }
    // The invocations that are on loan, which goes back.
    std::string giveBack(DDS_ReturnCode_t code) {
        std::string seen = code == DDS_RETCODE_OK ? "" : "code " + std::to_string(code);
        for (DDS_Long i = 0; i < ZUL_RESPONSE(Seq_get_length)(&data); ++i) {
            seen += std::to_string(ZUL_RESPONSE(Seq_get_reference)(&data, i)->id.invocation) + " ";
        }
        EXPECT_EQ(ZUL_RESPONSE(DataReader_return_loan)(reader, &data, &infos), DDS_RETCODE_OK);
        return seen;
    }

    DDS_DomainParticipantFactory* factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipant* participant;
    DDS_DataReader* untypedReader;
    DDS_DataReader* otherReader;
    DDS_DataWriter* untypedWriter;
    Reader* reader;
    Writer* writer;
    Response sample;
    Seq data{};
    DDS_SampleInfoSeq infos{};
    std::mutex mutex;
    std::condition_variable changed;
    int arrivals = 0;
};

TEST_F(TypedEndpoints, ReadSelectsAndTakeRemoves) {
    constexpr DDS_Long ALL = DDS_LENGTH_UNLIMITED;
    EXPECT_EQ(giveBack(ZUL_RESPONSE(DataReader_take)(reader, &data, &infos, ALL, ANY, ANY, ANY)), "code 11");
    auto* unread = DDS_DataReader_create_readcondition(untypedReader, DDS_NOT_READ_SAMPLE_STATE, ANY, ANY);
    auto* foreign = DDS_DataReader_create_readcondition(otherReader, ANY, ANY, ANY);
    for (int i = 1; i <= 3; ++i) {
        write(i);
    }
    std::string seen;
    await([&] {
        for (std::string part; part != "code 11"; seen += part == "code 11" ? "" : part) {
            part = giveBack(ZUL_RESPONSE(DataReader_read_w_condition)(reader, &data, &infos, 2, unread));
        }
        return seen.size() >= 6;
    });
    EXPECT_EQ(seen, "1 2 3 ");
    EXPECT_EQ(giveBack(ZUL_RESPONSE(DataReader_read_w_condition)(reader, &data, &infos, ALL, unread)),
              "code 11");
    EXPECT_EQ(ZUL_RESPONSE(DataReader_read_w_condition)(reader, &data, &infos, ALL, foreign),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(ZUL_RESPONSE(DataReader_read_w_condition)(reader, &data, &infos, ALL, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(giveBack(ZUL_RESPONSE(DataReader_read)(reader, &data, &infos, ALL, ANY, ANY, ANY)), "1 2 3 ");

    // What a keyless topic's one instance holds; no handle names it, nothing follows it.
    DDS_InstanceHandle_t named = DDS_HANDLE_NIL;
    named.isValid = 1;
    EXPECT_EQ(giveBack(ZUL_RESPONSE(DataReader_take_next_instance)(reader, &data, &infos, 1, &DDS_HANDLE_NIL,
                                                                   ANY, ANY, ANY)),
              "1 ");
    EXPECT_EQ(giveBack(ZUL_RESPONSE(DataReader_read_next_instance_w_condition)(reader, &data, &infos, ALL,
                                                                               &DDS_HANDLE_NIL, unread)),
              "code 11");
    EXPECT_EQ(giveBack(ZUL_RESPONSE(DataReader_read_next_instance)(reader, &data, &infos, ALL, &named, ANY,
                                                                   ANY, ANY)),
              "code 11");
    EXPECT_EQ(
        ZUL_RESPONSE(DataReader_take_instance)(reader, &data, &infos, ALL, &DDS_HANDLE_NIL, ANY, ANY, ANY),
        DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_RESPONSE(DataReader_read_instance_w_condition)(reader, &data, &infos, ALL, &named, unread),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_RESPONSE(DataReader_take_next_instance)(reader, &data, &infos, 1, nullptr, ANY, ANY, ANY),
              DDS_RETCODE_BAD_PARAMETER);

    // A loan stays out until it is returned; records of one's own are copied into.
    EXPECT_EQ(ZUL_RESPONSE(DataReader_take)(reader, &data, &infos, 1, ANY, ANY, ANY), DDS_RETCODE_OK);
    EXPECT_EQ(ZUL_RESPONSE(DataReader_take)(reader, &data, &infos, 1, ANY, ANY, ANY),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(giveBack(DDS_RETCODE_OK), "2 ");
    ASSERT_TRUE(ZUL_RESPONSE(Seq_set_maximum)(&data, 4));
    EXPECT_EQ(giveBack(ZUL_RESPONSE(DataReader_take)(reader, &data, &infos, ALL, ANY, ANY, ANY)), "3 ");
    EXPECT_EQ(giveBack(ZUL_RESPONSE(DataReader_take)(reader, &data, &infos, ALL, ANY, ANY, ANY)), "code 11");
    EXPECT_EQ(ZUL_RESPONSE(DataReader_take)(reader, nullptr, &infos, 1, ANY, ANY, ANY),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_RESPONSE(DataReader_return_loan)(reader, nullptr, &infos), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DataReader_delete_readcondition(untypedReader, foreign), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_DataReader_delete_readcondition(untypedReader, unread), DDS_RETCODE_OK);
}

TEST_F(TypedEndpoints, SamplesCarryTheirSourceTimestamp) {
    const DDS_Time_t past{1000, 500'000'000};
    sample.id.invocation = 7;
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_write_w_timestamp)(writer, &sample, &DDS_HANDLE_NIL, &past),
              DDS_RETCODE_OK);
    Response received;
    ASSERT_EQ(ZUL_RESPONSE(TypeSupport_initialize_data_ex)(&received, true), DDS_RETCODE_OK);
    DDS_SampleInfo info{};
    await([&] {
        return ZUL_RESPONSE(DataReader_take_next_sample)(reader, &received, &info) == DDS_RETCODE_OK;
    });
    EXPECT_EQ(received.id.invocation, 7);
    EXPECT_EQ(info.source_timestamp.sec, 1000);
    EXPECT_EQ(info.source_timestamp.nanosec, 500'000'000U);
    EXPECT_EQ(ZUL_RESPONSE(DataReader_read_next_sample)(reader, &received, &info), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(ZUL_RESPONSE(DataReader_read_next_sample)(reader, nullptr, &info), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_RESPONSE(TypeSupport_finalize_data_ex)(&received, true), DDS_RETCODE_OK);

    for (const DDS_Time_t& refused : {DDS_Time_t{-2, 0}, DDS_Time_t{1, 1'000'000'000}}) {
        EXPECT_EQ(ZUL_RESPONSE(DataWriter_write_w_timestamp)(writer, &sample, &DDS_HANDLE_NIL, &refused),
                  DDS_RETCODE_BAD_PARAMETER);
    }
    DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_write_w_params)(writer, &sample, &params), DDS_RETCODE_OK);
    params.handle.isValid = 1;
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_write_w_params)(writer, &sample, &params), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_write)(writer, &sample, nullptr), DDS_RETCODE_BAD_PARAMETER);
}

TEST_F(TypedEndpoints, KeylessTopicsHaveNoNamedInstance) {
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_register_instance)(writer, &sample).isValid, 0);
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_lookup_instance)(writer, &sample).isValid, 0);
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_unregister_instance)(writer, &sample, &DDS_HANDLE_NIL),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_dispose_w_params)(writer, &sample, &DDS_WRITEPARAMS_DEFAULT),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_dispose)(writer, nullptr, &DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_get_key_value)(writer, &sample, &DDS_HANDLE_NIL),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST_F(TypedEndpoints, NarrowOnlyToTheirOwnType) {
    EXPECT_EQ(ZUL_RESPONSE(DataReader_as_datareader)(reader), untypedReader);
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_as_datawriter)(writer), untypedWriter);
    CapturedLog log;
    EXPECT_EQ(ZUL_RoutingService_Administration_CommandRequestDataReader_narrow(untypedReader), nullptr);
    EXPECT_EQ(log.take(), "ERROR [TDataReader_narrow] refused: wrong type reader\n");
    EXPECT_EQ(ZUL_RoutingService_Administration_CommandRequestDataWriter_narrow(untypedWriter), nullptr);
    EXPECT_EQ(log.take(), "ERROR [TDataWriter_narrow] refused: wrong type writer\n");
    EXPECT_EQ(ZUL_RESPONSE(DataReader_narrow)(nullptr), nullptr);
    EXPECT_EQ(ZUL_RESPONSE(DataWriter_narrow)(nullptr), nullptr);
    EXPECT_EQ(log.take(), "ERROR [TDataReader_narrow] bad parameter: null reader\n"
                          "ERROR [TDataWriter_narrow] bad parameter: null writer\n");
}

} // namespace
