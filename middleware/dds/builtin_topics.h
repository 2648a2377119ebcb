// What discovery tells about other participants and their endpoints: the data of the standard's builtin
// topics (OMG DDS 1.4, 2.2.5), as far as this system looks at it, and the listener that is handed it.
//
// Texts belong to the caller of the listener and are valid during the call; none is null.
#pragma once

#include "middleware/base/basic_types.h"
#include "middleware/dds/qos.h"

// The GUID: twelve bytes of its participant's prefix, four of the entity (OMG DDS-RTPS 2.3, 9.3.1).
struct DDS_BuiltinTopicKey_t {
    std::uint8_t value[16];
};
constexpr std::size_t DDS_GUID_PREFIX_LENGTH = 12;

struct DDS_ParticipantBuiltinTopicData {
    DDS_BuiltinTopicKey_t key;
    // The rest are the usual extensions of the standard.
    struct {
        const char* name; // empty for none
    } participant_name;
    std::uint8_t rtps_vendor_id[2];
    DDS_Duration_t lease_duration;
    const char* default_unicast_address; // where its host is reached, as text; empty when not told
    DDS_Boolean has_identity_token;      // it is secured, and tells its endpoints to nobody it does not trust
};

struct DDS_EndpointBuiltinTopicData {
    DDS_BuiltinTopicKey_t key;
    DDS_BuiltinTopicKey_t participant_key;
    const char* topic_name;
    const char* type_name;
    DDS_DurabilityQosPolicy durability;
    DDS_ReliabilityQosPolicy reliability;
    DDS_DeadlineQosPolicy deadline;
    DDS_LivelinessQosPolicy liveliness;
    DDS_OwnershipQosPolicy ownership;
    DDS_Boolean has_partition; // it is in partitions, all of them with a name
    // A writer writes XCDR version 1; a reader accepts it (OMG XTypes 1.3, 7.6.3.1).
    DDS_Boolean has_xcdr1;
};
struct DDS_PublicationBuiltinTopicData : DDS_EndpointBuiltinTopicData {};  // a writer
struct DDS_SubscriptionBuiltinTopicData : DDS_EndpointBuiltinTopicData {}; // a reader

// What became of the participant or endpoint, in the words of an instance of its builtin topic: it is there
// (again with each change), it left, or its lease ran out. When a participant is gone, so are its endpoints;
// the listener may not be told of each.
constexpr DDS_UnsignedLong DDS_ALIVE_INSTANCE_STATE = 1U << 0;
constexpr DDS_UnsignedLong DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE = 1U << 1;
constexpr DDS_UnsignedLong DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE = 1U << 2;

// Listener of a participant: told of others, not of itself. Its callbacks replace on_data_available of the
// three builtin readers. They run on threads of the library, several at a time, and must not block: nothing
// is received meanwhile. None runs before the participant is created or after it is deleted. A null callback
// is skipped.
struct DDS_DomainParticipantListener {
    void* listener_data;
    void (*on_participant)(void* listenerData, const DDS_ParticipantBuiltinTopicData* data,
                           DDS_UnsignedLong instanceState);
    void (*on_publication)(void* listenerData, const DDS_PublicationBuiltinTopicData* data,
                           DDS_UnsignedLong instanceState);
    void (*on_subscription)(void* listenerData, const DDS_SubscriptionBuiltinTopicData* data,
                            DDS_UnsignedLong instanceState);
};
