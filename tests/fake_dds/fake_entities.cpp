// The world, factory, participant, topics and writer.
#include "tests/fake_dds/fake_dds.h"

#include <new>

using namespace fake_dds;

namespace fake_dds {

World& world() {
    static World instance;
    return instance;
}

DDS_ReturnCode_t World::note(const std::string& name, const std::string& arguments) {
    const std::lock_guard lock(mutex);
    calls.push_back(arguments.empty() ? name : name + " " + arguments);
    const auto failure = failures.find(name);
    if (failure == failures.end() || --failure->second.first > 0) {
        return DDS_RETCODE_OK;
    }
    const DDS_ReturnCode_t code = failure->second.second;
    failures.erase(failure);
    return code;
}

void reset() {
    if (world().reader() != nullptr) {
        world().reader()->thread = {};
    }
    world().~World();
    new (&world()) World;
}

void setHooks(const Hooks& hooks) {
    const std::lock_guard lock(world().mutex);
    world().hooks = hooks;
}
void fail(const std::string& name, int occurrence, DDS_ReturnCode_t code) {
    const std::lock_guard lock(world().mutex);
    world().failures[name] = {occurrence, code};
}
std::vector<std::string> calls() {
    const std::lock_guard lock(world().mutex);
    return world().calls;
}
std::vector<const Request*> written() {
    const std::lock_guard lock(world().mutex);
    std::vector<const Request*> requests;
    for (const auto& request : world().written) {
        requests.push_back(request.get());
    }
    return requests;
}
void forget() {
    const std::lock_guard lock(world().mutex);
    world().calls.clear();
    world().written.clear();
}
std::size_t liveEntities() {
    const std::lock_guard lock(world().mutex);
    const auto& participant = world().participant;
    return participant == nullptr ? 0 : 1 + participant->contained;
}

} // namespace fake_dds

struct DDS_DomainParticipantFactory {};

namespace {

std::string text(const DDS_Duration_t& duration) {
    return std::to_string(duration.sec) + "." + std::to_string(duration.nanosec);
}
// What both endpoint kinds have: "reliability/blocking history samples".
template <class Qos>
std::string endpointQos(const Qos& qos) {
    return "reliability=" + std::to_string(qos.reliability.kind) + "/" +
           text(qos.reliability.max_blocking_time) + " history=" + std::to_string(qos.history.kind) +
           " samples=" + std::to_string(qos.resource_limits.max_samples);
}

// The participant's entity, unless the call that makes it is to fail.
template <class Entity>
Entity* make(DDS_ReturnCode_t code, Entity& entity) {
    world().participant->contained += code == DDS_RETCODE_OK ? 1 : 0;
    return code == DDS_RETCODE_OK ? &entity : nullptr;
}

DDS_ReturnCode_t fillHandles(DDS_InstanceHandleSeq* handles, int count, const char* name) {
    const DDS_ReturnCode_t code = world().note(name);
    return code != DDS_RETCODE_OK || ZULSequence::ensure_length(handles, count, count, name)
               ? code
               : DDS_RETCODE_OUT_OF_RESOURCES;
}

} // namespace

