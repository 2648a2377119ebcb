// One participant, one writer and one reader; every delivery is a thread, and they take turns.
#include "tests/fake_dds/fake_dds.h"

#include <cstring>
#include <utility>

using namespace fake_dds;
using Code = DDS_ReturnCode_t;
using Factory = DDS_DomainParticipantFactory;
using Participant = DDS_DomainParticipant;
using Handles = DDS_InstanceHandleSeq;

struct DDS_DomainParticipantFactory {};
struct DDS_Entity {};
struct DDS_Publisher {};
struct DDS_Subscriber {};
struct DDS_Topic {};
struct DDS_DataWriter {};
struct DDS_DataReader {
    DDS_DataReaderListener listener;
    std::vector<std::pair<RequestId, Answer>> available{};
    std::vector<void*> loan{};
    std::vector<DDS_SampleInfo> loanInfos{};
    std::mutex turn{};
    std::vector<std::jthread> deliveries{};
};
struct DDS_DomainParticipant : DDS_Entity {
    std::unique_ptr<DDS_DataReader> reader{};
    bool isEmpty = true;
};

namespace {

std::unique_ptr<DDS_DomainParticipant> theParticipant; // guarded by the world's mutex

DDS_DataReader* theReader() {
    return theParticipant != nullptr ? theParticipant->reader.get() : nullptr;
}

// Notes the call; an error when it is to fail.
Code note(const std::string& name) {
    const std::lock_guard lock(world().mutex);
    world().calls.push_back(name);
    const bool isCounted =
        world().callsUntilFailure > 0 && (world().failingCall.empty() || world().failingCall == name);
    return isCounted && --world().callsUntilFailure == 0 ? DDS_RETCODE_ERROR : DDS_RETCODE_OK;
}

// The one entity of its kind, unless the call that makes it is to fail.
template <class Entity>
Entity* make(const char* call) {
    static Entity entity;
    if (note(call) != DDS_RETCODE_OK) {
        return nullptr;
    }
    theParticipant->isEmpty = false;
    return &entity;
}

Code fillHandles(Handles* handles, int count) {
    const bool isFilled = ZULSequence::ensure_length(handles, count, count, __func__);
    return isFilled ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

Response* makeResponse(const RequestId& request, const Answer& answer) {
    using Kind = ZUL_RoutingService_Administration_CommandResponseKind;
    Response* response = ZUL_RoutingService_Administration_CommandResponseTypeSupport_create_data();
    response->id = {request.host + answer.strayBy.host, request.app + answer.strayBy.app,
                    request.invocation + answer.strayBy.invocation};
    response->kind = static_cast<Kind>(answer.kind);
    response->is_final = answer.isFinal ? 1 : 0;
    DDS_String_free(response->message); // whose bound the answer's message may exceed
    response->message = DDS_String_dup(answer.message.c_str());
    return response;
}

// Poisoned, so that whoever still reads it is found.
void release(void* sample) {
    auto* response = static_cast<Response*>(sample);
    response->id = {0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A};
    std::memset(response->message, 0x5A, std::strlen(response->message));
    ZUL_RoutingService_Administration_CommandResponseTypeSupport_delete_data(response);
}

} // namespace

namespace fake_dds {

World& world() {
    static World instance;
    return instance;
}

void reset() {
    awaitIdle();
    theParticipant.reset();
    world().~World();
    new (&world()) World;
}
void setRouter(const Router& router) {
    const std::lock_guard lock(world().mutex);
    world().router = router;
}
void answerWith(const std::vector<Answer>& answers) {
    setRouter([answers](const Request&) { return answers; });
}
void fail(const std::string& name, int n) {
    const std::lock_guard lock(world().mutex);
    world().failingCall = name;
    world().callsUntilFailure = n;
}
void forget() {
    const std::lock_guard lock(world().mutex);
    world().calls.clear();
    world().written.clear();
}

void deliver(const std::vector<Answer>& answers) {
    const std::lock_guard lock(world().mutex);
    DDS_DataReader* reader = theReader();
    if (reader == nullptr) {
        return;
    }
    const RequestId request = world().written.empty() ? RequestId{} : world().written.back()->id;
    for (const Answer& answer : answers) {
        reader->available.emplace_back(request, answer);
    }
    reader->deliveries.emplace_back([reader] {
        const std::lock_guard turn(reader->turn);
        reader->listener.on_data_available(reader->listener.listener_data, reader);
    });
}

void awaitIdle() {
    std::vector<std::jthread> deliveries; // joined when the mutex is free again
    const std::lock_guard lock(world().mutex);
    if (DDS_DataReader* reader = theReader()) {
        deliveries.swap(reader->deliveries);
    }
}

} // namespace fake_dds

// --- the factory and the participant

Factory* DDS_DomainParticipantFactory_get_instance() {
    static DDS_DomainParticipantFactory instance;
    return &instance;
}
Code DDS_DomainParticipantFactory_get_default_participant_qos(Factory*, DDS_DomainParticipantQos*) {
    return note("get_default_participant_qos");
}
Participant* DDS_DomainParticipantFactory_create_participant(Factory*, DDS_DomainId_t,
                                                             const DDS_DomainParticipantQos* qos,
                                                             const DDS_DomainParticipantListener*,
                                                             DDS_StatusMask) {
    if (note("create_participant") != DDS_RETCODE_OK) {
        return nullptr;
    }
    world().cleanupPeriod = qos->database.shutdown_cleanup_period;
    theParticipant = std::make_unique<DDS_DomainParticipant>();
    world().isConnected = true;
    return theParticipant.get();
}
Code DDS_DomainParticipantFactory_delete_participant(Factory*, Participant* participant) {
    if (note("delete_participant") != DDS_RETCODE_OK || !participant->isEmpty) {
        return DDS_RETCODE_ERROR;
    }
    theParticipant.reset();
    world().isConnected = false;
    return DDS_RETCODE_OK;
}
Code DDS_DomainParticipant_delete_contained_entities(Participant* self) {
    const Code code = note("delete_contained_entities");
    awaitIdle(); // as any reader's end waits for its listener
    if (code == DDS_RETCODE_OK) {
        self->reader.reset();
        self->isEmpty = true;
    }
    return code;
}

DDS_Entity* DDS_DomainParticipant_as_entity(Participant* self) {
    return self;
}
Code DDS_Entity_enable(DDS_Entity*) {
    return note("enable");
}
Code DDS_DomainParticipant_get_default_datareader_qos(Participant*, DDS_DataReaderQos* qos) {
    *qos = DDS_DATAREADER_QOS_DEFAULT;
    return note("get_default_datareader_qos");
}
Code DDS_DomainParticipant_get_default_datawriter_qos(Participant*, DDS_DataWriterQos* qos) {
    *qos = DDS_DATAWRITER_QOS_DEFAULT;
    return note("get_default_datawriter_qos");
}
Code DDS_DomainParticipant_get_qos(Participant*, DDS_DomainParticipantQos* qos) {
    // Words with the highest bit set: ids are unsigned there and signed in a request.
    qos->wire_protocol.rtps_host_id = 0xF0000001U;
    qos->wire_protocol.rtps_app_id = 0xA0000001U;
    return note("get_qos");
}

// --- types, topics and endpoints

Code DDS_DomainParticipant_register_type(Participant*, const char*, const ZULTypePlugin*) {
    return note("register_type");
}
Code DDS_DomainParticipant_unregister_type(Participant*, const char*) {
    return note("unregister_type");
}
DDS_Publisher* DDS_DomainParticipant_create_publisher(Participant*, const DDS_PublisherQos*,
                                                      const DDS_PublisherListener*, DDS_StatusMask) {
    return make<DDS_Publisher>("create_publisher");
}
DDS_Subscriber* DDS_DomainParticipant_create_subscriber(Participant*, const DDS_SubscriberQos*,
                                                        const DDS_SubscriberListener*, DDS_StatusMask) {
    return make<DDS_Subscriber>("create_subscriber");
}
DDS_Topic* DDS_DomainParticipant_create_topic(Participant*, const char*, const char*, const DDS_TopicQos*,
                                              const DDS_TopicListener*, DDS_StatusMask) {
    return make<DDS_Topic>("create_topic");
}
DDS_DataWriter* DDS_Publisher_create_datawriter(DDS_Publisher*, DDS_Topic*, const DDS_DataWriterQos* qos,
                                                const DDS_DataWriterListener*, DDS_StatusMask) {
    world().writerQos = *qos;
    return make<DDS_DataWriter>("create_datawriter");
}
DDS_DataReader* DDS_Subscriber_create_datareader(DDS_Subscriber*, DDS_Topic*, const DDS_DataReaderQos* qos,
                                                 const DDS_DataReaderListener* listener,
                                                 DDS_StatusMask mask) {
    if (note("create_datareader") != DDS_RETCODE_OK) {
        return nullptr;
    }
    world().readerQos = *qos;
    world().readerMask = mask;
    theParticipant->reader = std::make_unique<DDS_DataReader>(*listener);
    return theReader();
}

// --- writing

Code DDS_DataWriter_write(DDS_DataWriter*, const void* sample, const DDS_InstanceHandle_t*) {
    if (note("write") != DDS_RETCODE_OK) {
        return DDS_RETCODE_ERROR;
    }
    RequestCopy copy(ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data(),
                     ZUL_RoutingService_Administration_CommandRequestTypeSupport_delete_data);
    if (ZUL_RoutingService_Administration_CommandRequestTypeSupport_copy_data(
            copy.get(), static_cast<const Request*>(sample)) != DDS_RETCODE_OK) {
        return DDS_RETCODE_BAD_PARAMETER; // does not fit its bounds
    }
    world().written.push_back(std::move(copy));
    if (const Router router = world().router) {
        if (const auto answers = router(*world().written.back()); !answers.empty()) {
            deliver(answers);
        }
    }
    return DDS_RETCODE_OK;
}
Code DDS_DataWriter_write_w_params(DDS_DataWriter* self, const void* sample,
                                   const DDS_WriteParams_t* params) {
    return DDS_DataWriter_write(self, sample, &params->handle);
}
const char* DDS_DataWriter_get_plugin_type_name(const DDS_DataWriter*) {
    return ZUL_RoutingService_Administration_CommandRequestTypeSupport_get_type_name();
}
Code DDS_DataWriter_get_matched_subscriptions(DDS_DataWriter*, Handles* handles) {
    return fillHandles(handles, world().subscriptions);
}

// --- reading: takes of all there is, with a loan

Code DDS_DataReader_read_or_take_untyped(DDS_DataReader* self, const DDS_DataSeqView&,
                                         DDS_SampleInfoSeq* infos, const DDS_ReadOrTakeParams&,
                                         DDS_ReceivedSamples* received) {
    if (note("take") != DDS_RETCODE_OK) {
        return DDS_RETCODE_ERROR;
    }
    const std::lock_guard lock(world().mutex);
    if (self->available.empty()) {
        return DDS_RETCODE_NO_DATA;
    }
    self->loanInfos.clear();
    for (const auto& [request, answer] : std::exchange(self->available, {})) {
        self->loan.push_back(makeResponse(request, answer));
        DDS_SampleInfo& info = self->loanInfos.emplace_back();
        info.instance_handle = ZUL_HANDLE_KEYLESS_INSTANCE;
        info.valid_data = answer.isValid;
    }
    const auto count = static_cast<DDS_Long>(self->loan.size());
    ZULSequence::loan_contiguous(infos, self->loanInfos.data(), count, count, __func__);
    *received = {.is_loan = true, .samples = self->loan.data(), .count = count};
    ++world().openLoans;
    return DDS_RETCODE_OK;
}
Code DDS_DataReader_return_loan_untyped(DDS_DataReader* self, void**, DDS_Long, DDS_SampleInfoSeq* infos) {
    const Code code = note("return_loan");
    const std::lock_guard lock(world().mutex);
    for (void* sample : std::exchange(self->loan, {})) {
        release(sample);
    }
    ZULSequence::unloan(infos, __func__);
    world().openLoans -= code == DDS_RETCODE_OK ? 1 : 0;
    return code;
}
const char* DDS_DataReader_get_plugin_type_name(const DDS_DataReader*) {
    return ZUL_RoutingService_Administration_CommandResponseTypeSupport_get_type_name();
}
Code DDS_DataReader_get_matched_publications(DDS_DataReader*, Handles* handles) {
    return fillHandles(handles, world().publications);
}
