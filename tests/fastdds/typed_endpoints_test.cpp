// Typed writers and readers over the real library: every form of writing, reading and taking.
#include "admin_types/type_support.h"
#include "middleware/fastdds/matched_endpoints.h"
#include "tests/fastdds/participant.h"
#include "tests/middleware/captured_log.h"

#include <atomic>

namespace {

#define ZUL_RESPONSE(operation) ZUL_RoutingService_Administration_CommandResponse##operation
#define ZUL_READER(operation) ZUL_RESPONSE(DataReader_##operation)
#define ZUL_WRITER(operation) ZUL_RESPONSE(DataWriter_##operation)

using Seq = ZUL_RESPONSE(Seq);
constexpr int DOMAIN = 28;
constexpr int OTHER_LIMIT = 8; // samples of the reader that nobody takes from
constexpr DDS_SampleStateMask ANY = DDS_ANY_SAMPLE_STATE;
constexpr DDS_Long ALL = DDS_LENGTH_UNLIMITED;

// Counts what arrives at a reader.
struct Arrivals {
    static void note(void* arrivals, DDS_DataReader*) {
        auto* self = static_cast<Arrivals*>(arrivals);
        ++self->count;
        self->count.notify_all();
    }
    // Repeats `attempt` at each arrival until it is true.
    template <class Attempt>
    void await(Attempt attempt) {
        for (int seen = 0; !attempt(); seen = count) {
            count.wait(seen);
        }
    }
    std::atomic<int> count{0};
};

// A writer and a reader of responses in one participant.
class TypedEndpoints : public testing::Test, protected Arrivals, protected Participant {
protected:
    TypedEndpoints() : Participant(DOMAIN) {
        EXPECT_EQ(ZUL_RESPONSE(TypeSupport_register_type)(participant, "Response"), DDS_RETCODE_OK);
        auto* topic = createTopic("responses", "Response");
        DDS_DataReaderListener listener{};
        listener.listener_data = static_cast<Arrivals*>(this);
        listener.on_data_available = Arrivals::note;
        DDS_DataReaderQos readerQos = DDS_DATAREADER_QOS_DEFAULT;
        readerQos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        readerQos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        DDS_DataWriterQos writerQos = DDS_DATAWRITER_QOS_DEFAULT;
        writerQos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        untypedReader = createReader(topic, readerQos, &listener);
        readerQos.resource_limits.max_samples = OTHER_LIMIT;
        otherReader = createReader(topic, readerQos);
        untypedWriter = createWriter(topic, writerQos);
        enable();
        reader = ZUL_READER(narrow)(untypedReader);
        writer = ZUL_WRITER(narrow)(untypedWriter);
        EXPECT_EQ(ZUL_RESPONSE(TypeSupport_initialize_data)(&sample), DDS_RETCODE_OK);
    }
    ~TypedEndpoints() override {
        EXPECT_TRUE(ZUL_RESPONSE(Seq_finalize)(&data));
        EXPECT_TRUE(ZULSequence::finalize(&infos, __func__));
        EXPECT_EQ(ZUL_RESPONSE(TypeSupport_finalize_data)(&sample), DDS_RETCODE_OK);
    }

    void write(int invocation) {
        sample.id.invocation = invocation;
        ASSERT_EQ(ZUL_WRITER(write)(writer, &sample, &DDS_HANDLE_NIL), DDS_RETCODE_OK);
    }
    // The invocations that are on loan, which goes back.
    std::string giveBack(DDS_ReturnCode_t code) {
        std::string seen = code == DDS_RETCODE_OK ? "" : "code " + std::to_string(code);
        for (DDS_Long i = 0; i < ZUL_RESPONSE(Seq_get_length)(&data); ++i) {
            seen += std::to_string(ZUL_RESPONSE(Seq_get_reference)(&data, i)->id.invocation) + " ";
        }
        EXPECT_EQ(ZUL_READER(return_loan)(reader, &data, &infos), DDS_RETCODE_OK);
        return seen;
    }
    DDS_ReturnCode_t take(Seq* into, DDS_Long limit) {
        return ZUL_READER(take)(reader, into, &infos, limit, ANY, ANY, ANY);
    }
    DDS_ReturnCode_t read(DDS_Long limit, DDS_ReadCondition* condition) {
        return ZUL_READER(read_w_condition)(reader, &data, &infos, limit, condition);
    }

