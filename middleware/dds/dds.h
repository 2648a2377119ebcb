// The DDS entities as far as this system calls them, under the standard's C names (OMG DDS 1.4, 2.2.2).
// Implemented by `fastdds/`; unit tests link `tests/fake_dds/`, which records and fails calls.
//
// A participant belongs to whoever created it; what it contains belongs to the participant, and is deleted by
// DDS_DomainParticipant_delete_contained_entities. A participant is seen by others once it is created; what
// it contains starts with DDS_Entity_enable, so that all of it exists before the first sample can arrive.
// Creation and deletion run on one thread; writing and reading may run on any.
#pragma once

#include "middleware/base/basic_types.h"
#include "middleware/dds/builtin_topics.h"
#include "middleware/dds/qos.h"
#include "middleware/idl/sequence.h"
#include "middleware/idl/type_plugin.h"

using DDS_DomainId_t = DDS_Long;
using DDS_StatusMask = DDS_UnsignedLong;
// Communication statuses (OMG DDS 1.4, 2.2.4.1).
constexpr DDS_StatusMask DDS_STATUS_MASK_NONE = 0;
constexpr DDS_StatusMask DDS_REQUESTED_DEADLINE_MISSED_STATUS = 1U << 2;
constexpr DDS_StatusMask DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS = 1U << 6;
constexpr DDS_StatusMask DDS_SAMPLE_LOST_STATUS = 1U << 7;
constexpr DDS_StatusMask DDS_SAMPLE_REJECTED_STATUS = 1U << 8;
constexpr DDS_StatusMask DDS_DATA_AVAILABLE_STATUS = 1U << 10;
constexpr DDS_StatusMask DDS_LIVELINESS_CHANGED_STATUS = 1U << 12;
constexpr DDS_StatusMask DDS_PUBLICATION_MATCHED_STATUS = 1U << 13;
constexpr DDS_StatusMask DDS_SUBSCRIPTION_MATCHED_STATUS = 1U << 14;

// Domain ids beyond this have no ports of their own (OMG DDS-RTPS 2.3, 9.6.1.1).
constexpr DDS_DomainId_t DDS_DOMAIN_ID_MAX = 232;

struct DDS_DomainParticipantFactory;
struct DDS_Entity;
struct DDS_DomainParticipant;
struct DDS_Publisher;
struct DDS_Subscriber;
struct DDS_Topic;
struct DDS_DataWriter;
struct DDS_DataReader;
struct DDS_ReadCondition;
struct DDS_PublisherListener; // never used: the system installs none of these
struct DDS_SubscriberListener;
struct DDS_TopicListener;

// Sample, view and instance states (OMG DDS 1.4, 2.2.2.5.1).
using DDS_SampleStateMask = DDS_UnsignedLong;
using DDS_ViewStateMask = DDS_UnsignedLong;
using DDS_InstanceStateMask = DDS_UnsignedLong;
constexpr DDS_SampleStateMask DDS_READ_SAMPLE_STATE = 1U << 0;
constexpr DDS_SampleStateMask DDS_NOT_READ_SAMPLE_STATE = 1U << 1;
constexpr DDS_SampleStateMask DDS_ANY_SAMPLE_STATE = 0xFFFF;
constexpr DDS_ViewStateMask DDS_ANY_VIEW_STATE = 0xFFFF;
constexpr DDS_InstanceStateMask DDS_ANY_INSTANCE_STATE = 0xFFFF;

struct DDS_SampleInfo {
    DDS_SampleStateMask sample_state;
    DDS_ViewStateMask view_state;
    DDS_InstanceStateMask instance_state;
    DDS_Time_t source_timestamp;
    DDS_InstanceHandle_t instance_handle;
    DDS_InstanceHandle_t publication_handle;
    DDS_Boolean valid_data; // false: the sample carries no data, only a change of state
};
using DDS_SampleInfoSeq = DDS_Sequence<DDS_SampleInfo>;
// What every sample's `instance_handle` holds: the one instance of a keyless topic, as its readers name it.
// It selects that instance, and nothing comes after it, so that reading instance by instance comes to an end.
constexpr DDS_InstanceHandle_t ZUL_HANDLE_KEYLESS_INSTANCE{
    {'k', 'e', 'y', 'l', 'e', 's', 's', ' ', 'i', 'n', 's', 't', 'a', 'n', 'c', 'e'}, 1};

// Reader listener. The callbacks run on a thread of the reader's own and may block: writing and discovery go
// on. A null callback is skipped.
struct DDS_DataReaderListener {
    void* listener_data;
    void (*on_requested_deadline_missed)(void* listenerData, DDS_DataReader* reader);
    void (*on_requested_incompatible_qos)(void* listenerData, DDS_DataReader* reader);
    void (*on_sample_rejected)(void* listenerData, DDS_DataReader* reader);
    void (*on_liveliness_changed)(void* listenerData, DDS_DataReader* reader);
    void (*on_data_available)(void* listenerData, DDS_DataReader* reader);
    void (*on_subscription_matched)(void* listenerData, DDS_DataReader* reader);
    void (*on_sample_lost)(void* listenerData, DDS_DataReader* reader);
};

