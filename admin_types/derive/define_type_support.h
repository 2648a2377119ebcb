// Stamps the named plugin, type-support and endpoint operations of one type (declared in type_support.h).
// For source files only.
#pragma once

#include "admin_types/derive/plugin.h"
#include "admin_types/derive/typed_endpoints.h"

#define ZUL_DEFINE_TYPE_SUPPORT(Type, TypeName)                                                              \
    ZULTypePlugin* Type##Plugin_new() {                                                                      \
        return admin::EndpointOperations<admin::Struct<Type>>::newPlugin(TypeName);                          \
    }                                                                                                        \
    void Type##Plugin_delete(ZULTypePlugin* plugin) {                                                        \
        ZULHeap_free(plugin);                                                                                \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_register_type(DDS_DomainParticipant* participant,                     \
                                                     const char* typeName) {                                 \
        if (participant == nullptr) {                                                                        \
            return DDS_RETCODE_ERROR;                                                                        \
        }                                                                                                    \
        ZULTypePlugin* plugin = Type##Plugin_new();                                                          \
        if (plugin == nullptr) {                                                                             \
            return DDS_RETCODE_ERROR;                                                                        \
        }                                                                                                    \
        const DDS_ReturnCode_t code = DDS_DomainParticipant_register_type(participant, typeName, plugin);    \
        Type##Plugin_delete(plugin);                                                                         \
        return code;                                                                                         \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_unregister_type(DDS_DomainParticipant* participant,                   \
                                                       const char* typeName) {                               \
        return participant == nullptr ? DDS_RETCODE_ERROR                                                    \
                                      : DDS_DomainParticipant_unregister_type(participant, typeName);        \
    }                                                                                                        \
    const char* Type##TypeSupport_get_type_name() {                                                          \
        return TypeName;                                                                                     \
    }                                                                                                        \
    Type* Type##TypeSupport_create_data_w_params(const DDS_TypeAllocationParams_t* params) {                 \
        return params == nullptr ? nullptr                                                                   \
                                 : admin::PluginOperations<admin::Struct<Type>>::createData(*params);        \
    }                                                                                                        \
    Type* Type##TypeSupport_create_data_ex(bool allocatePointers) {                                          \
        const DDS_TypeAllocationParams_t params{                                                             \
            .allocate_pointers = allocatePointers, .allocate_optional_members = 0, .allocate_memory = 1};    \
        return Type##TypeSupport_create_data_w_params(&params);                                              \
    }                                                                                                        \
    Type* Type##TypeSupport_create_data() {                                                                  \
        return Type##TypeSupport_create_data_ex(true);                                                       \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_delete_data_ex(Type* sample, bool) {                                  \
        admin::PluginOperations<admin::Struct<Type>>::destroyData(sample);                                   \
        return DDS_RETCODE_OK;                                                                               \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_delete_data(Type* sample) {                                           \
        return Type##TypeSupport_delete_data_ex(sample, true);                                               \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_copy_data(Type* destination, const Type* source) {                    \
        return Type##_copy(destination, source) ? DDS_RETCODE_OK : DDS_RETCODE_ERROR;                        \
    }                                                                                                        \
    void Type##TypeSupport_print_data(const Type* sample, const char* description, int indent) {             \
        admin::PluginOperations<admin::Struct<Type>>::printData(sample, description, indent);                \
    }                                                                                                        \
    Type##DataWriter* Type##DataWriter_narrow(DDS_DataWriter* writer) {                                      \
        return admin::narrowWriter<Type##DataWriter>(writer, TypeName);                                      \
    }                                                                                                        \
    DDS_DataWriter* Type##DataWriter_as_datawriter(Type##DataWriter* writer) {                               \
        return admin::widen<DDS_DataWriter>(writer, __func__, "null writer");                                \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataWriter_write(Type##DataWriter* writer, const Type* sample,                    \
                                            const DDS_InstanceHandle_t* handle) {                            \
        return DDS_DataWriter_write(reinterpret_cast<DDS_DataWriter*>(writer), sample, handle);              \
    }                                                                                                        \
    Type##DataReader* Type##DataReader_narrow(DDS_DataReader* reader) {                                      \
        return admin::narrowReader<Type##DataReader>(reader, TypeName);                                      \
    }                                                                                                        \
    DDS_DataReader* Type##DataReader_as_datareader(Type##DataReader* reader) {                               \
        return admin::widen<DDS_DataReader>(reader, __func__, "null reader");                                \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataReader_read(Type##DataReader* reader, Type##Seq* data,                        \
                                           DDS_SampleInfoSeq* infos, DDS_Long maxSamples,                    \
                                           DDS_SampleStateMask sampleStates, DDS_ViewStateMask viewStates,   \
                                           DDS_InstanceStateMask instanceStates) {                           \
        return admin::readOrTake(reinterpret_cast<DDS_DataReader*>(reader), data, infos,                     \
                                 {false, maxSamples, sampleStates, viewStates, instanceStates}, __func__);   \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataReader_take(Type##DataReader* reader, Type##Seq* data,                        \
                                           DDS_SampleInfoSeq* infos, DDS_Long maxSamples,                    \
                                           DDS_SampleStateMask sampleStates, DDS_ViewStateMask viewStates,   \
                                           DDS_InstanceStateMask instanceStates) {                           \
        return admin::readOrTake(reinterpret_cast<DDS_DataReader*>(reader), data, infos,                     \
                                 {true, maxSamples, sampleStates, viewStates, instanceStates}, __func__);    \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataReader_return_loan(Type##DataReader* reader, Type##Seq* data,                 \
                                                  DDS_SampleInfoSeq* infos) {                                \
        return admin::returnLoan(reinterpret_cast<DDS_DataReader*>(reader), data, infos, __func__);          \
    }
