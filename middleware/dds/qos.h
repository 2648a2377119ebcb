// QoS policies that the system sets or reads, with the OMG DDS standard's defaults (OMG DDS 1.4, 2.2.3), and
// the protocol policies of the reliable endpoints. A QoS record that owns memory is put into its initial
// state by `_initialize` and released by `_finalize`, which tolerates a record that was never filled.
#pragma once

#include "middleware/base/basic_types.h"
#include "middleware/idl/sequence.h"

enum DDS_ReliabilityQosPolicyKind { DDS_BEST_EFFORT_RELIABILITY_QOS, DDS_RELIABLE_RELIABILITY_QOS };
struct DDS_ReliabilityQosPolicy {
    DDS_ReliabilityQosPolicyKind kind;
    DDS_Duration_t max_blocking_time;
};

enum DDS_DurabilityQosPolicyKind { DDS_VOLATILE_DURABILITY_QOS, DDS_TRANSIENT_LOCAL_DURABILITY_QOS };
struct DDS_DurabilityQosPolicy {
    DDS_DurabilityQosPolicyKind kind;
};

// The next three are never set, only read from others' endpoints.
struct DDS_DeadlineQosPolicy {
    DDS_Duration_t period;
};
enum DDS_LivelinessQosPolicyKind {
    DDS_AUTOMATIC_LIVELINESS_QOS,
    DDS_MANUAL_BY_PARTICIPANT_LIVELINESS_QOS,
    DDS_MANUAL_BY_TOPIC_LIVELINESS_QOS
};
struct DDS_LivelinessQosPolicy {
    DDS_LivelinessQosPolicyKind kind;
    DDS_Duration_t lease_duration;
};
enum DDS_OwnershipQosPolicyKind { DDS_SHARED_OWNERSHIP_QOS, DDS_EXCLUSIVE_OWNERSHIP_QOS };
struct DDS_OwnershipQosPolicy {
    DDS_OwnershipQosPolicyKind kind;
};

enum DDS_HistoryQosPolicyKind { DDS_KEEP_LAST_HISTORY_QOS, DDS_KEEP_ALL_HISTORY_QOS };
struct DDS_HistoryQosPolicy {
    DDS_HistoryQosPolicyKind kind;
    DDS_Long depth;
};

// Each at least 1 or DDS_LENGTH_UNLIMITED.
struct DDS_ResourceLimitsQosPolicy {
    // Of a reader, also what a writer in the same process may send between two takes: docs/architecture.md,
    // "The binding".
    DDS_Long max_samples;
    DDS_Long max_instances;
    DDS_Long max_samples_per_instance;
};

struct DDS_EntityFactoryQosPolicy {
    DDS_Boolean autoenable_created_entities;
};

struct DDS_PropertyQosPolicy_Property {
    char* name;            // owned
    char* value;           // owned
    DDS_Boolean propagate; // visible to other participants in discovery
};
template <>
struct ZULSequenceElement<DDS_PropertyQosPolicy_Property> {
    using Property = DDS_PropertyQosPolicy_Property;
    static bool initialize(Property& element, const DDS_TypeAllocationParams_t&) {
        element = {};
        return true;
    }
    static void finalize(Property& element, const DDS_TypeDeallocationParams_t&) {
        DDS_String_free(element.name);
        DDS_String_free(element.value);
        element = {};
    }
    static bool prepare(Property& destination, const Property* source) {
        using Text = ZULSequenceElement<char*>;
        return source == nullptr || (Text::prepare(destination.name, &source->name) &&
                                     Text::prepare(destination.value, &source->value));
    }
    static bool copy(Property& destination, const Property& source) {
        destination.propagate = source.propagate;
        return ZULSequenceElement<char*>::copy(destination.name, source.name) &&
               ZULSequenceElement<char*>::copy(destination.value, source.value);
    }
};
struct DDS_PropertyQosPolicy {
    DDS_Sequence<DDS_PropertyQosPolicy_Property> value;
};
constexpr DDS_Long DDS_PROPERTY_LIST_MAX = 32; // properties of one participant

