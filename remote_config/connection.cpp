// Connecting and disconnecting: every DDS entity of the client, with its QoS.
#include "admin_types/type_support.h"
#include "product/product_info.h"
#include "remote_config/client.h"
#include "remote_config/hand_over.h"
#include "remote_config/log.h"
#include "remote_config/response_listener.h"
#include "utils/participant_qos.h"

namespace {

constexpr const char* CREATE = "ROUTERRemoteConfigClient_createConnection";
constexpr const char* CLOSE = "ROUTERRemoteConfigClient_closeConnection";

constexpr DDS_Long MAX_SAMPLES = 32; // held, and sent but not yet acknowledged
// How long a write may block on routers that do not acknowledge.
constexpr DDS_Duration_t WRITE_BLOCKING_TIME{60, 0}; // oddity 19
// Every status but one, an extension of the standard that the client does not handle.
constexpr DDS_StatusMask READER_STATUS_MASK = 0xBFFFFFFF;

// The QoS records of one connection attempt, released on every path.
struct QosHolders {
    DDS_DomainParticipantQos participant;
    DDS_DataWriterQos writer;
    DDS_DataReaderQos reader;

    QosHolders() {
        DDS_DomainParticipantQos_initialize(&participant);
        DDS_DataWriterQos_initialize(&writer);
        DDS_DataReaderQos_initialize(&reader);
    }
    ~QosHolders() {
        DDS_DomainParticipantQos_finalize(&participant);
        DDS_DataWriterQos_finalize(&writer);
        DDS_DataReaderQos_finalize(&reader);
    }
    QosHolders(const QosHolders&) = delete;
    QosHolders& operator=(const QosHolders&) = delete;
};

bool failed(const ZULLogTemplate& message, const char* what) {
    remoteConfigError(CREATE, message, what);
    return false;
}
bool failed(const char* what, DDS_ReturnCode_t code) {
    if (ROUTERLog_isEnabled(ZUL_LOG_LEVEL_ERROR, ROUTER_SUBMODULE_REMOTE_CONFIG)) {
        ZULLog_message(ZUL_LOG_LEVEL_ERROR, CREATE, ZUL_LOG_ANY_FAILURE_s, what);
        ZULLog_debug(" - Return code = %d\n", static_cast<int>(code));
    }
    return false;
}

bool createParticipant(ROUTERRemoteConfigClient& self, DDS_DomainParticipantQos& qos) {
    auto* factory = DDS_DomainParticipantFactory_get_instance();
    const DDS_ReturnCode_t code = DDS_DomainParticipantFactory_get_default_participant_qos(factory, &qos);
    if (code != DDS_RETCODE_OK) {
        return failed("get default participant qos", code);
    }
    if (!ROUTERUtils_setParticipantName(&qos, "Shell", "", "")) {
        return failed(ZUL_LOG_ANY_FAILURE_s, "set participant name");
    }
    if (!ROUTERUtils_setServiceVersion(&qos)) {
        failed(ZUL_LOG_ANY_FAILURE_s, "set service version"); // not fatal: routers work without it
    }
    qos.database.shutdown_cleanup_period = DDS_DURATION_ZERO;
    self.participant = DDS_DomainParticipantFactory_create_participant(factory, self.domainId, &qos, nullptr,
                                                                       DDS_STATUS_MASK_NONE);
    return self.participant != nullptr || failed(ZUL_LOG_CREATION_FAILURE_s, "participant");
}

bool setEndpointQos(ROUTERRemoteConfigClient& self, DDS_DataReaderQos& reader, DDS_DataWriterQos& writer) {
    DDS_ReturnCode_t code = DDS_DomainParticipant_get_default_datareader_qos(self.participant, &reader);
    if (code != DDS_RETCODE_OK) {
        return failed("get default dataReader qos", code);
    }
    reader.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    reader.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    reader.resource_limits.max_samples = MAX_SAMPLES;
    reader.rtps_reliable_reader.min_heartbeat_response_delay = DDS_DURATION_ZERO;
    reader.rtps_reliable_reader.max_heartbeat_response_delay = DDS_DURATION_ZERO;

    code = DDS_DomainParticipant_get_default_datawriter_qos(self.participant, &writer);
    if (code != DDS_RETCODE_OK) {
        return failed("get default dataWriter qos", code);
    }
    writer.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    writer.resource_limits.max_samples = MAX_SAMPLES;
    writer.rtps_reliable_writer.min_send_window_size = MAX_SAMPLES;
    writer.rtps_reliable_writer.max_send_window_size = MAX_SAMPLES;
    writer.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    writer.reliability.max_blocking_time = WRITE_BLOCKING_TIME;
    return true;
}

// What the two topics differ in.
struct TopicPlan {
    ZULTypePlugin*& plugin;
    ZULTypePlugin* (*newPlugin)();
    const DDS_TypeCode* (*federationTypeCode)();
    const char* typeName;
    const char* topicName;
    DDS_Topic*& topic;
    const char* pluginText;
    const char* topicText;
};

bool createTopic(DDS_DomainParticipant* participant, const TopicPlan& plan) {
    plan.plugin = plan.newPlugin();
    if (plan.plugin == nullptr) {
        return failed(ZUL_LOG_CREATION_FAILURE_s, plan.pluginText);
    }
    // oddity 18: the federation variant keeps the routing module's codec and announces its own description
    if (ROUTER_getProductId() == ROUTER_PRODUCT_FEDERATION_SERVICE) {
        plan.plugin->typeCode = plan.federationTypeCode();
        if (plan.plugin->typeCode == nullptr) {
            return failed(ZUL_LOG_CREATION_FAILURE_s, plan.pluginText);
        }
    }
    if (DDS_DomainParticipant_register_type(participant, plan.typeName, plan.plugin) != DDS_RETCODE_OK) {
        return failed(ZUL_LOG_ANY_FAILURE_s, "register type");
    }
    plan.topic = DDS_DomainParticipant_create_topic(participant, plan.topicName, plan.typeName,
                                                    &DDS_TOPIC_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    return plan.topic != nullptr || failed(ZUL_LOG_CREATION_FAILURE_s, plan.topicText);
}

bool createEndpoints(ROUTERRemoteConfigClient& self, const QosHolders& qos) {
    self.publisher = DDS_DomainParticipant_create_publisher(self.participant, &DDS_PUBLISHER_QOS_DEFAULT,
                                                            nullptr, DDS_STATUS_MASK_NONE);
    if (self.publisher == nullptr) {
        return failed(ZUL_LOG_CREATION_FAILURE_s, "publisher");
    }
    self.subscriber = DDS_DomainParticipant_create_subscriber(self.participant, &DDS_SUBSCRIBER_QOS_DEFAULT,
                                                              nullptr, DDS_STATUS_MASK_NONE);
    if (self.subscriber == nullptr) {
        return failed(ZUL_LOG_CREATION_FAILURE_s, "subscriber");
    }
    const ROUTERProductInfo& product = *ROUTER_getProductInfo();
    const TopicPlan plans[] = {
        {self.commandTypePlugin, ZUL_RoutingService_Administration_CommandRequestPlugin_new,
         ZUL_FederationService_Administration_CommandRequest_get_typecode,
         product.administrationRequestTypeName, product.administrationRequestTopicName, self.commandTopic,
         "request type plugin", "topic command"},
        {self.responseTypePlugin, ZUL_RoutingService_Administration_CommandResponsePlugin_new,
         ZUL_FederationService_Administration_CommandResponse_get_typecode,
         product.administrationResponseTypeName, product.administrationResponseTopicName, self.responseTopic,
         "response type plugin", "topic response"},
    };
    for (const TopicPlan& plan : plans) {
        if (!createTopic(self.participant, plan)) {
            return false;
        }
    }
    self.commandWriter = DDS_Publisher_create_datawriter(self.publisher, self.commandTopic, &qos.writer,
                                                         nullptr, DDS_STATUS_MASK_NONE);
    if (self.commandWriter == nullptr) {
        return failed(ZUL_LOG_CREATION_FAILURE_s, "writer");
    }
    const DDS_DataReaderListener listener = ROUTERRemoteConfigClient_responseListener(&self);
    self.responseReader = DDS_Subscriber_create_datareader(self.subscriber, self.responseTopic, &qos.reader,
                                                           &listener, READER_STATUS_MASK);
    return self.responseReader != nullptr || failed(ZUL_LOG_CREATION_FAILURE_s, "reader");
}

bool createRequest(ROUTERRemoteConfigClient& self, DDS_DomainParticipantQos& qos) {
    self.commandSample = ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data_ex(true);
    if (self.commandSample == nullptr) {
        return failed(ZUL_LOG_CREATION_FAILURE_s, "data sample");
    }
    if (DDS_DomainParticipant_get_qos(self.participant, &qos) != DDS_RETCODE_OK) {
        return failed(ZUL_LOG_GET_FAILURE_s, "participant qos");
    }
    self.commandSample->id = {.host = static_cast<DDS_Long>(qos.wire_protocol.rtps_host_id),
                              .app = static_cast<DDS_Long>(qos.wire_protocol.rtps_app_id),
                              .invocation = 0};
    return true;
}

} // namespace

bool ROUTERRemoteConfigClient_createConnection(ROUTERRemoteConfigClient* self) {
    QosHolders qos;
    const bool connected =
        createParticipant(*self, qos.participant) && setEndpointQos(*self, qos.reader, qos.writer) &&
        createEndpoints(*self, qos) && createRequest(*self, qos.participant) &&
        (DDS_Entity_enable(DDS_DomainParticipant_as_entity(self->participant)) == DDS_RETCODE_OK ||
         failed(ZUL_LOG_ANY_FAILURE_s, "enable participant"));
    if (!connected) {
        ROUTERRemoteConfigClient_closeConnection(self);
    }
    return connected;
}

bool ROUTERRemoteConfigClient_closeConnection(ROUTERRemoteConfigClient* self) {
    bool closed = true;
    const auto check = [&closed](bool succeeded, const char* what) {
        if (!succeeded) {
            remoteConfigError(CLOSE, ZUL_LOG_DESTRUCTION_FAILURE_s, what);
            closed = false;
        }
    };
    // Deleting the entities waits for the listener, which must not be waiting for a consumer by then.
    zul::remote_config::HandOver(*self).close();
    if (self->participant != nullptr) {
        check(DDS_DomainParticipant_delete_contained_entities(self->participant) == DDS_RETCODE_OK,
              "participant contained entities");
        check(DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                              self->participant) == DDS_RETCODE_OK,
              "participant");
        self->publisher = nullptr;
        self->commandTopic = nullptr;
        self->responseTopic = nullptr;
        self->commandWriter = nullptr;
        self->participant = nullptr;
        // oddity 9: not `subscriber` and `responseReader`
    }
    if (self->commandSample != nullptr) {
        check(ZUL_RoutingService_Administration_CommandRequestTypeSupport_delete_data_ex(
                  self->commandSample, true) == DDS_RETCODE_OK,
              "data sample");
        self->commandSample = nullptr;
    }
    ZUL_RoutingService_Administration_CommandRequestPlugin_delete(self->commandTypePlugin);
    self->commandTypePlugin = nullptr;
    ZUL_RoutingService_Administration_CommandResponsePlugin_delete(self->responseTypePlugin);
    self->responseTypePlugin = nullptr;
    return closed;
}
