#include "benchmarks/raw_dds.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>
#include <fastdds/dds/topic/TopicDataType.hpp>
#include <fastdds/dds/topic/TypeSupport.hpp>
#include <fastdds/rtps/transport/UDPTransportDescriptor.h>

namespace fast = eprosima::fastdds::dds;
namespace rtps = eprosima::fastrtps::rtps;
using eprosima::fastrtps::types::ReturnCode_t;

namespace raw {

const TopicPair ADMINISTRATION{.request = "zul/routing_service/administration/command_request",
                               .requestType = "ZUL::RoutingService::Administration::CommandRequest",
                               .response = "zul/routing_service/administration/command_response",
                               .responseType = "ZUL::RoutingService::Administration::CommandResponse"};
const TopicPair BASELINE{.request = "benchmark/request",
                         .requestType = "benchmark::Request",
                         .response = "benchmark/response",
                         .responseType = "benchmark::Response"};

namespace {

constexpr int MAX_SAMPLES = 32;
constexpr int ALLOCATED_SAMPLES = 4;
constexpr std::uint32_t HEARTBEAT_NANOSECONDS = 100'000'000;

template <class Pointer>
Pointer require(Pointer created, const char* what) {
    if (created == nullptr) {
        fail(what);
    }
    return created;
}

class OpaqueType final : public fast::TopicDataType {
public:
    explicit OpaqueType(const char* name) {
        setName(name);
        m_typeSize = PAYLOAD_MAX;
        m_isGetKeyDefined = false;
        auto_fill_type_information(false);
        auto_fill_type_object(false);
    }
    bool serialize(void* data, rtps::SerializedPayload_t* payload) override {
        const auto& bytes = *static_cast<const Bytes*>(data);
        if (bytes.size() > payload->max_size) {
            return false;
        }
        std::memcpy(payload->data, bytes.data(), bytes.size());
        payload->length = static_cast<std::uint32_t>(bytes.size());
        payload->encapsulation = payload->data[1];
        return true;
    }
    bool deserialize(rtps::SerializedPayload_t* payload, void* data) override {
        static_cast<Bytes*>(data)->assign(payload->data, payload->data + payload->length);
        return true;
    }
    std::function<std::uint32_t()> getSerializedSizeProvider(void* data) override {
        return [data] {
            return static_cast<std::uint32_t>(static_cast<const Bytes*>(data)->size());
        };
    }
    void* createData() override { return new Bytes; }
    void deleteData(void* data) override { delete static_cast<Bytes*>(data); }
    bool getKey(void* /*data*/, rtps::InstanceHandle_t* /*handle*/, bool /*forceMd5*/) override {
        return false;
    }
};

template <class Qos>
void setCommonQos(Qos& qos) {
    qos.durability().kind = fast::VOLATILE_DURABILITY_QOS;
    qos.reliability().kind = fast::RELIABLE_RELIABILITY_QOS;
    qos.history().kind = fast::KEEP_ALL_HISTORY_QOS;
    qos.resource_limits().max_samples = MAX_SAMPLES;
    qos.resource_limits().max_instances = 1;
    qos.resource_limits().max_samples_per_instance = MAX_SAMPLES;
    qos.resource_limits().allocated_samples = ALLOCATED_SAMPLES;
    qos.endpoint().history_memory_policy = rtps::PREALLOCATED_WITH_REALLOC_MEMORY_MODE;
    qos.data_sharing().off();
}

} // namespace

void fail(const char* what) {
    std::fprintf(stderr, "benchmark: cannot go on: %s\n", what);
    std::exit(1);
}

Participant::Participant(int domainId, std::uint32_t receiveBuffer) {
    auto* factory = fast::DomainParticipantFactory::get_instance();
    factory->load_profiles();
    fast::DomainParticipantQos qos = factory->get_default_participant_qos();
    qos.transport().listen_socket_buffer_size = receiveBuffer;
    for (const auto& transport : qos.transport().user_transports) {
        const auto udp =
            std::dynamic_pointer_cast<eprosima::fastdds::rtps::UDPTransportDescriptor>(transport);
        if (udp != nullptr && receiveBuffer != 0) {
            udp->receiveBufferSize = receiveBuffer;
        }
    }
    participant_ = require(factory->create_participant(static_cast<fast::DomainId_t>(domainId), qos),
                           "create participant");
    participant_->enable(); // beside the product's client the factory makes disabled ones
}

Participant::~Participant() {
    participant_->delete_contained_entities();
    fast::DomainParticipantFactory::get_instance()->delete_participant(participant_);
}

fast::Topic* Participant::createTopic(const char* name, const char* type) {
    participant_->register_type(fast::TypeSupport(new OpaqueType(type)));
    return require(participant_->create_topic(name, type, fast::TOPIC_QOS_DEFAULT), "create topic");
}

fast::DataWriter* Participant::createWriter(const char* topic, const char* type,
                                            const eprosima::fastrtps::Duration_t& blocking) {
    if (publisher_ == nullptr) {
        publisher_ = require(participant_->create_publisher(fast::PUBLISHER_QOS_DEFAULT), "create publisher");
    }
    fast::DataWriterQos qos;
    setCommonQos(qos);
    qos.reliability().max_blocking_time = blocking;
    qos.reliable_writer_qos().times.heartbeatPeriod = {0, HEARTBEAT_NANOSECONDS};
    return require(publisher_->create_datawriter(createTopic(topic, type), qos), "create writer");
}

fast::DataReader* Participant::createReader(const char* topic, const char* type,
                                            fast::DataReaderListener* listener) {
    if (subscriber_ == nullptr) {
        subscriber_ =
            require(participant_->create_subscriber(fast::SUBSCRIBER_QOS_DEFAULT), "create subscriber");
    }
    fast::DataReaderQos qos;
    setCommonQos(qos);
    qos.reliable_reader_qos().times.heartbeatResponseDelay = {0, 0};
    return require(subscriber_->create_datareader(createTopic(topic, type), qos, listener,
                                                  fast::StatusMask::data_available()),
                   "create reader");
}

bool write(fast::DataWriter* writer, const Bytes& bytes) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(WRITE_SECONDS);
    ReturnCode_t code;
    do {
        code = writer->write(const_cast<Bytes*>(&bytes), fast::HANDLE_NIL); // the library only reads them
    } while (code == ReturnCode_t::RETCODE_TIMEOUT && std::chrono::steady_clock::now() < deadline);
    return code == ReturnCode_t::RETCODE_OK;
}

void Listener::on_data_available(fast::DataReader* reader) {
    fast::SampleInfo info;
    while (reader->take_next_sample(&bytes_, &info) == ReturnCode_t::RETCODE_OK) {
        if (info.valid_data) {
            handler_(bytes_);
        }
    }
}

} // namespace raw