// Adds the property or replaces the one of that name. OUT_OF_RESOURCES when the list is full or
// memory exhausted.
DDS_ReturnCode_t DDS_PropertyQosPolicyHelper_assert_property(DDS_PropertyQosPolicy* policy, const char* name,
                                                             const char* value, DDS_Boolean propagate);

// What names a participant in the requests it sends: no two participants that are alive, or have just gone,
// have the same pair.
struct DDS_WireProtocolQosPolicy {
    DDS_UnsignedLong rtps_host_id; // first word of the GUID prefix
    DDS_UnsignedLong rtps_app_id;  // made from the other two
};

struct DDS_DomainParticipantQos {
    DDS_EntityFactoryQosPolicy entity_factory;
    struct {
        char* name; // owned; null for none; at most 255 characters
    } participant_name;
    DDS_PropertyQosPolicy property;
    struct {
        DDS_Duration_t shutdown_cleanup_period; // how long deleting a participant may linger
    } database;
    // Whether the endpoints of this participant announce the members of their types. Off by default: a peer
    // that announces a description, too, is matched only if both are the same to the last flag, not by name.
    struct {
        DDS_Boolean announce_descriptions;
    } types;
    // Read back from a participant; not looked at when one is created.
    DDS_WireProtocolQosPolicy wire_protocol;
};
void DDS_DomainParticipantQos_initialize(DDS_DomainParticipantQos* self);
void DDS_DomainParticipantQos_finalize(DDS_DomainParticipantQos* self);
// False when memory is exhausted; the copy is then incomplete.
bool DDS_DomainParticipantQos_copy(DDS_DomainParticipantQos* self, const DDS_DomainParticipantQos* source);

struct DDS_DataWriterQos {
    DDS_DurabilityQosPolicy durability;
    DDS_ReliabilityQosPolicy reliability;
    DDS_HistoryQosPolicy history;
    DDS_ResourceLimitsQosPolicy resource_limits;
    struct {
        DDS_Long min_send_window_size; // samples sent but not yet acknowledged
        DDS_Long max_send_window_size;
        DDS_Duration_t heartbeat_period; // how soon a reader learns that it missed a sample
    } rtps_reliable_writer;
};
extern const DDS_DataWriterQos DDS_DATAWRITER_QOS_DEFAULT;

struct DDS_DataReaderQos {
    DDS_DurabilityQosPolicy durability;
    DDS_ReliabilityQosPolicy reliability;
    DDS_HistoryQosPolicy history;
    DDS_ResourceLimitsQosPolicy resource_limits;
    struct {
        DDS_Duration_t min_heartbeat_response_delay;
        DDS_Duration_t max_heartbeat_response_delay;
    } rtps_reliable_reader;
};
extern const DDS_DataReaderQos DDS_DATAREADER_QOS_DEFAULT;

// Endpoint QoS owns no memory; these exist so that all QoS records are handled alike.
inline void DDS_DataWriterQos_initialize(DDS_DataWriterQos* self) {
    *self = DDS_DATAWRITER_QOS_DEFAULT;
}
inline void DDS_DataWriterQos_finalize(DDS_DataWriterQos*) {}
inline void DDS_DataReaderQos_initialize(DDS_DataReaderQos* self) {
    *self = DDS_DATAREADER_QOS_DEFAULT;
}
inline void DDS_DataReaderQos_finalize(DDS_DataReaderQos*) {}

// The system sets nothing in these: their one value is the default.
struct DDS_PublisherQos {};
struct DDS_SubscriberQos {};
struct DDS_TopicQos {};
constexpr DDS_PublisherQos DDS_PUBLISHER_QOS_DEFAULT{};
constexpr DDS_SubscriberQos DDS_SUBSCRIBER_QOS_DEFAULT{};
constexpr DDS_TopicQos DDS_TOPIC_QOS_DEFAULT{};