// Writer listener. The callback runs on a thread of the library and must not block. A null one is skipped.
struct DDS_DataWriterListener {
    void* listener_data;
    void (*on_publication_matched)(void* listenerData, DDS_DataWriter* writer);
};

// ---- factory ----
DDS_DomainParticipantFactory* DDS_DomainParticipantFactory_get_instance();
// `qos` is an initialised record.
DDS_ReturnCode_t DDS_DomainParticipantFactory_get_default_participant_qos(DDS_DomainParticipantFactory* self,
                                                                          DDS_DomainParticipantQos* qos);
// Null on failure, also for a domain id outside 0..DDS_DOMAIN_ID_MAX, which is logged with that range. The
// listener, which may be null, is copied; `mask` concerns statuses that it has no callbacks for.
DDS_DomainParticipant* DDS_DomainParticipantFactory_create_participant(
    DDS_DomainParticipantFactory* self, DDS_DomainId_t domainId, const DDS_DomainParticipantQos* qos,
    const DDS_DomainParticipantListener* listener, DDS_StatusMask mask);
// The participant must be empty.
DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory* self,
                                                                 DDS_DomainParticipant* participant);

// ---- participant ----
DDS_Entity* DDS_DomainParticipant_as_entity(DDS_DomainParticipant* self);
// Starts what the participant contains; a second call is harmless.
DDS_ReturnCode_t DDS_Entity_enable(DDS_Entity* self);
DDS_ReturnCode_t DDS_DomainParticipant_get_default_datareader_qos(DDS_DomainParticipant* self,
                                                                  DDS_DataReaderQos* qos);
DDS_ReturnCode_t DDS_DomainParticipant_get_default_datawriter_qos(DDS_DomainParticipant* self,
                                                                  DDS_DataWriterQos* qos);
// `qos` is an initialised record; `wire_protocol` holds the values in force.
DDS_ReturnCode_t DDS_DomainParticipant_get_qos(DDS_DomainParticipant* self, DDS_DomainParticipantQos* qos);
// Copies what it needs of the plugin.
DDS_ReturnCode_t DDS_DomainParticipant_register_type(DDS_DomainParticipant* self, const char* typeName,
                                                     const ZULTypePlugin* plugin);
DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant* self, const char* typeName);
DDS_Publisher* DDS_DomainParticipant_create_publisher(DDS_DomainParticipant* self,
                                                      const DDS_PublisherQos* qos,
                                                      const DDS_PublisherListener* listener,
                                                      DDS_StatusMask mask);
DDS_Subscriber* DDS_DomainParticipant_create_subscriber(DDS_DomainParticipant* self,
                                                        const DDS_SubscriberQos* qos,
                                                        const DDS_SubscriberListener* listener,
                                                        DDS_StatusMask mask);
DDS_Topic* DDS_DomainParticipant_create_topic(DDS_DomainParticipant* self, const char* topicName,
                                              const char* typeName, const DDS_TopicQos* qos,
                                              const DDS_TopicListener* listener, DDS_StatusMask mask);
// Ends the listeners first: none runs any more when this returns.
DDS_ReturnCode_t DDS_DomainParticipant_delete_contained_entities(DDS_DomainParticipant* self);

// ---- endpoints ----
DDS_DataWriter* DDS_Publisher_create_datawriter(DDS_Publisher* self, DDS_Topic* topic,
                                                const DDS_DataWriterQos* qos,
                                                const DDS_DataWriterListener* listener, DDS_StatusMask mask);
DDS_DataReader* DDS_Subscriber_create_datareader(DDS_Subscriber* self, DDS_Topic* topic,
                                                 const DDS_DataReaderQos* qos,
                                                 const DDS_DataReaderListener* listener, DDS_StatusMask mask);
// `sample` is a record of the writer's type. Blocks at most the writer's max_blocking_time.
DDS_ReturnCode_t DDS_DataWriter_write(DDS_DataWriter* self, const void* sample,
                                      const DDS_InstanceHandle_t* handle);
// The same with a source timestamp, which must not be negative; DDS_TIME_INVALID means now.
struct DDS_WriteParams_t {
    DDS_InstanceHandle_t handle;
    DDS_Time_t source_timestamp;
};
constexpr DDS_WriteParams_t DDS_WRITEPARAMS_DEFAULT{DDS_HANDLE_NIL, DDS_TIME_INVALID};
DDS_ReturnCode_t DDS_DataWriter_write_w_params(DDS_DataWriter* self, const void* sample,
                                               const DDS_WriteParams_t* params);
DDS_ReturnCode_t DDS_DataWriter_get_matched_subscriptions(DDS_DataWriter* self,
                                                          DDS_InstanceHandleSeq* handles);
