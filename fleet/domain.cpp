// Everything is created disabled, so that the request id is set and the listeners are ready before anything
// arrives at them.
#include "fleet/domain.h"

#include "admin_types/type_support.h"
#include "middleware/base/log.h"
#include "utils/participant_qos.h"

#include <algorithm>

namespace zul::fleet {

namespace {

using Request = ZUL_RoutingService_Administration_CommandRequest;

constexpr const char* PARTICIPANT_NAME = "zulctl"; // after the product
// How long one write may block; in between, an interrupt is seen.
constexpr DDS_Duration_t WRITE_BLOCKING_TIME{0, 100'000'000};
// A router that is stopped acknowledges nothing, and must not hold up requests to the others.
constexpr DDS_Long MAX_UNACKNOWLEDGED = 1024;
// A fleet answers all at once.
constexpr DDS_Long MAX_RECEIVED = 256;
// Bytes of responses that nobody has looked at: room for two of the longest answers.
constexpr std::size_t MAX_WAITING = 2 * MAX_ANSWER;

struct DeleteRequest {
    void operator()(Request* request) const {
        ZUL_RoutingService_Administration_CommandRequestTypeSupport_delete_data_ex(request, true);
    }
};
struct DeleteRequestPlugin {
    void operator()(ZULTypePlugin* plugin) const {
        ZUL_RoutingService_Administration_CommandRequestPlugin_delete(plugin);
    }
};
struct DeleteResponsePlugin {
    void operator()(ZULTypePlugin* plugin) const {
        ZUL_RoutingService_Administration_CommandResponsePlugin_delete(plugin);
    }
};

DDS_DataWriterQos requestWriterQos() {
    DDS_DataWriterQos qos = DDS_DATAWRITER_QOS_DEFAULT;
    qos.reliability = {DDS_RELIABLE_RELIABILITY_QOS, WRITE_BLOCKING_TIME};
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.resource_limits.max_samples = MAX_UNACKNOWLEDGED;
    return qos;
}

DDS_DataReaderQos responseReaderQos() {
    DDS_DataReaderQos qos = DDS_DATAREADER_QOS_DEFAULT;
    qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.resource_limits.max_samples = MAX_RECEIVED;
    qos.rtps_reliable_reader.max_heartbeat_response_delay = DDS_DURATION_ZERO;
    return qos;
}

DDS_Topic* createTopic(DDS_DomainParticipant* participant, ZULTypePlugin* plugin, const char* typeName,
                       const char* topicName) {
    return plugin != nullptr && plugin->typeCode != nullptr &&
                   DDS_DomainParticipant_register_type(participant, typeName, plugin) == DDS_RETCODE_OK
               ? DDS_DomainParticipant_create_topic(participant, topicName, typeName, &DDS_TOPIC_QOS_DEFAULT,
                                                    nullptr, DDS_STATUS_MASK_NONE)
               : nullptr;
}

template <class Get>
void collect(std::set<Guid>& guids, Get get) {
    DDS_InstanceHandleSeq handles{};
    if (get(&handles) == DDS_RETCODE_OK) {
        for (DDS_Long i = 0; i < handles.length; ++i) {
            guids.insert(guidOf(ZULSequence::at(handles, i).value));
        }
    }
    ZULSequence::finalize(&handles, __func__);
}

} // namespace

// The endpoints of one product.
struct Domain::Link {
    Product product{};
    std::unique_ptr<ZULTypePlugin, DeleteRequestPlugin> requestPlugin{};
    std::unique_ptr<ZULTypePlugin, DeleteResponsePlugin> responsePlugin{};
    std::unique_ptr<Request, DeleteRequest> request{}; // the one sample, reused
    DDS_DataWriter* writer = nullptr;
    DDS_DataReader* reader = nullptr;
};

Domain::Domain(std::int32_t id, Wakeup& wakeup)
    : id_(id), wakeup_(wakeup), discovery_(wakeup), responses_(MAX_WAITING) {}

Domain::~Domain() {
    responses_.close(); // or a listener that waits for room would block the reader's end
    if (participant_ != nullptr) {
        DDS_DomainParticipant_delete_contained_entities(participant_);
        DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                        participant_);
    }
}

