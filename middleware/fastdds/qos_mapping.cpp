// Each QoS of this system to its counterpart. What the library lacks is noted where it would be set. What a
// profile file has set of a participant is kept unless this system sets it itself; the QoS of writers and
// readers comes from here alone.
#include "middleware/fastdds/qos_mapping.h"

#include <algorithm>
#include <fastdds/rtps/transport/UDPv4TransportDescriptor.h>
#include <fastdds/rtps/transport/UDPv6TransportDescriptor.h>
#include <memory>

namespace zul {

namespace fast = eprosima::fastdds::dds;
namespace rtps = eprosima::fastrtps::rtps;
namespace transport = eprosima::fastdds::rtps;

namespace {

constexpr std::uint32_t RECEIVE_BUFFER = 1U << 20; // bytes; the kernel grants what its limit allows
constexpr std::uint32_t INITIAL_ANNOUNCEMENTS = 10;
const eprosima::fastrtps::Duration_t INITIAL_ANNOUNCEMENT_PERIOD{0, 5'000'000};

eprosima::fastrtps::Duration_t toLibrary(const DDS_Duration_t& duration) {
    if (duration.sec == DDS_DURATION_INFINITE.sec) {
        return eprosima::fastrtps::c_TimeInfinite;
    }
    return {duration.sec, duration.nanosec};
}

// The part that both endpoint kinds share. All topics here are keyless, so a limit on samples is a limit on
// the samples of their one instance; the library's own instance limits would contradict it.
template <class EndpointQos, class LibraryQos>
void applyCommon(const EndpointQos& qos, LibraryQos& library) {
    library.durability().kind = qos.durability.kind == DDS_VOLATILE_DURABILITY_QOS
                                    ? fast::VOLATILE_DURABILITY_QOS
                                    : fast::TRANSIENT_LOCAL_DURABILITY_QOS;
    library.reliability().kind = qos.reliability.kind == DDS_RELIABLE_RELIABILITY_QOS
                                     ? fast::RELIABLE_RELIABILITY_QOS
                                     : fast::BEST_EFFORT_RELIABILITY_QOS;
    library.reliability().max_blocking_time = toLibrary(qos.reliability.max_blocking_time);
    library.history().kind = qos.history.kind == DDS_KEEP_ALL_HISTORY_QOS ? fast::KEEP_ALL_HISTORY_QOS
                                                                          : fast::KEEP_LAST_HISTORY_QOS;
    library.history().depth = qos.history.depth;
    auto& limits = library.resource_limits();
    limits.max_samples =
        std::max<DDS_Long>(qos.resource_limits.max_samples, 0); // 0 is the library's "unlimited"
    limits.max_instances = 1;
    limits.max_samples_per_instance = limits.max_samples;
    limits.allocated_samples = std::min<DDS_Long>(limits.max_samples, 4);
    library.endpoint().history_memory_policy = rtps::PREALLOCATED_WITH_REALLOC_MEMORY_MODE;
    library.data_sharing().off();
}

// Sockets with room for the burst in which dozens of peers answer a new participant's first announcement:
// what does not fit is lost, and repaired only a second later. A size in the operator's profile file stays.
template <class UdpDescriptor>
void widenReceiveBuffer(std::shared_ptr<transport::TransportDescriptorInterface>& descriptor) {
    const auto udp = std::dynamic_pointer_cast<UdpDescriptor>(descriptor);
    if (udp != nullptr && udp->receiveBufferSize == 0) {
        const auto own = std::make_shared<UdpDescriptor>(*udp); // the profile's is shared
        own->receiveBufferSize = RECEIVE_BUFFER;
        descriptor = own;
    }
}

} // namespace

void applyParticipantQos(const DDS_DomainParticipantQos& qos, fast::DomainParticipantQos& library) {
    // Shared memory leaves files behind after a crash and is no faster here: UDPv4 alone, unless the
    // operator's profile file names transports of its own.
    auto& transports = library.transport();
    if (transports.use_builtin_transports && transports.user_transports.empty()) {
        transports.use_builtin_transports = false;
        transports.user_transports.push_back(std::make_shared<transport::UDPv4TransportDescriptor>());
    }
    for (auto& descriptor : transports.user_transports) {
        widenReceiveBuffer<transport::UDPv4TransportDescriptor>(descriptor);
        widenReceiveBuffer<transport::UDPv6TransportDescriptor>(descriptor);
    }
    if (qos.participant_name.name != nullptr) {
        library.name(qos.participant_name.name);
    }
    const auto& properties = qos.property.value;
    for (DDS_Long i = 0; i < properties.length; ++i) {
        rtps::Property property(properties.contiguous[i].name, properties.contiguous[i].value);
        property.propagate(properties.contiguous[i].propagate != 0);
        library.properties().properties().push_back(std::move(property));
    }
    library.entity_factory().autoenable_created_entities = false; // DDS_Entity_enable starts them
    // Announcements in quick succession at first, because those before the gate opens are lost; unless the
    // operator's profile file says otherwise.
    auto& initial = library.wire_protocol().builtin.discovery_config.initial_announcements;
    const rtps::InitialAnnouncementConfig standard;
    if (initial == standard) {
        initial.count = INITIAL_ANNOUNCEMENTS;
        initial.period = INITIAL_ANNOUNCEMENT_PERIOD;
    }
    // `database.shutdown_cleanup_period` has no counterpart: the library never lingers on deletion.
}

fast::DataWriterQos toLibrary(const DDS_DataWriterQos& qos) {
    fast::DataWriterQos library;
    applyCommon(qos, library);
    library.reliable_writer_qos().times.heartbeatPeriod =
        toLibrary(qos.rtps_reliable_writer.heartbeat_period);
    // The library has no send window: with KEEP_ALL, `max_samples` bounds what is not yet acknowledged.
    return library;
}

fast::DataReaderQos toLibrary(const DDS_DataReaderQos& qos) {
    fast::DataReaderQos library;
    applyCommon(qos, library);
    // The library waits one fixed delay; the upper end of the wanted range is never exceeded.
    library.reliable_reader_qos().times.heartbeatResponseDelay =
        toLibrary(qos.rtps_reliable_reader.max_heartbeat_response_delay);
    return library;
}

DDS_InstanceHandle_t toHandle(const rtps::InstanceHandle_t& handle) {
    DDS_InstanceHandle_t result{};
    std::copy_n(static_cast<const rtps::octet*>(handle.value), sizeof(result.value), result.value);
    result.isValid = handle.isDefined() ? 1 : 0;
    return result;
}

DDS_SampleInfo toSampleInfo(const fast::SampleInfo& info) {
    return {.sample_state = static_cast<DDS_SampleStateMask>(info.sample_state),
            .view_state = static_cast<DDS_ViewStateMask>(info.view_state),
            .instance_state = static_cast<DDS_InstanceStateMask>(info.instance_state),
            .source_timestamp = {.sec = info.source_timestamp.seconds(),
                                 .nanosec = info.source_timestamp.nanosec()},
            .instance_handle = toHandle(info.instance_handle),
            .publication_handle = toHandle(info.publication_handle),
            .valid_data = static_cast<DDS_Boolean>(info.valid_data ? 1 : 0)};
}

} // namespace zul
