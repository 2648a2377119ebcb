// Type plugins, type support and typed endpoints of the routing module's CommandRequest and CommandResponse,
// the two types that travel by themselves. The federation variant uses these too, with its own type codes in
// the plugins.
#pragma once

#include "admin_types/data_types.h"
#include "admin_types/sequences.h"
#include "middleware/dds.h"

#define ZUL_DECLARE_TYPE_SUPPORT(Type)                                                                       \
    /* The caller owns the plugin; null when memory is exhausted. */                                         \
    ZULTypePlugin* Type##Plugin_new();                                                                       \
    void Type##Plugin_delete(ZULTypePlugin* plugin);                                                         \
                                                                                                             \
    DDS_ReturnCode_t Type##TypeSupport_register_type(DDS_DomainParticipant* participant,                     \
                                                     const char* typeName);                                  \
    DDS_ReturnCode_t Type##TypeSupport_unregister_type(DDS_DomainParticipant* participant,                   \
                                                       const char* typeName);                                \
    const char* Type##TypeSupport_get_type_name();                                                           \
    /* The caller owns the sample and gives it back to `delete_data`; null when memory is exhausted. */      \
    Type* Type##TypeSupport_create_data();                                                                   \
    Type* Type##TypeSupport_create_data_ex(bool allocatePointers);                                           \
    Type* Type##TypeSupport_create_data_w_params(const DDS_TypeAllocationParams_t* params);                  \
    DDS_ReturnCode_t Type##TypeSupport_delete_data(Type* sample);                                            \
    DDS_ReturnCode_t Type##TypeSupport_delete_data_ex(Type* sample, bool deletePointers);                    \
    DDS_ReturnCode_t Type##TypeSupport_copy_data(Type* destination, const Type* source);                     \
    void Type##TypeSupport_print_data(const Type* sample, const char* description, int indent);              \
                                                                                                             \
    /* Typed views of an endpoint; null, and a log line, for an endpoint of another type. */                 \
    struct Type##DataWriter;                                                                                 \
    Type##DataWriter* Type##DataWriter_narrow(DDS_DataWriter* writer);                                       \
    DDS_DataWriter* Type##DataWriter_as_datawriter(Type##DataWriter* writer);                                \
    DDS_ReturnCode_t Type##DataWriter_write(Type##DataWriter* writer, const Type* sample,                    \
                                            const DDS_InstanceHandle_t* handle);                             \
    struct Type##DataReader;                                                                                 \
    Type##DataReader* Type##DataReader_narrow(DDS_DataReader* reader);                                       \
    DDS_DataReader* Type##DataReader_as_datareader(Type##DataReader* reader);                                \
    /* Samples are loaned when `data` has no buffer of its own; give them back with `return_loan`. */        \
    DDS_ReturnCode_t Type##DataReader_read(Type##DataReader* reader, Type##Seq* data,                        \
                                           DDS_SampleInfoSeq* infos, DDS_Long maxSamples,                    \
                                           DDS_SampleStateMask sampleStates, DDS_ViewStateMask viewStates,   \
                                           DDS_InstanceStateMask instanceStates);                            \
    DDS_ReturnCode_t Type##DataReader_take(Type##DataReader* reader, Type##Seq* data,                        \
                                           DDS_SampleInfoSeq* infos, DDS_Long maxSamples,                    \
                                           DDS_SampleStateMask sampleStates, DDS_ViewStateMask viewStates,   \
                                           DDS_InstanceStateMask instanceStates);                            \
    DDS_ReturnCode_t Type##DataReader_return_loan(Type##DataReader* reader, Type##Seq* data,                 \
                                                  DDS_SampleInfoSeq* infos);

ZUL_DECLARE_TYPE_SUPPORT(ZUL_RoutingService_Administration_CommandRequest)
ZUL_DECLARE_TYPE_SUPPORT(ZUL_RoutingService_Administration_CommandResponse)
