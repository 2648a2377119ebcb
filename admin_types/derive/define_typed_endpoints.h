// Stamps the named writer and reader operations of one type (declared in admin_types/typed_endpoints.h). For
// source files only.
#pragma once

#include "middleware/dds/typed_endpoints.h"

#define ZUL_DEFINE_WRITER(Type, TypeName)                                                                    \
    Type##DataWriter* Type##DataWriter_narrow(DDS_DataWriter* writer) {                                      \
        return zul::dds::narrowWriter<Type##DataWriter>(writer, TypeName);                                   \
    }                                                                                                        \
    DDS_DataWriter* Type##DataWriter_as_datawriter(Type##DataWriter* writer) {                               \
        return zul::dds::widen<DDS_DataWriter>(writer, __func__, "null writer");                             \
    }                                                                                                        \
    ZUL_DEFINE_WRITES(Type, write)                                                                           \
    ZUL_DEFINE_WRITES(Type, unregister_instance)                                                             \
    ZUL_DEFINE_WRITES(Type, dispose)                                                                         \
    ZUL_DEFINE_W_PARAMS(Type, register_instance, DDS_InstanceHandle_t)                                       \
    DDS_InstanceHandle_t Type##DataWriter_register_instance(Type##DataWriter* writer, const Type* sample) {  \
        return Type##DataWriter_register_instance_w_timestamp(writer, sample, &DDS_TIME_INVALID);            \
    }                                                                                                        \
    DDS_InstanceHandle_t Type##DataWriter_register_instance_w_timestamp(                                     \
        Type##DataWriter* writer, const Type* sample, const DDS_Time_t* sourceTimestamp) {                   \
        DDS_WriteParams_t params;                                                                            \
        return zul::dds::writeParams(params, &DDS_HANDLE_NIL, sourceTimestamp, __func__)                     \
                   ? Type##DataWriter_register_instance_w_params(writer, sample, &params)                    \
                   : DDS_HANDLE_NIL;                                                                         \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataWriter_get_key_value(Type##DataWriter* writer, Type* key,                     \
                                                    const DDS_InstanceHandle_t* handle) {                    \
        return DDS_DataWriter_get_key_value(reinterpret_cast<DDS_DataWriter*>(writer), key, handle);         \
    }                                                                                                        \
    DDS_InstanceHandle_t Type##DataWriter_lookup_instance(Type##DataWriter* writer, const Type* key) {       \
        return DDS_DataWriter_lookup_instance(reinterpret_cast<DDS_DataWriter*>(writer), key);               \
    }

#define ZUL_DEFINE_WRITES(Type, verb)                                                                        \
    ZUL_DEFINE_W_PARAMS(Type, verb, DDS_ReturnCode_t)                                                        \
    DDS_ReturnCode_t Type##DataWriter_##verb(Type##DataWriter* writer, const Type* sample,                   \
                                             const DDS_InstanceHandle_t* handle) {                           \
        return Type##DataWriter_##verb##_w_timestamp(writer, sample, handle, &DDS_TIME_INVALID);             \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataWriter_##verb##_w_timestamp(Type##DataWriter* writer, const Type* sample,     \
                                                           const DDS_InstanceHandle_t* handle,               \
                                                           const DDS_Time_t* sourceTimestamp) {              \
        DDS_WriteParams_t params;                                                                            \
        return zul::dds::writeParams(params, handle, sourceTimestamp, __func__)                              \
                   ? Type##DataWriter_##verb##_w_params(writer, sample, &params)                             \
                   : DDS_RETCODE_BAD_PARAMETER;                                                              \
    }
#define ZUL_DEFINE_W_PARAMS(Type, verb, Result)                                                              \
    Result Type##DataWriter_##verb##_w_params(Type##DataWriter* writer, const Type* sample,                  \
                                              const DDS_WriteParams_t* params) {                             \
        return DDS_DataWriter_##verb##_w_params(reinterpret_cast<DDS_DataWriter*>(writer), sample, params);  \
    }