bool Domain::createParticipant(std::string& error) {
    auto* factory = DDS_DomainParticipantFactory_get_instance();
    const DDS_DomainParticipantListener listener = discovery_.listener();
    DDS_DomainParticipantQos qos;
    DDS_DomainParticipantQos_initialize(&qos);
    if (DDS_DomainParticipantFactory_get_default_participant_qos(factory, &qos) == DDS_RETCODE_OK &&
        ROUTERUtils_setParticipantName(&qos, PARTICIPANT_NAME, "", "") &&
        ROUTERUtils_setServiceVersion(&qos)) {
        qos.database.shutdown_cleanup_period = DDS_DURATION_ZERO;
        participant_ = DDS_DomainParticipantFactory_create_participant(factory, id_, &qos, &listener,
                                                                       DDS_STATUS_MASK_NONE);
    }
    if (participant_ != nullptr && DDS_DomainParticipant_get_qos(participant_, &qos) == DDS_RETCODE_OK) {
        host_ = static_cast<std::int32_t>(qos.wire_protocol.rtps_host_id);
        application_ = static_cast<std::int32_t>(qos.wire_protocol.rtps_app_id);
    } else {
        error = "cannot create the participant";
    }
    DDS_DomainParticipantQos_finalize(&qos);
    return error.empty();
}

