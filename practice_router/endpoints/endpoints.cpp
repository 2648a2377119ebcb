// Everything is created disabled, the reader last: a request finds the writer of its answer ready.
#include "practice_router/endpoints/endpoints.h"

#include "admin_types/plugins.h"
#include "practice_router/endpoints/request_listener.h"
#include "product/product_info.h"
#include "utils/participant_qos.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace zul::practice {

namespace {

constexpr DDS_Long MAX_REQUESTS = 32;   // held by the reader
constexpr DDS_Long MAX_RESPONSES = 256; // sent but not yet acknowledged
// How long one write may block on shells that do not acknowledge. Short, as it cannot be interrupted.
constexpr DDS_Duration_t WRITE_BLOCKING_TIME{0, 100'000'000};
// A shell that holds 32 responses turns the rest of a burst away, and gets it again with the next heartbeat.
constexpr DDS_Duration_t HEARTBEAT_PERIOD{0, 20'000'000};

constexpr const char* OTHER_TYPE = "Other"; // after the name of a type that is not to match

bool failed(std::string& error, const char* step) {
    error = std::string("cannot create the ") + step;
    return false;
}

static_assert(std::is_standard_layout_v<OutgoingSample>, "a record is its OutgoingSample");

// The operations of the response plugin that know what an OutgoingSample is.
bool serializeOutgoing(ZULEndpointData* data, const void* sample, ZULCdrOutput* stream, bool encapsulation,
                       std::uint16_t encapsulationId, bool body, void* qos) {
    const auto& outgoing = *static_cast<const OutgoingSample*>(sample);
    return outgoing.raw.empty()
               ? ZUL_RoutingService_Administration_CommandResponsePlugin_serialize(
                     data, &outgoing.response, stream, encapsulation, encapsulationId, body, qos)
               : std::ranges::all_of(outgoing.raw,
                                     [stream](std::uint8_t byte) { return stream->put8(byte); });
}

std::size_t outgoingSize(ZULEndpointData* data, bool encapsulation, std::uint16_t encapsulationId,
                         std::size_t alignment, const void* sample) {
    const auto& outgoing = *static_cast<const OutgoingSample*>(sample);
    return outgoing.raw.empty()
               ? ZUL_RoutingService_Administration_CommandResponsePlugin_get_serialized_sample_size(
                     data, encapsulation, encapsulationId, alignment, &outgoing.response)
               : outgoing.raw.size();
}

ZULTypePlugin* newResponsePlugin() {
    ZULTypePlugin* plugin = ZUL_RoutingService_Administration_CommandResponsePlugin_new();
    if (plugin != nullptr) {
        plugin->serialize = serializeOutgoing;
        plugin->getSerializedSampleSize = outgoingSize;
    }
    return plugin;
}

} // namespace

bool Endpoints::createParticipant(std::int32_t domain, const std::string& routerName) {
    auto* factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipantQos qos;
    DDS_DomainParticipantQos_initialize(&qos);
    if (DDS_DomainParticipantFactory_get_default_participant_qos(factory, &qos) == DDS_RETCODE_OK &&
        ROUTERUtils_setParticipantName(&qos, routerName.c_str(), "", "") &&
        ROUTERUtils_setServiceVersion(&qos)) {
        qos.types.announce_descriptions = 1; // so that whoever looks at the domain can list the types
        participant_ = DDS_DomainParticipantFactory_create_participant(factory, domain, &qos, nullptr,
                                                                       DDS_STATUS_MASK_NONE);
    }
    DDS_DomainParticipantQos_finalize(&qos);
    return participant_ != nullptr;
}

DDS_Topic* Endpoints::createTopic(ZULTypePlugin* plugin, const DDS_TypeCode* federationType,
                                  const char* typeName, const char* topicName) {
    if (plugin == nullptr || federationType == nullptr) {
        return nullptr;
    }
    // The federation variant keeps the routing module's codec and announces its own description of the type.
    if (ROUTER_getProductId() == ROUTER_PRODUCT_FEDERATION_SERVICE) {
        plugin->typeCode = federationType;
    }
    return DDS_DomainParticipant_register_type(participant_, typeName, plugin) == DDS_RETCODE_OK
               ? DDS_DomainParticipant_create_topic(participant_, topicName, typeName, &DDS_TOPIC_QOS_DEFAULT,
                                                    nullptr, DDS_STATUS_MASK_NONE)
               : nullptr;
}