    DDS_DataReader* untypedReader;
    DDS_DataReader* otherReader;
    DDS_DataWriter* untypedWriter;
    ZUL_RESPONSE(DataReader) * reader;
    ZUL_RESPONSE(DataWriter) * writer;
    ZUL_RESPONSE() sample;
    Seq data{};
    DDS_SampleInfoSeq infos{};
};

TEST_F(TypedEndpoints, AReadOrATakeOfOtherSamples) {
    EXPECT_EQ(giveBack(take(&data, ALL)), "code 11");
    auto* unread = DDS_DataReader_create_readcondition(untypedReader, DDS_NOT_READ_SAMPLE_STATE, ANY, ANY);
    auto* foreign = DDS_DataReader_create_readcondition(otherReader, ANY, ANY, ANY);
    for (int i = 1; i <= 4; ++i) {
        write(i);
    }
    std::string seen;
    await([&] {
        for (std::string part; part != "code 11"; seen += part == "code 11" ? "" : part) {
            part = giveBack(read(2, unread));
        }
        return seen.size() >= 8;
    });
    EXPECT_EQ(seen, "1 2 3 4 ");
    EXPECT_EQ(read(ALL, foreign), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(read(ALL, nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(giveBack(ZUL_READER(read)(reader, &data, &infos, ALL, ANY, ANY, ANY)), "1 2 3 4 ");
    EXPECT_EQ(infos.length, 0);

    // Instance by instance: the one of a keyless topic, which its samples name, and nothing after it.
    const auto takeAfter = [&](const DDS_InstanceHandle_t* handle) {
        return ZUL_READER(take_next_instance)(reader, &data, &infos, 1, handle, ANY, ANY, ANY);
    };
    ASSERT_EQ(takeAfter(&DDS_HANDLE_NIL), DDS_RETCODE_OK);
    const DDS_InstanceHandle_t named = infos.contiguous[0].instance_handle;
    EXPECT_EQ(giveBack(DDS_RETCODE_OK), "1 ");
    EXPECT_EQ(giveBack(takeAfter(&named)), "code 11");
    EXPECT_EQ(takeAfter(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(giveBack(ZUL_READER(read_next_instance_w_condition)(reader, &data, &infos, ALL, &DDS_HANDLE_NIL,
                                                                  unread)),
              "code 11");
    EXPECT_EQ(giveBack(ZUL_READER(read_instance)(reader, &data, &infos, ALL, &named, ANY, ANY, ANY)),
              "2 3 4 ");
    EXPECT_EQ(ZUL_READER(take_instance)(reader, &data, &infos, ALL, &DDS_HANDLE_NIL, ANY, ANY, ANY),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DataReader_delete_readcondition(untypedReader, foreign), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_DataReader_delete_readcondition(untypedReader, unread), DDS_RETCODE_OK);
}

TEST_F(TypedEndpoints, ALoanOrACopyThatTheSequencesDoNotAllow) {
    for (int i = 1; i <= 3; ++i) {
        write(i);
    }
    await([&] { return giveBack(ZUL_READER(read)(reader, &data, &infos, ALL, ANY, ANY, ANY)) == "1 2 3 "; });
    // A loan stays out until it is returned.
    EXPECT_EQ(take(&data, 1), DDS_RETCODE_OK);
    EXPECT_EQ(take(&data, 1), DDS_RETCODE_PRECONDITION_NOT_MET);
    DDS_SampleInfoSeq otherInfos{};
    EXPECT_EQ(ZUL_READER(return_loan)(reader, &data, &otherInfos), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(giveBack(DDS_RETCODE_OK), "1 ");
    EXPECT_TRUE(data.owned && data.maximum == 0 && infos.owned && infos.maximum == 0);
    // Records of one's own are copied into, where both sequences have room and every record its buffers.
    ASSERT_TRUE(ZUL_RESPONSE(Seq_set_maximum)(&data, 4));
    EXPECT_EQ(take(&data, ALL), DDS_RETCODE_PRECONDITION_NOT_MET);
    ASSERT_TRUE(ZULSequence::set_maximum(&infos, 4, __func__));
    EXPECT_EQ(take(&data, 5), DDS_RETCODE_PRECONDITION_NOT_MET);
    CapturedLog log;
    char* const message = std::exchange(data.contiguous[2].message, nullptr);
    EXPECT_EQ(take(&data, 3), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(giveBack(take(&data, 2)), "2 3 ");
    data.contiguous[2].message = message;
    EXPECT_EQ(infos.length, 2);
    infos.length = 1;
    EXPECT_EQ(take(&data, ALL), DDS_RETCODE_PRECONDITION_NOT_MET);
    infos.length = 2;
    EXPECT_EQ(giveBack(take(&data, ALL)), "code 11");
    EXPECT_EQ(infos.length, 0);
    EXPECT_EQ(ZUL_READER(take)(reader, &data, nullptr, 1, ANY, ANY, ANY), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(log.take(), "ERROR [ZUL_RoutingService_Administration_CommandResponseDataReader_take] refused: "
                          "received_data has elements without buffers; initialize them first\n"
                          "ERROR [ZUL_RoutingService_Administration_CommandResponseDataReader_take] "
                          "bad parameter: info_seq\n");
    EXPECT_EQ(take(nullptr, 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(take(&data, 0), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_READER(return_loan)(reader, nullptr, &infos), DDS_RETCODE_BAD_PARAMETER);
}

TEST_F(TypedEndpoints, AWriteWithAnotherTimestampOrInstance) {
    const DDS_Time_t past{1000, 500'000'000};
    sample.id.invocation = 7;
    EXPECT_EQ(ZUL_WRITER(write_w_timestamp)(writer, &sample, &DDS_HANDLE_NIL, &past), DDS_RETCODE_OK);
    sample.id.invocation = 0;
    DDS_SampleInfo info{};
    await([&] { return ZUL_READER(read_next_sample)(reader, &sample, &info) == DDS_RETCODE_OK; });
    EXPECT_EQ(sample.id.invocation, 7);
    EXPECT_EQ(info.source_timestamp.sec, 1000);
    EXPECT_EQ(info.source_timestamp.nanosec, 500'000'000U);
    EXPECT_EQ(ZUL_READER(take_next_sample)(reader, &sample, &info), DDS_RETCODE_NO_DATA); // it was read
    EXPECT_EQ(ZUL_READER(read_next_sample)(reader, nullptr, &info), DDS_RETCODE_BAD_PARAMETER);

    for (const DDS_Time_t& refused : {DDS_Time_t{-2, 0}, DDS_Time_t{1, 1'000'000'000}}) {
        EXPECT_EQ(ZUL_WRITER(write_w_timestamp)(writer, &sample, &DDS_HANDLE_NIL, &refused),
                  DDS_RETCODE_BAD_PARAMETER);
    }
    DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    EXPECT_EQ(ZUL_WRITER(write_w_params)(writer, &sample, &params), DDS_RETCODE_OK);
    params.handle.isValid = 1;
    EXPECT_EQ(ZUL_WRITER(write_w_params)(writer, &sample, &params), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_WRITER(write)(writer, &sample, nullptr), DDS_RETCODE_BAD_PARAMETER);
    // A writer of a keyless topic has no named instance.
    EXPECT_FALSE(ZUL_WRITER(register_instance)(writer, &sample).isValid != 0 ||
                 ZUL_WRITER(lookup_instance)(writer, &sample).isValid != 0);
    EXPECT_EQ(ZUL_WRITER(unregister_instance)(writer, &sample, &DDS_HANDLE_NIL),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(ZUL_WRITER(dispose)(writer, nullptr, &DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(ZUL_WRITER(get_key_value)(writer, &sample, &DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
}

TEST_F(TypedEndpoints, AFullReaderThatDoesNotTellOnceThatItsWriterIsNotHeardAgain) {
    CapturedLog log;
    for (int i = 1; i <= OTHER_LIMIT; ++i) {
        write(i);
    }
    EXPECT_EQ(log.take(), "");
    write(OTHER_LIMIT + 1);
    write(OTHER_LIMIT + 2);
    const std::string told = log.take();
    EXPECT_TRUE(told.starts_with("ERROR [DDS_DataReader] a reader is full (8 samples); ")) << told;
    EXPECT_EQ(told.find('\n'), told.size() - 1) << told;
}

// In an enabled participant endpoints match while they are created, and their listeners use them at once.
TEST_F(TypedEndpoints, CalledByTheLibraryBeforeTheyAreComplete) {
    auto* topic = createTopic("late", "Response");
    const DDS_DataWriterListener writes{&sample, [](void* written, DDS_DataWriter* created) {
                                            DDS_DataWriter_write(created, written,
                                                                 &DDS_HANDLE_NIL); // may be too early
                                        }};
    Arrivals arrivals;
    DDS_DataReaderListener takes{};
    takes.listener_data = &arrivals;
    takes.on_data_available = [](void* counted, DDS_DataReader* created) {
        Seq taken{};
        DDS_SampleInfoSeq takenInfos{};
        auto* typed = ZUL_READER(narrow)(created);
        if (ZUL_READER(take)(typed, &taken, &takenInfos, ALL, ANY, ANY, ANY) == DDS_RETCODE_OK) {
            Arrivals::note(counted, created);
        }
        EXPECT_EQ(ZUL_READER(return_loan)(typed, &taken, &takenInfos), DDS_RETCODE_OK);
    };
    auto* late = DDS_Publisher_create_datawriter(publisher, topic, &DDS_DATAWRITER_QOS_DEFAULT, nullptr, 0);
    createReader(topic, DDS_DATAREADER_QOS_DEFAULT, &takes);
    DDS_Publisher_create_datawriter(publisher, topic, &DDS_DATAWRITER_QOS_DEFAULT, &writes,
                                    DDS_PUBLICATION_MATCHED_STATUS);
    EXPECT_EQ(DDS_DataWriter_write(late, &sample, &DDS_HANDLE_NIL), DDS_RETCODE_OK);
    arrivals.await([&] { return arrivals.count > 0; });
}

// Those that come and leave at the same time may all be reported as a change of 0.
TEST(MatchedEndpoints, OfWhichNoneIsLostOrKeptByAChangeThatSaysNothing) {
    const DDS_InstanceHandle_t one{.value = {1}, .isValid = 1}, other{.value = {2}, .isValid = 1};
    for (const std::int32_t change : {1, 0}) {
        zul::MatchedEndpoints matched;
        const auto holds = [&](const DDS_InstanceHandle_t& which) {
            return matched.any([&](const DDS_InstanceHandle_t& handle) { return handle == which; });
        };
        for (const auto& [handle, told] : {std::pair{one, change}, {one, 0}, {other, change}, {other, 0}}) {
            matched.update(handle, told);
            EXPECT_TRUE(holds(handle)) << change;
        }
        for (const std::int32_t told : {-change, 0}) {
            matched.update(one, told);
            EXPECT_TRUE(!holds(one) && holds(other)) << change;
        }
    }
}

TEST_F(TypedEndpoints, ThatNarrowToAnotherType) {
    EXPECT_TRUE(ZUL_READER(as_datareader)(reader) == untypedReader &&
                ZUL_WRITER(as_datawriter)(writer) == untypedWriter);
    CapturedLog log;
    EXPECT_EQ(ZUL_RoutingService_Administration_CommandRequestDataReader_narrow(untypedReader), nullptr);
    EXPECT_EQ(ZUL_WRITER(narrow)(nullptr), nullptr);
    EXPECT_EQ(log.take(), "ERROR [TDataReader_narrow] refused: wrong type reader\n"
                          "ERROR [TDataWriter_narrow] bad parameter: null writer\n");
}

} // namespace
