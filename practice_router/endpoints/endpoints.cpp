#include "practice_router/endpoints/endpoints.h"

#include "practice_router/endpoints/request_listener.h"
#include "product/product_info.h"
#include "utils/participant_qos.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr DDS_Long MAX_REQUESTS = 32;   // held by the reader
constexpr DDS_Long MAX_RESPONSES = 256; // sent but not yet acknowledged
// How long one write may block on shells that do not acknowledge. Short, as it cannot be interrupted.
constexpr DDS_Duration_t WRITE_BLOCKING_TIME{0, 100'000'000};
// A shell that holds 32 responses turns the rest of a burst away, and gets it again with the next heartbeat.
constexpr DDS_Duration_t HEARTBEAT_PERIOD{0, 20'000'000};

bool failed(std::string& error, const char* step) {
    error = std::string("cannot create the ") + step;
    return false;
}

// Bytes that take the place of the next serialized response, on the thread that writes it.
thread_local std::span<const std::uint8_t> rawSample;

bool (*serializeResponse)(ZULEndpointData*, const void*, ZULCdrOutput*, bool, std::uint16_t, bool, void*);
std::size_t (*responseSize)(ZULEndpointData*, bool, std::uint16_t, std::size_t, const void*);

bool serializeRawOrResponse(ZULEndpointData* data, const void* sample, ZULCdrOutput* stream,
                            bool encapsulation, std::uint16_t encapsulationId, bool body, void* qos) {
    if (rawSample.empty()) {
        return serializeResponse(data, sample, stream, encapsulation, encapsulationId, body, qos);
    }
    return std::all_of(rawSample.begin(), rawSample.end(),
                       [stream](std::uint8_t byte) { return stream->put8(byte); });
}

std::size_t rawOrResponseSize(ZULEndpointData* data, bool encapsulation, std::uint16_t encapsulationId,
                              std::size_t alignment, const void* sample) {
    return rawSample.empty() ? responseSize(data, encapsulation, encapsulationId, alignment, sample)
                             : rawSample.size();
}

// The response plugin, able to write raw bytes as well.
ZULTypePlugin* newResponsePlugin() {
    ZULTypePlugin* plugin = ZUL_RoutingService_Administration_CommandResponsePlugin_new();
    if (plugin != nullptr) {
        serializeResponse = plugin->serialize;
        responseSize = plugin->getSerializedSampleSize;
        plugin->serialize = serializeRawOrResponse;
        plugin->getSerializedSampleSize = rawOrResponseSize;
    }
    return plugin;
}

bool createParticipant(PracticeEndpoints& self, std::int32_t domain, const std::string& routerName) {
    auto* factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipantQos qos;
    DDS_DomainParticipantQos_initialize(&qos);
    if (DDS_DomainParticipantFactory_get_default_participant_qos(factory, &qos) == DDS_RETCODE_OK &&
        ROUTERUtils_setParticipantName(&qos, routerName.c_str(), "", "") &&
        ROUTERUtils_setServiceVersion(&qos)) {
        qos.types.announce_descriptions = 1; // so that whoever looks at the domain can list the types
        self.participant = DDS_DomainParticipantFactory_create_participant(factory, domain, &qos, nullptr,
                                                                           DDS_STATUS_MASK_NONE);
    }
    DDS_DomainParticipantQos_finalize(&qos);
    return self.participant != nullptr;
}

DDS_Topic* createTopic(const PracticeEndpoints& self, ZULTypePlugin* plugin,
                       const DDS_TypeCode* federationType, const char* typeName, const char* topicName) {
    if (plugin == nullptr) {
        return nullptr;
    }
    // The federation variant keeps the routing module's codec and announces its own description of the type.
    if (ROUTER_getProductId() == ROUTER_PRODUCT_FEDERATION_SERVICE) {
        plugin->typeCode = federationType;
    }
    return DDS_DomainParticipant_register_type(self.participant, typeName, plugin) == DDS_RETCODE_OK
               ? DDS_DomainParticipant_create_topic(self.participant, topicName, typeName,
                                                    &DDS_TOPIC_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE)
               : nullptr;
}