bool Endpoints::createReader(DDS_Topic* topic, RequestQueue& queue,
                             DDS_ReliabilityQosPolicyKind reliability) {
    DDS_Subscriber* subscriber = DDS_DomainParticipant_create_subscriber(
        participant_, &DDS_SUBSCRIBER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataReaderQos qos = DDS_DATAREADER_QOS_DEFAULT;
    qos.reliability.kind = reliability;
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.resource_limits.max_samples = MAX_REQUESTS;
    qos.rtps_reliable_reader.max_heartbeat_response_delay = DDS_DURATION_ZERO;
    const DDS_DataReaderListener listener = requestListener(queue);
    return subscriber != nullptr && DDS_Subscriber_create_datareader(subscriber, topic, &qos, &listener,
                                                                     DDS_DATA_AVAILABLE_STATUS) != nullptr;
}

bool Endpoints::createWriter(DDS_Topic* topic, DDS_ReliabilityQosPolicyKind reliability) {
    DDS_Publisher* publisher = DDS_DomainParticipant_create_publisher(
        participant_, &DDS_PUBLISHER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataWriterQos qos = DDS_DATAWRITER_QOS_DEFAULT;
    qos.reliability = {reliability, WRITE_BLOCKING_TIME};
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.resource_limits.max_samples = MAX_RESPONSES;
    qos.rtps_reliable_writer.heartbeat_period = HEARTBEAT_PERIOD;
    if (publisher != nullptr) {
        responseWriter_ =
            DDS_Publisher_create_datawriter(publisher, topic, &qos, nullptr, DDS_STATUS_MASK_NONE);
    }
    return responseWriter_ != nullptr;
}

bool Endpoints::open(std::int32_t domain, const std::string& routerName, const Faults& faults,
                     RequestQueue& queue, std::string& error) {
    const ROUTERProductInfo& product = *ROUTER_getProductInfo();
    if (!createParticipant(domain, routerName)) {
        return failed(error, "participant");
    }
    const std::string suffix = faults.hasOtherTypes ? OTHER_TYPE : "";
    const std::string requestType = product.administrationRequestTypeName + suffix;
    const std::string responseType = product.administrationResponseTypeName + suffix;
    const auto reliability =
        faults.isBestEffort ? DDS_BEST_EFFORT_RELIABILITY_QOS : DDS_RELIABLE_RELIABILITY_QOS;
    requestPlugin_ = ZUL_RoutingService_Administration_CommandRequestPlugin_new();
    DDS_Topic* requests =
        createTopic(requestPlugin_, ZUL_FederationService_Administration_CommandRequest_get_typecode(),
                    requestType.c_str(), product.administrationRequestTopicName);
    responsePlugin_ = newResponsePlugin();
    DDS_Topic* responses =
        createTopic(responsePlugin_, ZUL_FederationService_Administration_CommandResponse_get_typecode(),
                    responseType.c_str(), product.administrationResponseTopicName);
    if (requests == nullptr || responses == nullptr) {
        return failed(error, "topics");
    }
    if (!faults.hasNoResponseWriter && !createWriter(responses, reliability)) {
        return failed(error, "writer of responses");
    }
    if (!createReader(requests, queue, reliability)) {
        return failed(error, "reader of requests");
    }
    if (!ZUL_RoutingService_Administration_CommandResponse_initialize(&outgoing_.response)) {
        return failed(error, "response sample");
    }
    if (DDS_Entity_enable(DDS_DomainParticipant_as_entity(participant_)) != DDS_RETCODE_OK) {
        error = "cannot enable the participant";
        return false;
    }
    return true;
}

Endpoints::~Endpoints() {
    if (participant_ != nullptr) {
        DDS_DomainParticipant_delete_contained_entities(participant_);
        DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                        participant_);
    }
    ZUL_RoutingService_Administration_CommandResponse_finalize(&outgoing_.response);
    ZUL_RoutingService_Administration_CommandRequestPlugin_delete(requestPlugin_);
    ZUL_RoutingService_Administration_CommandResponsePlugin_delete(responsePlugin_);
}

bool Endpoints::knowsReader(const WriterGuid& writer) const {
    DDS_InstanceHandleSeq handles{};
    bool known = false;
    if (DDS_DataWriter_get_matched_subscriptions(responseWriter_, &handles) == DDS_RETCODE_OK) {
        for (DDS_Long i = 0; i < handles.length && !known; ++i) {
            known = std::memcmp(ZULSequence::at(handles, i).value, writer.data(), GUID_PREFIX) == 0;
        }
    }
    ZULSequence::finalize(&handles, __func__);
    return known;
}

DDS_ReturnCode_t Endpoints::writeOutgoing() {
    auto* writer = ZUL_RoutingService_Administration_CommandResponseDataWriter_narrow(responseWriter_);
    return ZUL_RoutingService_Administration_CommandResponseDataWriter_write(writer, &outgoing_.response,
                                                                             &DDS_HANDLE_NIL);
}

DDS_ReturnCode_t Endpoints::write(const RequestId& id,
                                  ZUL_RoutingService_Administration_CommandResponseKind kind,
                                  std::string_view text, bool isFinal) {
    auto& response = outgoing_.response;
    response.id = {.host = id.host, .app = id.app, .invocation = id.invocation};
    response.kind = kind;
    response.is_final = isFinal ? 1 : 0;
    response.message[text.copy(response.message, admin::XML_CONTENT_BOUND)] = '\0';
    outgoing_.raw = {};
    return writeOutgoing();
}

DDS_ReturnCode_t Endpoints::writeRaw(std::span<const std::uint8_t> bytes) {
    outgoing_.raw = bytes;
    return writeOutgoing();
}

} // namespace zul::practice
