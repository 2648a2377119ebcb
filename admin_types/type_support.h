// Type support and type plugins of the routing module's CommandRequest and CommandResponse, the two types
// that travel by themselves. The federation variant uses these too, with its own type codes in the plugins.
// Their typed writers and readers are in typed_endpoints.h, which this header brings along.
#pragma once

#include "admin_types/data_types.h"
#include "admin_types/typed_endpoints.h"
#include "middleware/dds/dds.h"

#define ZUL_DECLARE_TYPE_SUPPORT(Type)                                                                       \
    /* The caller owns the plugin; null when memory is exhausted. */                                         \
    ZULTypePlugin* Type##Plugin_new();                                                                       \
    void Type##Plugin_delete(ZULTypePlugin* plugin);                                                         \
                                                                                                             \
    /* Error (1) for a null participant. */                                                                  \
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
    DDS_ReturnCode_t Type##TypeSupport_delete_data_w_params(Type* sample,                                    \
                                                            const DDS_TypeDeallocationParams_t* params);     \
    /* The same for a sample in memory of the caller's. Error (1) when memory is exhausted or an argument */ \
    /* is null. */                                                                                           \
    DDS_ReturnCode_t Type##TypeSupport_initialize_data(Type* sample);                                        \
    DDS_ReturnCode_t Type##TypeSupport_initialize_data_ex(Type* sample, bool allocatePointers);              \
    DDS_ReturnCode_t Type##TypeSupport_initialize_data_w_params(Type* sample,                                \
                                                                const DDS_TypeAllocationParams_t* params);   \
    DDS_ReturnCode_t Type##TypeSupport_finalize_data(Type* sample);                                          \
    DDS_ReturnCode_t Type##TypeSupport_finalize_data_ex(Type* sample, bool deletePointers);                  \
    DDS_ReturnCode_t Type##TypeSupport_finalize_data_w_params(Type* sample,                                  \
                                                              const DDS_TypeDeallocationParams_t* params);   \
    DDS_ReturnCode_t Type##TypeSupport_copy_data(Type* destination, const Type* source);                     \
    void Type##TypeSupport_print_data(const Type* sample, const char* description, int indent);              \
    /* Does nothing: type support keeps nothing. */                                                          \
    void Type##TypeSupport_finalize();

ZUL_DECLARE_TYPE_SUPPORT(ZUL_RoutingService_Administration_CommandRequest)
ZUL_DECLARE_TYPE_SUPPORT(ZUL_RoutingService_Administration_CommandResponse)
