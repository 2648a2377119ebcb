// One participant, one writer and one reader; every delivery is a thread, and they take turns.
#include "tests/fake_dds/fake_dds.h"

#include <utility>

using namespace fake_dds;
using Code = DDS_ReturnCode_t;
using Factory = DDS_DomainParticipantFactory;
using Participant = DDS_DomainParticipant;
using Handles = DDS_InstanceHandleSeq;

struct DDS_DomainParticipantFactory {};
struct DDS_Entity {};
struct DDS_DomainParticipant : DDS_Entity {};
struct DDS_Publisher {};
struct DDS_Subscriber {};
struct DDS_Topic {};
struct DDS_DataWriter {};
struct DDS_DataReader {};

namespace {

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
    return note(call) == DDS_RETCODE_OK ? &entity : nullptr;
}

Code fillHandles(Handles* handles, int count) {
    const bool isFilled = ZULSequence::ensure_length(handles, count, count, __func__);
    return isFilled ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

} // namespace

namespace fake_dds {

World& world() {
    static World instance;
    return instance;
}

void reset() {
    awaitIdle();
    world().~World();
    new (&world()) World;
}
void answerWith(const std::vector<Answer>& answers) {
    world().router = [answers](const Request&) {
        return answers;
    };
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
    const RequestId request = world().written.empty() ? RequestId{} : world().written.back()->id;
    for (const Answer& answer : answers) {
        world().available.emplace_back(request, answer);
    }
    world().deliveries.emplace_back([] {
        static DDS_DataReader reader;
        const std::lock_guard turn(world().turn);
        world().listener.on_data_available(world().listener.listener_data, &reader);
    });
}

void awaitIdle() {
    std::vector<std::jthread> deliveries; // joined when the mutex is free again
    const std::lock_guard lock(world().mutex);
    deliveries.swap(world().deliveries);
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
    world().cleanupPeriod = qos->database.shutdown_cleanup_period;
    auto* participant = make<DDS_DomainParticipant>("create_participant");
    world().isConnected = participant != nullptr;
    return participant;
}
Code DDS_DomainParticipantFactory_delete_participant(Factory*, Participant*) {
    world().isConnected = false;
    return note("delete_participant");
}
Code DDS_DomainParticipant_delete_contained_entities(Participant*) {
    awaitIdle(); // as any reader's end waits for its listener
    return note("delete_contained_entities");
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
    world().readerQos = *qos;
    world().readerMask = mask;
    world().listener = *listener;
    return make<DDS_DataReader>("create_datareader");
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
    if (world().router) {
        if (const auto answers = world().router(*world().written.back()); !answers.empty()) {
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

Code DDS_DataReader_read_or_take_untyped(DDS_DataReader*, const DDS_DataSeqView&, DDS_SampleInfoSeq* infos,
                                         const DDS_ReadOrTakeParams&, DDS_ReceivedSamples* received) {
    if (note("take") != DDS_RETCODE_OK) {
        return DDS_RETCODE_ERROR;
    }
    const std::lock_guard lock(world().mutex);
    if (world().available.empty()) {
        return DDS_RETCODE_NO_DATA;
    }
    Loan& loan = world().loan.emplace();
    for (const auto& [request, answer] : std::exchange(world().available, {})) {
        std::string& message = loan.messages.emplace_back(answer.message);
        Response& response = loan.responses.emplace_back();
        response.id = {request.host + answer.strayBy.host, request.app + answer.strayBy.app,
                       request.invocation + answer.strayBy.invocation};
        response.kind = static_cast<ZUL_RoutingService_Administration_CommandResponseKind>(answer.kind);
        response.is_final = answer.isFinal ? 1 : 0;
        response.message = message.data();
        loan.samples.push_back(&response);
        loan.infos.emplace_back().valid_data = answer.isValid;
    }
    const auto count = static_cast<DDS_Long>(loan.samples.size());
    ZULSequence::loan(infos, loan.infos.data(), nullptr, count, count, __func__);
    *received = {.is_loan = true, .samples = loan.samples.data(), .count = count};
    return DDS_RETCODE_OK;
}
Code DDS_DataReader_return_loan_untyped(DDS_DataReader*, void**, DDS_Long, DDS_SampleInfoSeq* infos) {
    for (std::string& message : world().loan->messages) {
        message.assign(message.size(), 'Z'); // whoever still reads it is found
    }
    ZULSequence::unloan(infos, __func__);
    world().loan.reset();
    return note("return_loan");
}
const char* DDS_DataReader_get_plugin_type_name(const DDS_DataReader*) {
    return ZUL_RoutingService_Administration_CommandResponseTypeSupport_get_type_name();
}
Code DDS_DataReader_get_matched_publications(DDS_DataReader*, Handles* handles) {
    return fillHandles(handles, world().publications);
}
