// The world, factory, participant, topics and writer.
#include "tests/fake_dds/fake_dds.h"

#include <algorithm>
#include <cstdio>
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
    if (failure == failures.end() || --failure->second.occurrence > 0) {
        return DDS_RETCODE_OK;
    }
    const DDS_ReturnCode_t code = failure->second.code;
    failures.erase(failure);
    return code;
}

void reset() {
    World& w = world();
    for (const auto& participant : w.participants) {
        for (const auto& reader : participant->readers) {
            reader->stop();
        }
    }
    w.~World();
    new (&w) World;
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
    std::size_t count = 0;
    for (const auto& participant : world().participants) {
        count += 1 + participant->contained();
    }
    return count;
}

} // namespace fake_dds

struct DDS_DomainParticipantFactory {};

namespace {

std::string text(const DDS_Duration_t& duration) {
    return std::to_string(duration.sec) + "." + std::to_string(duration.nanosec);
}
std::string listenerAndMask(const void* listener, DDS_StatusMask mask) {
    char buffer[64];
    std::snprintf(buffer, sizeof(buffer), "listener=%s mask=%x", listener == nullptr ? "none" : "set", mask);
    return buffer;
}
// What both endpoint kinds have: "durability reliability/blocking history/depth samples/instances/each".
template <class Qos>
std::string endpointQos(const Qos& qos) {
    const auto& limits = qos.resource_limits;
    return "durability=" + std::to_string(qos.durability.kind) +
           " reliability=" + std::to_string(qos.reliability.kind) + "/" +
           text(qos.reliability.max_blocking_time) + " history=" + std::to_string(qos.history.kind) + "/" +
           std::to_string(qos.history.depth) + " limits=" + std::to_string(limits.max_samples) + "/" +
           std::to_string(limits.max_instances) + "/" + std::to_string(limits.max_samples_per_instance);
}

// Keeps what was made, unless the call is to fail.
template <class Entity>
Entity* keep(DDS_ReturnCode_t code, std::vector<std::unique_ptr<Entity>>& owner, Entity&& entity) {
    if (code != DDS_RETCODE_OK) {
        return nullptr;
    }
    const std::lock_guard lock(world().mutex);
    return owner.emplace_back(std::make_unique<Entity>(std::move(entity))).get();
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
                                                                          DDS_DomainParticipantQos* qos) {
    const DDS_ReturnCode_t code = world().note("get_default_participant_qos");
    for (int i = 0; code == DDS_RETCODE_OK && i < world().defaultProperties; ++i) {
        const std::string name = "default." + std::to_string(i);
        DDS_PropertyQosPolicyHelper_assert_property(&qos->property, name.c_str(), "", 0);
    }
    return code;
}

DDS_DomainParticipant* DDS_DomainParticipantFactory_create_participant(
    DDS_DomainParticipantFactory*, DDS_DomainId_t domainId, const DDS_DomainParticipantQos* qos,
    const DDS_DomainParticipantListener* listener, DDS_StatusMask mask) {
    std::string properties;
    for (DDS_Long i = 0; i < qos->property.value.length; ++i) {
        const auto& property = ZULSequence::at(qos->property.value, i);
        properties += std::string(" ") + property.name + "='" + property.value + "'/" +
                      std::to_string(property.propagate);
    }
    const DDS_ReturnCode_t code =
        world().note("create_participant", "domain=" + std::to_string(domainId) + " name='" +
                                               qos->participant_name.name + "'" + properties +
                                               " cleanup=" + text(qos->database.shutdown_cleanup_period) +
                                               " " + listenerAndMask(listener, mask));
    auto participant = std::make_unique<DDS_DomainParticipant>();
    DDS_DomainParticipantQos_initialize(&participant->qos);
    if (code != DDS_RETCODE_OK || !DDS_DomainParticipantQos_copy(&participant->qos, qos)) {
        return nullptr;
    }
    const std::lock_guard lock(world().mutex);
    // Words with the highest bit set: ids are unsigned there and signed in a request.
    const DDS_UnsignedLong number = ++world().participantsMade;
    participant->qos.wire_protocol = {.rtps_host_id = 0xF0000000U + number,
                                      .rtps_app_id = 0xA0000000U + number};
    return world().participants.emplace_back(std::move(participant)).get();
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory*,
                                                                 DDS_DomainParticipant* participant) {
    const DDS_ReturnCode_t code = world().note("delete_participant");
    const std::lock_guard lock(world().mutex);
    if (code != DDS_RETCODE_OK || participant->contained() != 0) {
        return code != DDS_RETCODE_OK ? code : DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    std::erase_if(world().participants,
                  [participant](const auto& owned) { return owned.get() == participant; });
    return DDS_RETCODE_OK;
}

DDS_Entity* DDS_DomainParticipant_as_entity(DDS_DomainParticipant* self) {
    return self;
}

DDS_ReturnCode_t DDS_Entity_enable(DDS_Entity* self) {
    const DDS_ReturnCode_t code = world().note("enable");
    if (code == DDS_RETCODE_OK) {
        const std::lock_guard lock(world().mutex);
        static_cast<DDS_DomainParticipant*>(self)->isEnabled = true;
    }
    return code;
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
    const DDS_ReturnCode_t code = world().note("get_qos");
    return code != DDS_RETCODE_OK || DDS_DomainParticipantQos_copy(qos, &self->qos)
               ? code
               : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_ReturnCode_t DDS_DomainParticipant_register_type(DDS_DomainParticipant* self, const char* typeName,
                                                     const ZULTypePlugin* plugin) {
    const DDS_ReturnCode_t code =
        world().note("register_type", std::string(typeName) + " plugin=" + plugin->typeName +
                                          " code=" + plugin->typeCode->name);
    if (code == DDS_RETCODE_OK) {
        self->types[typeName] = *plugin;
    }
    return code;
}
DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant* self, const char* typeName) {
    const DDS_ReturnCode_t code = world().note("unregister_type", typeName);
    if (code == DDS_RETCODE_OK) {
        self->types.erase(typeName);
    }
    return code;
}

DDS_Publisher* DDS_DomainParticipant_create_publisher(DDS_DomainParticipant* self, const DDS_PublisherQos*,
                                                      const DDS_PublisherListener* listener,
                                                      DDS_StatusMask mask) {
    return keep(world().note("create_publisher", listenerAndMask(listener, mask)), self->publishers,
                DDS_Publisher{self});
}
DDS_Subscriber* DDS_DomainParticipant_create_subscriber(DDS_DomainParticipant* self, const DDS_SubscriberQos*,
                                                        const DDS_SubscriberListener* listener,
                                                        DDS_StatusMask mask) {
    return keep(world().note("create_subscriber", listenerAndMask(listener, mask)), self->subscribers,
                DDS_Subscriber{self});
}
DDS_Topic* DDS_DomainParticipant_create_topic(DDS_DomainParticipant* self, const char* topicName,
                                              const char* typeName, const DDS_TopicQos*,
                                              const DDS_TopicListener* listener, DDS_StatusMask mask) {
    const DDS_ReturnCode_t code = world().note("create_topic", std::string(topicName) + " type=" + typeName +
                                                                   " " + listenerAndMask(listener, mask));
    const auto type = self->types.find(typeName);
    return type == self->types.end() ? nullptr : keep(code, self->topics, DDS_Topic{topicName, type->second});
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_contained_entities(DDS_DomainParticipant* self) {
    const DDS_ReturnCode_t code = world().note("delete_contained_entities");
    for (const auto& reader : self->readers) {
        reader->stop();
    }
    if (code == DDS_RETCODE_OK) {
        const std::lock_guard lock(world().mutex);
        self->readers.clear();
        self->writers.clear();
        self->subscribers.clear();
        self->publishers.clear();
        self->topics.clear();
    }
    return code;
}

DDS_DataWriter* DDS_Publisher_create_datawriter(DDS_Publisher* self, DDS_Topic* topic,
                                                const DDS_DataWriterQos* qos,
                                                const DDS_DataWriterListener* listener, DDS_StatusMask mask) {
    const auto& protocol = qos->rtps_reliable_writer;
    const DDS_ReturnCode_t code = world().note(
        "create_datawriter",
        topic->name + " " + endpointQos(*qos) + " window=" + std::to_string(protocol.min_send_window_size) +
            "/" + std::to_string(protocol.max_send_window_size) + " " + listenerAndMask(listener, mask));
    return keep(code, self->owner->writers, DDS_DataWriter{topic->plugin});
}

DDS_DataReader* DDS_Subscriber_create_datareader(DDS_Subscriber* self, DDS_Topic* topic,
                                                 const DDS_DataReaderQos* qos,
                                                 const DDS_DataReaderListener* listener,
                                                 DDS_StatusMask mask) {
    const auto& protocol = qos->rtps_reliable_reader;
    const DDS_ReturnCode_t code = world().note(
        "create_datareader",
        topic->name + " " + endpointQos(*qos) + " delay=" + text(protocol.min_heartbeat_response_delay) +
            "/" + text(protocol.max_heartbeat_response_delay) + " " + listenerAndMask(listener, mask));
    if (code != DDS_RETCODE_OK) {
        return nullptr;
    }
    const std::lock_guard lock(world().mutex);
    auto& reader = *self->owner->readers.emplace_back(std::make_unique<DDS_DataReader>());
    reader.plugin = topic->plugin;
    reader.listener = *listener;
    reader.start();
    return &reader;
}

DDS_ReturnCode_t DDS_DataWriter_write(DDS_DataWriter* self, const void* sample,
                                      const DDS_InstanceHandle_t* handle) {
    World& w = world();
    const DDS_ReturnCode_t code = w.note("write", handle->isValid != 0 ? "handle" : "nil");
    if (code != DDS_RETCODE_OK) {
        return code;
    }
    std::unique_ptr<Request, RequestDeleter> copy(
        ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data());
    if (!self->plugin.copySample(nullptr, copy.get(), sample)) {
        return DDS_RETCODE_BAD_PARAMETER; // does not fit its bounds
    }
    const Request& request = *copy;
    {
        const std::lock_guard lock(w.mutex);
        w.written.push_back(std::move(copy));
    }
    w.call(&Hooks::onWrite, request);
    return code;
}

DDS_ReturnCode_t DDS_DataWriter_write_w_params(DDS_DataWriter* self, const void* sample,
                                               const DDS_WriteParams_t* params) {
    return DDS_DataWriter_write(self, sample, &params->handle);
}

const char* DDS_DataWriter_get_plugin_type_name(const DDS_DataWriter* self) {
    return self == nullptr ? nullptr : self->plugin.typeName;
}
DDS_ReturnCode_t DDS_DataWriter_get_matched_subscriptions(DDS_DataWriter*, DDS_InstanceHandleSeq* handles) {
    return fillHandles(handles, world().subscriptions, "get_matched_subscriptions");
}
DDS_ReturnCode_t DDS_DataReader_get_matched_publications(DDS_DataReader*, DDS_InstanceHandleSeq* handles) {
    return fillHandles(handles, world().publications, "get_matched_publications");
}