DDS_ReturnCode_t DDS_DataReader_get_matched_publications(DDS_DataReader* self,
                                                         DDS_InstanceHandleSeq* handles);
// Name of an endpoint's type plugin: the type of the records it carries, whatever name it is
// registered under. Null for null. Valid as long as the endpoint.
const char* DDS_DataWriter_get_plugin_type_name(const DDS_DataWriter* self);
const char* DDS_DataReader_get_plugin_type_name(const DDS_DataReader* self);

// Instances of a writer (OMG DDS 1.4, 2.2.2.4.2). A keyless topic has one instance, and every topic here is
// keyless. Handles are each entity's own, and a writer gives none away: registering and looking up give
// DDS_HANDLE_NIL, ending an instance that cannot have been registered gives PRECONDITION_NOT_MET, and no
// handle has a key value (BAD_PARAMETER), a reader's not either.
DDS_InstanceHandle_t DDS_DataWriter_register_instance_w_params(DDS_DataWriter* self, const void* sample,
                                                               const DDS_WriteParams_t* params);
DDS_ReturnCode_t DDS_DataWriter_unregister_instance_w_params(DDS_DataWriter* self, const void* sample,
                                                             const DDS_WriteParams_t* params);
DDS_ReturnCode_t DDS_DataWriter_dispose_w_params(DDS_DataWriter* self, const void* sample,
                                                 const DDS_WriteParams_t* params);
DDS_ReturnCode_t DDS_DataWriter_get_key_value(DDS_DataWriter* self, void* key,
                                              const DDS_InstanceHandle_t* handle);
DDS_InstanceHandle_t DDS_DataWriter_lookup_instance(DDS_DataWriter* self, const void* key);

// A condition that selects samples by their states. The reader owns it until it is deleted, at the latest
// with the reader. Null for a null reader.
DDS_ReadCondition* DDS_DataReader_create_readcondition(DDS_DataReader* self, DDS_SampleStateMask sampleStates,
                                                       DDS_ViewStateMask viewStates,
                                                       DDS_InstanceStateMask instanceStates);
// PRECONDITION_NOT_MET for a condition of another reader.
DDS_ReturnCode_t DDS_DataReader_delete_readcondition(DDS_DataReader* self, DDS_ReadCondition* condition);

// The untyped read-or-take that every typed read and take calls.
enum DDS_InstanceSelection { DDS_ANY_INSTANCE, DDS_THIS_INSTANCE, DDS_NEXT_INSTANCE };
struct DDS_ReadOrTakeParams {
    bool take;            // remove the samples from the reader
    DDS_Long max_samples; // at least 1, at most what an owned sequence has room for, or
                          // DDS_LENGTH_UNLIMITED; one call returns at most the reader's resource limit
    DDS_SampleStateMask sample_states = DDS_ANY_SAMPLE_STATE;
    DDS_ViewStateMask view_states = DDS_ANY_VIEW_STATE;
    DDS_InstanceStateMask instance_states = DDS_ANY_INSTANCE_STATE;
    const DDS_ReadCondition* condition = nullptr; // of the same reader; its states replace these
    // The instance that has the handle, or the one that follows it (the first one for DDS_HANDLE_NIL).
    DDS_InstanceSelection instances = DDS_ANY_INSTANCE;
    const DDS_InstanceHandle_t* handle = nullptr;
};
// What the caller's data sequence looks like. The sequence of infos must look the same. Without a maximum,
// samples and infos are loaned; with one, they are copied into the caller's elements. A sequence that is not
// owned still holds a loan.
struct DDS_DataSeqView {
    DDS_Long length;
    DDS_Long maximum;
    bool has_ownership;
    void* contiguous_buffer;
    std::size_t element_size; // bytes
};
// Result: either a loan of `count` samples, to be given back with return_loan_untyped, or `count` samples
// copied into the caller's buffer. The infos are loaned or filled likewise; they are the caller's again when
// the loan is.
struct DDS_ReceivedSamples {
    bool is_loan;
    void** samples;
    DDS_Long count;
};
// BAD_PARAMETER for null infos, a maximum number of samples below 1, or an instance that does not exist.
// PRECONDITION_NOT_MET for a condition of another reader, or when the two sequences differ in length, maximum
// or ownership, still hold a loan, or are owned and have less room than the number of samples asked for
// (OMG DDS 1.4, 2.2.2.5.3.8 to 2.2.2.5.3.17). Then, and on NO_DATA, no sequence has changed.
DDS_ReturnCode_t DDS_DataReader_read_or_take_untyped(DDS_DataReader* self, const DDS_DataSeqView& data,
                                                     DDS_SampleInfoSeq* infos,
                                                     const DDS_ReadOrTakeParams& params,
                                                     DDS_ReceivedSamples* received);
// PRECONDITION_NOT_MET unless samples and infos come from one call on this reader.
DDS_ReturnCode_t DDS_DataReader_return_loan_untyped(DDS_DataReader* self, void** samples, DDS_Long count,
                                                    DDS_SampleInfoSeq* infos);