DDS_DomainParticipantFactory* DDS_DomainParticipantFactory_get_instance() {
    static DDS_DomainParticipantFactory instance;
    return &instance;
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_get_default_participant_qos(DDS_DomainParticipantFactory*,
                                                                          DDS_DomainParticipantQos*) {
    return world().note("get_default_participant_qos");
}

DDS_DomainParticipant* DDS_DomainParticipantFactory_create_participant(DDS_DomainParticipantFactory*,
                                                                       DDS_DomainId_t domainId,
                                                                       const DDS_DomainParticipantQos* qos,
                                                                       const DDS_DomainParticipantListener*,
                                                                       DDS_StatusMask) {
    const char* version = DDS_PropertyQosPolicyHelper_lookup_property(&qos->property, "zul.service.version");
    const std::string arguments = "domain=" + std::to_string(domainId) + " name='" +
                                  qos->participant_name.name + "' version=" + (version ? version : "none") +
                                  " cleanup=" + text(qos->database.shutdown_cleanup_period);
    if (world().note("create_participant", arguments) != DDS_RETCODE_OK) {
        return nullptr;
    }
    const std::lock_guard lock(world().mutex);
    world().participant = std::make_unique<DDS_DomainParticipant>();
    world().participant->number = ++world().participantsMade;
    return world().participant.get();
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory*,
                                                                 DDS_DomainParticipant* participant) {
    const DDS_ReturnCode_t code = world().note("delete_participant");
    const std::lock_guard lock(world().mutex);
    if (code != DDS_RETCODE_OK || participant->contained != 0) {
        return code != DDS_RETCODE_OK ? code : DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    world().participant.reset();
    return DDS_RETCODE_OK;
}

DDS_Entity* DDS_DomainParticipant_as_entity(DDS_DomainParticipant* self) {
    return self;
}

DDS_ReturnCode_t DDS_Entity_enable(DDS_Entity*) {
    return world().note("enable");
}

DDS_ReturnCode_t DDS_DomainParticipant_get_default_datareader_qos(DDS_DomainParticipant*,
                                                                  DDS_DataReaderQos* qos) {
    *qos = DDS_DATAREADER_QOS_DEFAULT;
    return world().note("get_default_datareader_qos");
}
DDS_ReturnCode_t DDS_DomainParticipant_get_default_datawriter_qos(DDS_DomainParticipant*,
                                                                  DDS_DataWriterQos* qos) {
    *qos = DDS_DATAWRITER_QOS_DEFAULT;
    return world().note("get_default_datawriter_qos");
}
DDS_ReturnCode_t DDS_DomainParticipant_get_qos(DDS_DomainParticipant* self, DDS_DomainParticipantQos* qos) {
    // Words with the highest bit set: ids are unsigned there and signed in a request.
    qos->wire_protocol.rtps_host_id = 0xF0000000U + self->number;
    qos->wire_protocol.rtps_app_id = 0xA0000000U + self->number;
    return world().note("get_qos");
}

DDS_ReturnCode_t DDS_DomainParticipant_register_type(DDS_DomainParticipant*, const char* typeName,
                                                     const ZULTypePlugin* plugin) {
    return world().note("register_type", std::string(typeName) + " plugin=" + plugin->typeName +
                                             " code=" + plugin->typeCode->name);
}
DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant*, const char* typeName) {
    return world().note("unregister_type", typeName);
}

DDS_Publisher* DDS_DomainParticipant_create_publisher(DDS_DomainParticipant* self, const DDS_PublisherQos*,
                                                      const DDS_PublisherListener*, DDS_StatusMask) {
    return make(world().note("create_publisher"), self->publisher);
}
DDS_Subscriber* DDS_DomainParticipant_create_subscriber(DDS_DomainParticipant* self, const DDS_SubscriberQos*,
                                                        const DDS_SubscriberListener*, DDS_StatusMask) {
    return make(world().note("create_subscriber"), self->subscriber);
}
DDS_Topic* DDS_DomainParticipant_create_topic(DDS_DomainParticipant* self, const char* topicName,
                                              const char* typeName, const DDS_TopicQos*,
                                              const DDS_TopicListener*, DDS_StatusMask) {
    const DDS_ReturnCode_t code = world().note("create_topic", std::string(topicName) + " type=" + typeName);
    return make(code, self->topics[topicName] = {topicName});
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_contained_entities(DDS_DomainParticipant* self) {
    const DDS_ReturnCode_t code = world().note("delete_contained_entities");
    if (self->reader != nullptr) {
        self->reader->thread = {};
    }
    if (code == DDS_RETCODE_OK) {
        const std::lock_guard lock(world().mutex);
        self->reader.reset();
        self->contained = 0;
    }
    return code;
}

DDS_DataWriter* DDS_Publisher_create_datawriter(DDS_Publisher*, DDS_Topic* topic,
                                                const DDS_DataWriterQos* qos, const DDS_DataWriterListener*,
                                                DDS_StatusMask) {
    const auto& protocol = qos->rtps_reliable_writer;
    const DDS_ReturnCode_t code =
        world().note("create_datawriter", topic->name + " " + endpointQos(*qos) +
                                              " window=" + std::to_string(protocol.min_send_window_size) +
                                              "/" + std::to_string(protocol.max_send_window_size));
    return make(code, world().participant->writer);
}

DDS_DataReader* DDS_Subscriber_create_datareader(DDS_Subscriber*, DDS_Topic* topic,
                                                 const DDS_DataReaderQos* qos,
                                                 const DDS_DataReaderListener* listener,
                                                 DDS_StatusMask mask) {
    const auto& protocol = qos->rtps_reliable_reader;
    const DDS_ReturnCode_t code = world().note(
        "create_datareader",
        topic->name + " " + endpointQos(*qos) + " delay=" + text(protocol.min_heartbeat_response_delay) +
            "/" + text(protocol.max_heartbeat_response_delay) + " mask=" + std::to_string(mask));
    if (code != DDS_RETCODE_OK) {
        return nullptr;
    }
    const std::lock_guard lock(world().mutex);
    auto& reader = world().participant->reader;
    reader = std::make_unique<DDS_DataReader>(*listener);
    reader->start();
    return make(code, *reader);
}

DDS_ReturnCode_t DDS_DataWriter_write(DDS_DataWriter*, const void* sample, const DDS_InstanceHandle_t*) {
    World& w = world();
    const DDS_ReturnCode_t code = w.note("write");
    if (code != DDS_RETCODE_OK) {
        return code;
    }
    std::unique_ptr<Request, RequestDeleter> copy(
        ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data());
    if (ZUL_RoutingService_Administration_CommandRequestTypeSupport_copy_data(
            copy.get(), static_cast<const Request*>(sample)) != DDS_RETCODE_OK) {
        return DDS_RETCODE_BAD_PARAMETER; // does not fit its bounds
    }
    const Request& request = *copy;
    std::unique_lock lock(w.mutex);
    w.written.push_back(std::move(copy));
    lock.unlock();
    w.call(&Hooks::onWrite, request);
    return code;
}

DDS_ReturnCode_t DDS_DataWriter_write_w_params(DDS_DataWriter* self, const void* sample,
                                               const DDS_WriteParams_t* params) {
    return DDS_DataWriter_write(self, sample, &params->handle);
}

const char* DDS_DataWriter_get_plugin_type_name(const DDS_DataWriter*) {
    return ZUL_RoutingService_Administration_CommandRequestTypeSupport_get_type_name();
}
DDS_ReturnCode_t DDS_DataWriter_get_matched_subscriptions(DDS_DataWriter*, DDS_InstanceHandleSeq* handles) {
    return fillHandles(handles, world().subscriptions, "get_matched_subscriptions");
}
DDS_ReturnCode_t DDS_DataReader_get_matched_publications(DDS_DataReader*, DDS_InstanceHandleSeq* handles) {
    return fillHandles(handles, world().publications, "get_matched_publications");
}