Domain::Link* Domain::open(Product product, std::string& error) {
    auto link = std::make_unique<Link>();
    link->product = product;
    link->requestPlugin.reset(ZUL_RoutingService_Administration_CommandRequestPlugin_new());
    link->responsePlugin.reset(ZUL_RoutingService_Administration_CommandResponsePlugin_new());
    link->request.reset(ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data_ex(true));
    // The federation variant keeps the routing module's codec and announces its own description of the type.
    if (product == Product::FEDERATION && link->requestPlugin != nullptr && link->responsePlugin != nullptr) {
        link->requestPlugin->typeCode = ZUL_FederationService_Administration_CommandRequest_get_typecode();
        link->responsePlugin->typeCode = ZUL_FederationService_Administration_CommandResponse_get_typecode();
    }
    const ROUTERProductInfo& info = infoOf(product);
    DDS_Topic* requests =
        createTopic(participant_, link->requestPlugin.get(), info.administrationRequestTypeName,
                    info.administrationRequestTopicName);
    DDS_Topic* responses =
        createTopic(participant_, link->responsePlugin.get(), info.administrationResponseTypeName,
                    info.administrationResponseTopicName);
    DDS_Publisher* publisher = DDS_DomainParticipant_create_publisher(
        participant_, &DDS_PUBLISHER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    DDS_Subscriber* subscriber = DDS_DomainParticipant_create_subscriber(
        participant_, &DDS_SUBSCRIBER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    if (link->request == nullptr || requests == nullptr || responses == nullptr || publisher == nullptr ||
        subscriber == nullptr) {
        error = "cannot create the topics";
        return nullptr;
    }
    const DDS_DataWriterQos writerQos = requestWriterQos();
    const DDS_DataWriterListener writerListener{this, [](void* self, DDS_DataWriter*) {
                                                    static_cast<Domain*>(self)->wakeup_.notify();
                                                }};
    link->writer = DDS_Publisher_create_datawriter(publisher, requests, &writerQos, &writerListener,
                                                   DDS_PUBLICATION_MATCHED_STATUS);
    const DDS_DataReaderQos readerQos = responseReaderQos();
    DDS_DataReaderListener listener{};
    listener.listener_data = this;
    listener.on_data_available = onData;
    listener.on_subscription_matched = [](void* self, DDS_DataReader*) {
        static_cast<Domain*>(self)->wakeup_.notify();
    };
    link->reader =
        DDS_Subscriber_create_datareader(subscriber, responses, &readerQos, &listener,
                                         DDS_DATA_AVAILABLE_STATUS | DDS_SUBSCRIPTION_MATCHED_STATUS);
    if (link->writer == nullptr || link->reader == nullptr) {
        error = "cannot create the endpoints";
        return nullptr;
    }
    return links_.emplace_back(std::move(link)).get();
}

std::unique_ptr<Domain> Domain::join(std::int32_t id, std::span<const Product> products, Wakeup& wakeup,
                                     std::string& error) {
    error.clear();
    std::unique_ptr<Domain> domain(new Domain(id, wakeup));
    const bool isOpen =
        domain->createParticipant(error) && std::ranges::all_of(products, [&](Product product) {
            return domain->open(product, error) != nullptr;
        });
    if (isOpen &&
        DDS_Entity_enable(DDS_DomainParticipant_as_entity(domain->participant_)) == DDS_RETCODE_OK) {
        return domain;
    }
    error = (error.empty() ? "cannot enable the participant" : error) + (" in domain " + std::to_string(id));
    return nullptr;
}

std::set<Guid> Domain::matched() const {
    std::set<Guid> guids;
    for (const auto& link : links_) {
        collect(guids, [&](auto* handles) {
            return DDS_DataWriter_get_matched_subscriptions(link->writer, handles);
        });
        collect(guids, [&](auto* handles) {
            return DDS_DataReader_get_matched_publications(link->reader, handles);
        });
    }
    return guids;
}

Sent Domain::send(Product product, const Command& command, const std::string& router,
                  Clock::duration patience, std::int32_t& invocation, const OnPiece& onPiece) {
    Link& link =
        **std::ranges::find_if(links_, [product](const auto& each) { return each->product == product; });
    auto* writer = ZUL_RoutingService_Administration_CommandRequestDataWriter_narrow(link.writer);
    Request& request = *link.request;
    invocation = ++lastInvocation_;
    request.id = {.host = host_, .app = application_, .invocation = invocation};
    if (!fill(request, command, router)) {
        return Sent::FAILED;
    }
    const auto pieces = piecesOf(command.url);
    std::size_t sent = 0;
    const auto tell = [&] {
        if (onPiece && pieces.size() > 1) {
            onPiece(sent, command.url.size());
        }
    };
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        fillPiece(request, pieces[i], i + 1 == pieces.size());
        const auto deadline = Clock::now() + patience;
        for (;;) {
            if (wakeup_.isInterrupted()) {
                return Sent::INTERRUPTED;
            }
            const DDS_ReturnCode_t code = ZUL_RoutingService_Administration_CommandRequestDataWriter_write(
                writer, &request, &DDS_HANDLE_NIL);
            if (code == DDS_RETCODE_OK) {
                sent += pieces[i].size();
                tell();
                break;
            }
            tell();
            if (code != DDS_RETCODE_TIMEOUT || Clock::now() >= deadline) {
                return code == DDS_RETCODE_TIMEOUT ? Sent::NO_ROOM : Sent::FAILED;
            }
        }
    }
    return Sent::YES;
}

void Domain::onData(void* self, DDS_DataReader* reader) {
    auto& domain = *static_cast<Domain*>(self);
    auto* typed = ZUL_RoutingService_Administration_CommandResponseDataReader_narrow(reader);
    ZUL_RoutingService_Administration_CommandResponseSeq samples{};
    DDS_SampleInfoSeq infos{};
    const DDS_ReturnCode_t code = ZUL_RoutingService_Administration_CommandResponseDataReader_take(
        typed, &samples, &infos, DDS_LENGTH_UNLIMITED, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
        DDS_ANY_INSTANCE_STATE);
    if (code != DDS_RETCODE_OK) {
        if (code != DDS_RETCODE_NO_DATA) { // they stay where they are, and nothing tells of them again
            domain.responses_.noteLoss();
            domain.wakeup_.notify();
        }
        return;
    }
    const DDS_Long count = ZUL_RoutingService_Administration_CommandResponseSeq_get_length(&samples);
    try {
        for (DDS_Long i = 0; i < count; ++i) {
            const DDS_SampleInfo& info = ZULSequence::at(infos, i);
            if (info.valid_data != 0) {
                domain.receive(
                    *ZUL_RoutingService_Administration_CommandResponseSeq_get_reference(&samples, i),
                    guidOf(info.publication_handle.value));
            }
        }
    } catch (const std::exception& failure) { // memory
        domain.responses_.noteLoss();
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, "zul::fleet::Domain", ZUL_LOG_ANY_FAILURE_s, failure.what());
    }
    ZUL_RoutingService_Administration_CommandResponseDataReader_return_loan(typed, &samples, &infos);
    domain.wakeup_.notify();
}

// The answer to another client's greeting reaches everybody, and names a router whose participant does not.
void Domain::receive(const ZUL_RoutingService_Administration_CommandResponse& response, const Guid& writer) {
    if (response.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT && *response.message != '\0') {
        discovery_.noteName(prefixOf(writer), response.message, &Participant::announced);
    }
    if (response.id.host == host_ && response.id.app == application_) {
        responses_.push({.invocation = response.id.invocation,
                         .writer = prefixOf(writer),
                         .kind = response.kind,
                         .message = response.message,
                         .isFinal = response.is_final != 0,
                         .at = Clock::now()});
    }
}

} // namespace zul::fleet
