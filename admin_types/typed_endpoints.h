// Typed writers and readers of the two types that travel by themselves: typed views of the untyped endpoints,
// whose records they take and give (OMG DDS 1.4, 2.2.2.4.2 and 2.2.2.5.3). Both types are keyless: what that
// means for instances is told in middleware/dds/dds.h.
#pragma once

#include "admin_types/sequences.h"
#include "middleware/dds/dds.h"

#define ZUL_DECLARE_WRITER(Type)                                                                             \
    struct Type##DataWriter;                                                                                 \
    /* Null, and a log line, for an endpoint of another type. */                                             \
    Type##DataWriter* Type##DataWriter_narrow(DDS_DataWriter* writer);                                       \
    DDS_DataWriter* Type##DataWriter_as_datawriter(Type##DataWriter* writer);                                \
    ZUL_DECLARE_WRITES(Type, write, DDS_ReturnCode_t, ZUL_WITH_HANDLE)                                       \
    ZUL_DECLARE_WRITES(Type, register_instance, DDS_InstanceHandle_t, ZUL_WITHOUT_HANDLE)                    \
    ZUL_DECLARE_WRITES(Type, unregister_instance, DDS_ReturnCode_t, ZUL_WITH_HANDLE)                         \
    ZUL_DECLARE_WRITES(Type, dispose, DDS_ReturnCode_t, ZUL_WITH_HANDLE)                                     \
    DDS_ReturnCode_t Type##DataWriter_get_key_value(Type##DataWriter* writer, Type* key,                     \
                                                    const DDS_InstanceHandle_t* handle);                     \
    DDS_InstanceHandle_t Type##DataWriter_lookup_instance(Type##DataWriter* writer, const Type* key);

// The three forms of a writer operation: now, with a source timestamp, with a parameter record.
#define ZUL_WITH_HANDLE , const DDS_InstanceHandle_t* handle
#define ZUL_WITHOUT_HANDLE
#define ZUL_DECLARE_WRITES(Type, verb, Result, handleArgument)                                               \
    Result Type##DataWriter_##verb(Type##DataWriter* writer, const Type* sample handleArgument);             \
    Result Type##DataWriter_##verb##_w_timestamp(                                                            \
        Type##DataWriter* writer, const Type* sample handleArgument, const DDS_Time_t* sourceTimestamp);     \
    Result Type##DataWriter_##verb##_w_params(Type##DataWriter* writer, const Type* sample,                  \
                                              const DDS_WriteParams_t* params);

// Reading leaves the samples in the reader, taking removes them. `data` and `infos` have the same length,
// maximum and ownership, before and after. Samples and infos are loaned when they have no buffers of their
// own; give both back with `return_loan`, which leaves both owned and without a buffer. Otherwise they are
// copied into the elements, which must be initialised records. NO_DATA (11) leaves both empty. What else is
// refused is told in middleware/dds/reading_rules.h.
#define ZUL_DECLARE_READS(Type, verb)                                                                        \
    DDS_ReturnCode_t Type##DataReader_##verb(Type##DataReader* reader, Type##Seq* data,                      \
                                             DDS_SampleInfoSeq* infos, DDS_Long maxSamples,                  \
                                             DDS_SampleStateMask sampleStates, DDS_ViewStateMask viewStates, \
                                             DDS_InstanceStateMask instanceStates);                          \
    DDS_ReturnCode_t Type##DataReader_##verb##_w_condition(Type##DataReader* reader, Type##Seq* data,        \
                                                           DDS_SampleInfoSeq* infos, DDS_Long maxSamples,    \
                                                           const DDS_ReadCondition* condition);              \
    /* One unread sample, copied into an initialised record of the caller's. */                              \
    DDS_ReturnCode_t Type##DataReader_##verb##_next_sample(Type##DataReader* reader, Type* sample,           \
                                                           DDS_SampleInfo* info);                            \
    ZUL_DECLARE_INSTANCE_READS(Type, verb##_instance)                                                        \
    ZUL_DECLARE_INSTANCE_READS(Type, verb##_next_instance)
#define ZUL_DECLARE_INSTANCE_READS(Type, verb)                                                               \
    DDS_ReturnCode_t Type##DataReader_##verb(                                                                \
        Type##DataReader* reader, Type##Seq* data, DDS_SampleInfoSeq* infos, DDS_Long maxSamples,            \
        const DDS_InstanceHandle_t* handle, DDS_SampleStateMask sampleStates, DDS_ViewStateMask viewStates,  \
        DDS_InstanceStateMask instanceStates);                                                               \
    DDS_ReturnCode_t Type##DataReader_##verb##_w_condition(                                                  \
        Type##DataReader* reader, Type##Seq* data, DDS_SampleInfoSeq* infos, DDS_Long maxSamples,            \
        const DDS_InstanceHandle_t* handle, const DDS_ReadCondition* condition);
#define ZUL_DECLARE_READER(Type)                                                                             \
    struct Type##DataReader;                                                                                 \
    /* Null, and a log line, for an endpoint of another type. */                                             \
    Type##DataReader* Type##DataReader_narrow(DDS_DataReader* reader);                                       \
    DDS_DataReader* Type##DataReader_as_datareader(Type##DataReader* reader);                                \
    ZUL_DECLARE_READS(Type, read)                                                                            \
    ZUL_DECLARE_READS(Type, take)                                                                            \
    DDS_ReturnCode_t Type##DataReader_return_loan(Type##DataReader* reader, Type##Seq* data,                 \
                                                  DDS_SampleInfoSeq* infos);

ZUL_DECLARE_WRITER(ZUL_RoutingService_Administration_CommandRequest)
ZUL_DECLARE_READER(ZUL_RoutingService_Administration_CommandRequest)
ZUL_DECLARE_WRITER(ZUL_RoutingService_Administration_CommandResponse)
ZUL_DECLARE_READER(ZUL_RoutingService_Administration_CommandResponse)
