// Turns the library's discovery records into builtin topic data. Nothing may be thrown into its threads.
#include "middleware/fastdds/discovery.h"

#include "middleware/fastdds/library_call.h"

#include <algorithm>
#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/rtps/participant/ParticipantDiscoveryInfo.h>
#include <fastdds/rtps/reader/ReaderDiscoveryInfo.h>
#include <fastdds/rtps/writer/WriterDiscoveryInfo.h>
#include <fastrtps/utils/IPLocator.h>
#include <iterator>
#include <string>
#include <type_traits>

namespace zul {

namespace fast = eprosima::fastdds::dds;
namespace rtps = eprosima::fastrtps::rtps;

namespace {

DDS_BuiltinTopicKey_t toKey(const rtps::GUID_t& guid) {
    DDS_BuiltinTopicKey_t key{};
    std::copy_n(static_cast<const rtps::octet*>(guid.guidPrefix.value), DDS_GUID_PREFIX_LENGTH, key.value);
    std::copy_n(static_cast<const rtps::octet*>(guid.entityId.value), rtps::EntityId_t::size,
                key.value + DDS_GUID_PREFIX_LENGTH);
    return key;
}

DDS_Duration_t toDuration(const eprosima::fastrtps::Duration_t& duration) {
    return duration == eprosima::fastrtps::c_TimeInfinite
               ? DDS_DURATION_INFINITE
               : DDS_Duration_t{duration.seconds, duration.nanosec};
}

// The library does not check this octet of the network.
DDS_LivelinessQosPolicyKind toKind(fast::LivelinessQosPolicyKind kind) {
    return kind == fast::AUTOMATIC_LIVELINESS_QOS               ? DDS_AUTOMATIC_LIVELINESS_QOS
           : kind == fast::MANUAL_BY_PARTICIPANT_LIVELINESS_QOS ? DDS_MANUAL_BY_PARTICIPANT_LIVELINESS_QOS
                                                                : DDS_MANUAL_BY_TOPIC_LIVELINESS_QOS;
}

// The first address as text, which the caller keeps until the listener's callback ends; empty for none.
std::string addressOf(const rtps::ParticipantProxyData& data) {
    for (const auto* locators : {&data.default_locators, &data.metatraffic_locators}) {
        for (const rtps::Locator_t& locator : locators->unicast) {
            if (locator.kind == LOCATOR_KIND_UDPv4 || locator.kind == LOCATOR_KIND_UDPv6 ||
                locator.kind == LOCATOR_KIND_TCPv4 || locator.kind == LOCATOR_KIND_TCPv6) {
                return rtps::IPLocator::ip_to_string(locator);
            }
        }
    }
    return {};
}

// A reader accepts every representation that it lists, a writer uses the first; no list means XCDR version 1.
bool hasXcdr1(const fast::DataRepresentationQosPolicy& policy, bool isReader) {
    const auto& listed = policy.m_value;
    const auto end =
        isReader ? listed.end() : listed.begin() + std::min<std::ptrdiff_t>(1, std::ssize(listed));
    return listed.empty() || std::find(listed.begin(), end, fast::XCDR_DATA_REPRESENTATION) != end;
}

// Both kinds of endpoint have the same members.
template <class Data>
Data toData(const auto& endpoint) {
    Data data{};
    rtps::GUID_t participant = endpoint.guid();
    participant.entityId = rtps::c_EntityId_RTPSParticipant;
    data.key = toKey(endpoint.guid());
    data.participant_key = toKey(participant);
    data.topic_name = endpoint.topicName().c_str();
    data.type_name = endpoint.typeName().c_str();
    const auto& qos = endpoint.m_qos;
    data.durability.kind = qos.m_durability.kind == fast::VOLATILE_DURABILITY_QOS
                               ? DDS_VOLATILE_DURABILITY_QOS
                               : DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
    data.reliability.kind = qos.m_reliability.kind == fast::RELIABLE_RELIABILITY_QOS
                                ? DDS_RELIABLE_RELIABILITY_QOS
                                : DDS_BEST_EFFORT_RELIABILITY_QOS;
    data.deadline.period = toDuration(qos.m_deadline.period);
    data.liveliness = {toKind(qos.m_liveliness.kind), toDuration(qos.m_liveliness.lease_duration)};
    data.ownership.kind = qos.m_ownership.kind == fast::EXCLUSIVE_OWNERSHIP_QOS ? DDS_EXCLUSIVE_OWNERSHIP_QOS
                                                                                : DDS_SHARED_OWNERSHIP_QOS;
    const std::vector<std::string> partitions = qos.m_partition.names();
    const bool isInDefault = partitions.empty() || std::ranges::count(partitions, "") > 0;
    data.has_partition = isInDefault ? 0 : 1;
    data.has_xcdr1 = hasXcdr1(qos.representation, std::is_same_v<Data, DDS_SubscriptionBuiltinTopicData>);
    return data;
}

// Runs `call` if what was found is another participant or one of its endpoints. The library also reports a
// participant's own.
template <class Call>
void forward(const char* context, const fast::DomainParticipant& self, const rtps::GUID_t& found, Call call) {
    inCallback(context, [&] {
        if (found.guidPrefix != self.guid().guidPrefix) {
            call();
        }
    });
}

template <class Data>
using EndpointCallback = void (*)(void* listenerData, const Data* data, DDS_UnsignedLong instanceState);
template <class Data>
void forwardEndpoint(const char* context, const fast::DomainParticipant& self, const auto& endpoint,
                     bool isRemoved, EndpointCallback<Data> callback, void* listenerData) {
    if (callback != nullptr) {
        forward(context, self, endpoint.guid(), [&] {
            const auto data = toData<Data>(endpoint);
            callback(listenerData, &data,
                     isRemoved ? DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE : DDS_ALIVE_INSTANCE_STATE);
        });
    }
}

} // namespace

void DiscoveryBridge::on_participant_discovery(fast::DomainParticipant* participant,
                                               rtps::ParticipantDiscoveryInfo&& info) {
    if (listener_.on_participant == nullptr) {
        return;
    }
    forward(__func__, *participant, info.info.m_guid, [&] {
        const std::string address = addressOf(info.info);
        DDS_ParticipantBuiltinTopicData data{};
        data.key = toKey(info.info.m_guid);
        data.participant_name.name = info.info.m_participantName.c_str();
        std::copy_n(info.info.m_VendorId.begin(), sizeof(data.rtps_vendor_id), data.rtps_vendor_id);
        data.lease_duration = toDuration(info.info.m_leaseDuration);
        data.default_unicast_address = address.c_str();
#if HAVE_SECURITY
        data.has_identity_token = info.info.identity_token_.class_id().empty() ? 0 : 1;
#endif
        const DDS_UnsignedLong state = info.status == rtps::ParticipantDiscoveryInfo::REMOVED_PARTICIPANT
                                           ? DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE
                                       : info.status == rtps::ParticipantDiscoveryInfo::DROPPED_PARTICIPANT
                                           ? DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE
                                           : DDS_ALIVE_INSTANCE_STATE;
        listener_.on_participant(listener_.listener_data, &data, state);
    });
}

void DiscoveryBridge::on_subscriber_discovery(fast::DomainParticipant* participant,
                                              rtps::ReaderDiscoveryInfo&& info) {
    forwardEndpoint(__func__, *participant, info.info,
                    info.status == rtps::ReaderDiscoveryInfo::REMOVED_READER, listener_.on_subscription,
                    listener_.listener_data);
}

void DiscoveryBridge::on_publisher_discovery(fast::DomainParticipant* participant,
                                             rtps::WriterDiscoveryInfo&& info) {
    forwardEndpoint(__func__, *participant, info.info,
                    info.status == rtps::WriterDiscoveryInfo::REMOVED_WRITER, listener_.on_publication,
                    listener_.listener_data);
}

} // namespace zul
