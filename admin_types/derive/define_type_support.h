// Stamps the named plugin and type-support operations of one type (declared in type_support.h). For source
// files only.
#pragma once

#include "middleware/dds/dds.h"
#include "middleware/idl/plugin_operations.h"

namespace admin {

inline DDS_ReturnCode_t returnCode(bool done) {
    return done ? DDS_RETCODE_OK : DDS_RETCODE_ERROR;
}

} // namespace admin

#define ZUL_DEFINE_TYPE_SUPPORT(Type, TypeName)                                                              \
    ZULTypePlugin* Type##Plugin_new() {                                                                      \
        return zul::idl::EndpointOperations<zul::idl::Struct<Type>>::newPlugin(TypeName);                    \
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
    Type* Type##TypeSupport_create_data() {                                                                  \
        return Type##PluginSupport_create_data();                                                            \
    }                                                                                                        \
    Type* Type##TypeSupport_create_data_ex(bool allocatePointers) {                                          \
        return Type##PluginSupport_create_data_ex(allocatePointers);                                         \
    }                                                                                                        \
    Type* Type##TypeSupport_create_data_w_params(const DDS_TypeAllocationParams_t* params) {                 \
        return Type##PluginSupport_create_data_w_params(params);                                             \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_delete_data(Type* sample) {                                           \
        Type##PluginSupport_destroy_data(sample);                                                            \
        return DDS_RETCODE_OK;                                                                               \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_delete_data_ex(Type* sample, bool deletePointers) {                   \
        Type##PluginSupport_destroy_data_ex(sample, deletePointers);                                         \
        return DDS_RETCODE_OK;                                                                               \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_delete_data_w_params(Type* sample,                                    \
                                                            const DDS_TypeDeallocationParams_t* params) {    \
        Type##PluginSupport_destroy_data_w_params(sample, params);                                           \
        return DDS_RETCODE_OK;                                                                               \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_initialize_data(Type* sample) {                                       \
        return admin::returnCode(Type##_initialize(sample));                                                 \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_initialize_data_ex(Type* sample, bool allocatePointers) {             \
        return admin::returnCode(Type##_initialize_ex(sample, allocatePointers, true));                      \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_initialize_data_w_params(Type* sample,                                \
                                                                const DDS_TypeAllocationParams_t* params) {  \
        return admin::returnCode(Type##_initialize_w_params(sample, params));                                \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_finalize_data(Type* sample) {                                         \
        Type##_finalize(sample);                                                                             \
        return admin::returnCode(sample != nullptr);                                                         \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_finalize_data_ex(Type* sample, bool deletePointers) {                 \
        Type##_finalize_ex(sample, deletePointers);                                                          \
        return admin::returnCode(sample != nullptr);                                                         \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_finalize_data_w_params(Type* sample,                                  \
                                                              const DDS_TypeDeallocationParams_t* params) {  \
        Type##_finalize_w_params(sample, params);                                                            \
        return admin::returnCode(sample != nullptr && params != nullptr);                                    \
    }                                                                                                        \
    DDS_ReturnCode_t Type##TypeSupport_copy_data(Type* destination, const Type* source) {                    \
        return admin::returnCode(Type##PluginSupport_copy_data(destination, source));                        \
    }                                                                                                        \
    void Type##TypeSupport_print_data(const Type* sample, const char* description, int indent) {             \
        Type##PluginSupport_print_data(sample, description, indent);                                         \
    }                                                                                                        \
    void Type##TypeSupport_finalize() {}
