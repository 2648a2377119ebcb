// The world, factory, participant, topics and writer.
#include "tests/fake_dds/fake_dds.h"

#include <new>

using namespace fake_dds;

namespace fake_dds {

World& world() {
    static World instance;
    return instance;
}

DDS_ReturnCode_t World::note(const std::string& name) {
    const std::lock_guard lock(mutex);
    calls.push_back(name);
    const bool isCounted = callsUntilFailure > 0 && (failingCall.empty() || failingCall == name);
    const bool isToFail = isCounted && --callsUntilFailure == 0;
    return isToFail ? DDS_RETCODE_ERROR : DDS_RETCODE_OK;
}

Hooks World::currentHooks() {
    const std::lock_guard lock(mutex);
    return hooks;
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

} // namespace fake_dds

struct DDS_DomainParticipantFactory {};

namespace {

// The one entity of its kind, unless the call that makes it is to fail.
template <class Entity>
Entity* make(const char* call) {
    static Entity entity;
    if (world().note(call) != DDS_RETCODE_OK) {
        return nullptr;
    }
    world().participant->isEmpty = false;
    return &entity;
}

DDS_ReturnCode_t fillHandles(DDS_InstanceHandleSeq* handles, int count) {
    const bool isFilled = ZULSequence::ensure_length(handles, count, count, __func__);
    return isFilled ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
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
                                                                       DDS_DomainId_t,
                                                                       const DDS_DomainParticipantQos* qos,
                                                                       const DDS_DomainParticipantListener*,
                                                                       DDS_StatusMask) {
    if (world().note("create_participant") != DDS_RETCODE_OK) {
        return nullptr;
    }
    const std::lock_guard lock(world().mutex);
    world().cleanupPeriod = qos->database.shutdown_cleanup_period;
    world().participant = std::make_unique<DDS_DomainParticipant>();
    return world().participant.get();
}
DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory*,
                                                                 DDS_DomainParticipant* participant) {
    const DDS_ReturnCode_t code = world().note("delete_participant");
    const std::lock_guard lock(world().mutex);
    if (code != DDS_RETCODE_OK || !participant->isEmpty) {
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
DDS_ReturnCode_t DDS_DomainParticipant_get_qos(DDS_DomainParticipant*, DDS_DomainParticipantQos* qos) {
    // Words with the highest bit set: ids are unsigned there and signed in a request.
    qos->wire_protocol.rtps_host_id = 0xF0000001U;
    qos->wire_protocol.rtps_app_id = 0xA0000001U;
    return world().note("get_qos");
}

DDS_ReturnCode_t DDS_DomainParticipant_register_type(DDS_DomainParticipant*, const char*,
                                                     const ZULTypePlugin*) {
    return world().note("register_type");
}
DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant*, const char*) {
    return world().note("unregister_type");
}

DDS_Publisher* DDS_DomainParticipant_create_publisher(DDS_DomainParticipant*, const DDS_PublisherQos*,
                                                      const DDS_PublisherListener*, DDS_StatusMask) {
    return make<DDS_Publisher>("create_publisher");
}
DDS_Subscriber* DDS_DomainParticipant_create_subscriber(DDS_DomainParticipant*, const DDS_SubscriberQos*,
                                                        const DDS_SubscriberListener*, DDS_StatusMask) {
    return make<DDS_Subscriber>("create_subscriber");
}
DDS_Topic* DDS_DomainParticipant_create_topic(DDS_DomainParticipant*, const char*, const char*,
                                              const DDS_TopicQos*, const DDS_TopicListener*, DDS_StatusMask) {
    return make<DDS_Topic>("create_topic");
}
DDS_ReturnCode_t DDS_DomainParticipant_delete_contained_entities(DDS_DomainParticipant* self) {
    const DDS_ReturnCode_t code = world().note("delete_contained_entities");
    if (self->reader != nullptr) {
        self->reader->thread = {};
    }
    if (code == DDS_RETCODE_OK) {
        const std::lock_guard lock(world().mutex);
        self->reader.reset();
        self->isEmpty = true;
    }
    return code;
}

DDS_DataWriter* DDS_Publisher_create_datawriter(DDS_Publisher*, DDS_Topic*, const DDS_DataWriterQos* qos,
                                                const DDS_DataWriterListener*, DDS_StatusMask) {
    world().writerQos = *qos;
    return make<DDS_DataWriter>("create_datawriter");
}
DDS_DataReader* DDS_Subscriber_create_datareader(DDS_Subscriber*, DDS_Topic*, const DDS_DataReaderQos* qos,
                                                 const DDS_DataReaderListener* listener,
                                                 DDS_StatusMask mask) {
    if (world().note("create_datareader") != DDS_RETCODE_OK) {
        return nullptr;
    }
    const std::lock_guard lock(world().mutex);
    world().readerQos = *qos;
    world().readerMask = mask;
    world().participant->reader = std::make_unique<DDS_DataReader>(*listener);
    return world().reader();
}

DDS_ReturnCode_t DDS_DataWriter_write(DDS_DataWriter*, const void* sample, const DDS_InstanceHandle_t*) {
    const DDS_ReturnCode_t code = world().note("write");
    if (code != DDS_RETCODE_OK) {
        return code;
    }
    RequestCopy copy(ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data(),
                     ZUL_RoutingService_Administration_CommandRequestTypeSupport_delete_data);
    if (ZUL_RoutingService_Administration_CommandRequestTypeSupport_copy_data(
            copy.get(), static_cast<const Request*>(sample)) != DDS_RETCODE_OK) {
        return DDS_RETCODE_BAD_PARAMETER; // does not fit its bounds
    }
    world().written.push_back(std::move(copy));
    if (const auto hook = world().currentHooks().onWrite) {
        hook(*world().written.back());
    }
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
    return fillHandles(handles, world().subscriptions);
}
DDS_ReturnCode_t DDS_DataReader_get_matched_publications(DDS_DataReader*, DDS_InstanceHandleSeq* handles) {
    return fillHandles(handles, world().publications);
}