#define ZUL_DEFINE_READS(Type, verb, isTake)                                                                 \
    DDS_ReturnCode_t Type##DataReader_##verb(Type##DataReader* reader, Type##Seq* data,                      \
                                             DDS_SampleInfoSeq* infos, DDS_Long maxSamples,                  \
                                             DDS_SampleStateMask sampleStates, DDS_ViewStateMask viewStates, \
                                             DDS_InstanceStateMask instanceStates) {                         \
        return zul::dds::readOrTake(reinterpret_cast<DDS_DataReader*>(reader), data, infos,                  \
                                    {isTake, maxSamples, sampleStates, viewStates, instanceStates},          \
                                    __func__);                                                               \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataReader_##verb##_w_condition(Type##DataReader* reader, Type##Seq* data,        \
                                                           DDS_SampleInfoSeq* infos, DDS_Long maxSamples,    \
                                                           const DDS_ReadCondition* condition) {             \
        return zul::dds::readOrTakeWithCondition(reinterpret_cast<DDS_DataReader*>(reader), data, infos,     \
                                                 {isTake, maxSamples}, condition, __func__);                 \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataReader_##verb##_next_sample(Type##DataReader* reader, Type* sample,           \
                                                           DDS_SampleInfo* info) {                           \
        return zul::dds::nextSample<Type##Seq>(reinterpret_cast<DDS_DataReader*>(reader), sample, info,      \
                                               isTake, __func__);                                            \
    }                                                                                                        \
    ZUL_DEFINE_INSTANCE_READS(Type, verb##_instance, isTake, DDS_THIS_INSTANCE)                              \
    ZUL_DEFINE_INSTANCE_READS(Type, verb##_next_instance, isTake, DDS_NEXT_INSTANCE)
#define ZUL_DEFINE_INSTANCE_READS(Type, verb, isTake, selection)                                             \
    DDS_ReturnCode_t Type##DataReader_##verb(                                                                \
        Type##DataReader* reader, Type##Seq* data, DDS_SampleInfoSeq* infos, DDS_Long maxSamples,            \
        const DDS_InstanceHandle_t* handle, DDS_SampleStateMask sampleStates, DDS_ViewStateMask viewStates,  \
        DDS_InstanceStateMask instanceStates) {                                                              \
        return zul::dds::readOrTake(                                                                         \
            reinterpret_cast<DDS_DataReader*>(reader), data, infos,                                          \
            {isTake, maxSamples, sampleStates, viewStates, instanceStates, nullptr, selection, handle},      \
            __func__);                                                                                       \
    }                                                                                                        \
    DDS_ReturnCode_t Type##DataReader_##verb##_w_condition(                                                  \
        Type##DataReader* reader, Type##Seq* data, DDS_SampleInfoSeq* infos, DDS_Long maxSamples,            \
        const DDS_InstanceHandle_t* handle, const DDS_ReadCondition* condition) {                            \
        return zul::dds::readOrTakeWithCondition(                                                            \
            reinterpret_cast<DDS_DataReader*>(reader), data, infos,                                          \
            {.take = isTake, .max_samples = maxSamples, .instances = selection, .handle = handle},           \
            condition, __func__);                                                                            \
    }

#define ZUL_DEFINE_READER(Type, TypeName)                                                                    \
    Type##DataReader* Type##DataReader_narrow(DDS_DataReader* reader) {                                      \
        return zul::dds::narrowReader<Type##DataReader>(reader, TypeName);                                   \
    }                                                                                                        \
    DDS_DataReader* Type##DataReader_as_datareader(Type##DataReader* reader) {                               \
        return zul::dds::widen<DDS_DataReader>(reader, __func__, "null reader");                             \
    }                                                                                                        \
    ZUL_DEFINE_READS(Type, read, false)                                                                      \
    ZUL_DEFINE_READS(Type, take, true)                                                                       \
    DDS_ReturnCode_t Type##DataReader_return_loan(Type##DataReader* reader, Type##Seq* data,                 \
                                                  DDS_SampleInfoSeq* infos) {                                \
        return zul::dds::returnLoan(reinterpret_cast<DDS_DataReader*>(reader), data, infos, __func__);       \
    }