bool createReader(PracticeEndpoints& self, DDS_Topic* topic, PracticeRequestQueue& queue) {
    DDS_Subscriber* subscriber = DDS_DomainParticipant_create_subscriber(
        self.participant, &DDS_SUBSCRIBER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataReaderQos qos = DDS_DATAREADER_QOS_DEFAULT;
    qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.resource_limits.max_samples = MAX_REQUESTS;
    qos.rtps_reliable_reader.max_heartbeat_response_delay = DDS_DURATION_ZERO;
    const DDS_DataReaderListener listener = PracticeRequestListener_make(queue);
    return subscriber != nullptr && DDS_Subscriber_create_datareader(subscriber, topic, &qos, &listener,
                                                                     DDS_DATA_AVAILABLE_STATUS) != nullptr;
}

bool createWriter(PracticeEndpoints& self, DDS_Topic* topic) {
    DDS_Publisher* publisher = DDS_DomainParticipant_create_publisher(
        self.participant, &DDS_PUBLISHER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataWriterQos qos = DDS_DATAWRITER_QOS_DEFAULT;
    qos.reliability = {DDS_RELIABLE_RELIABILITY_QOS, WRITE_BLOCKING_TIME};
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.resource_limits.max_samples = MAX_RESPONSES;
    qos.rtps_reliable_writer.heartbeat_period = HEARTBEAT_PERIOD;
    if (publisher != nullptr) {
        self.responseWriter =
            DDS_Publisher_create_datawriter(publisher, topic, &qos, nullptr, DDS_STATUS_MASK_NONE);
    }
    return self.responseWriter != nullptr;
}

} // namespace

bool PracticeEndpoints_create(PracticeEndpoints& self, std::int32_t domain, const std::string& routerName,
                              PracticeRequestQueue& queue, std::string& error) {
    const ROUTERProductInfo& product = *ROUTER_getProductInfo();
    if (!createParticipant(self, domain, routerName)) {
        return failed(error, "participant");
    }
    self.requestPlugin = ZUL_RoutingService_Administration_CommandRequestPlugin_new();
    DDS_Topic* requests = createTopic(
        self, self.requestPlugin, ZUL_FederationService_Administration_CommandRequest_get_typecode(),
        product.administrationRequestTypeName, product.administrationRequestTopicName);
    self.responsePlugin = newResponsePlugin();
    DDS_Topic* responses = createTopic(
        self, self.responsePlugin, ZUL_FederationService_Administration_CommandResponse_get_typecode(),
        product.administrationResponseTypeName, product.administrationResponseTopicName);
    if (requests == nullptr || responses == nullptr) {
        return failed(error, "topics");
    }
    if (!createWriter(self, responses)) {
        return failed(error, "writer of responses");
    }
    if (!createReader(self, requests, queue)) {
        return failed(error, "reader of requests");
    }
    self.response = ZUL_RoutingService_Administration_CommandResponseTypeSupport_create_data();
    return self.response != nullptr || failed(error, "response sample");
}

bool PracticeEndpoints_enable(PracticeEndpoints& self, std::string& error) {
    if (DDS_Entity_enable(DDS_DomainParticipant_as_entity(self.participant)) != DDS_RETCODE_OK) {
        error = "cannot enable the participant";
        return false;
    }
    return true;
}

void PracticeEndpoints_close(PracticeEndpoints& self) {
    if (self.participant != nullptr) {
        DDS_DomainParticipant_delete_contained_entities(self.participant);
        DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                        self.participant);
    }
    if (self.response != nullptr) {
        ZUL_RoutingService_Administration_CommandResponseTypeSupport_delete_data(self.response);
    }
    ZUL_RoutingService_Administration_CommandRequestPlugin_delete(self.requestPlugin);
    ZUL_RoutingService_Administration_CommandResponsePlugin_delete(self.responsePlugin);
    self = {};
}

bool PracticeEndpoints_knowsReader(const PracticeEndpoints& self, const PracticeWriterGuid& writer) {
    DDS_InstanceHandleSeq handles{};
    bool known = false;
    if (DDS_DataWriter_get_matched_subscriptions(self.responseWriter, &handles) == DDS_RETCODE_OK) {
        for (DDS_Long i = 0; i < handles.length && !known; ++i) {
            known = std::memcmp(ZULSequence::at(handles, i).value, writer.data(), PRACTICE_GUID_PREFIX) == 0;
        }
    }
    ZULSequence::finalize(&handles, __func__);
    return known;
}

DDS_ReturnCode_t PracticeEndpoints_writeResponse(PracticeEndpoints& self) {
    auto* writer = ZUL_RoutingService_Administration_CommandResponseDataWriter_narrow(self.responseWriter);
    return ZUL_RoutingService_Administration_CommandResponseDataWriter_write(writer, self.response,
                                                                             &DDS_HANDLE_NIL);
}

DDS_ReturnCode_t PracticeEndpoints_writeRaw(PracticeEndpoints& self, std::span<const std::uint8_t> bytes) {
    rawSample = bytes;
    const DDS_ReturnCode_t written = PracticeEndpoints_writeResponse(self);
    rawSample = {};
    return written;
}
