// Plugin operations of every routing type, under their C names: <type>Plugin_serialize,
// <type>PluginSupport_create_data, ... A member-level plugin encodes and decodes its type as a member or by
// itself; only the two types of type_support.h also have a plugin record, endpoints and samples from a pool.
// Sizes are bytes; a bool says whether the operation succeeded; a serialized key is the whole sample, because
// no type has a key.
#pragma once

#include "admin_types/data_types.h"
#include "middleware/cdr/stream.h"
#include "middleware/idl/type_plugin.h"

// Every type.
#define ZUL_DECLARE_PLUGIN_CODEC(Type)                                                                       \
    bool Type##Plugin_serialize(ZULEndpointData* data, const Type* sample, ZULCdrOutput* stream,             \
                                bool serializeEncapsulation, std::uint16_t encapsulationId,                  \
                                bool serializeSample, void* endpointPluginQos);                              \
    bool Type##Plugin_deserialize_sample(ZULEndpointData* data, Type* sample, ZULCdrInput* stream,           \
                                         bool deserializeEncapsulation, bool deserializeSample,              \
                                         void* endpointPluginQos);                                           \
    bool Type##Plugin_skip(ZULEndpointData* data, ZULCdrInput* stream, bool skipEncapsulation,               \
                           bool skipSample, void* endpointPluginQos);                                        \
    std::size_t Type##Plugin_get_serialized_sample_max_size(                                                 \
        ZULEndpointData* data, bool includeEncapsulation, std::uint16_t encapsulationId,                     \
        std::size_t alignment);                                                                              \
    std::size_t Type##Plugin_get_serialized_sample_min_size(                                                 \
        ZULEndpointData* data, bool includeEncapsulation, std::uint16_t encapsulationId,                     \
        std::size_t alignment);                                                                              \
    std::size_t Type##Plugin_get_serialized_sample_size(ZULEndpointData* data, bool includeEncapsulation,    \
                                                        std::uint16_t encapsulationId,                       \
                                                        std::size_t alignment, const Type* sample);          \
    bool Type##Plugin_serialize_key(ZULEndpointData* data, const Type* sample, ZULCdrOutput* stream,         \
                                    bool serializeEncapsulation, std::uint16_t encapsulationId,              \
                                    bool serializeKey, void* endpointPluginQos);                             \
    bool Type##Plugin_deserialize_key_sample(ZULEndpointData* data, Type* sample, ZULCdrInput* stream,       \
                                             bool deserializeEncapsulation, bool deserializeKey,             \
                                             void* endpointPluginQos);                                       \
    bool Type##Plugin_serialized_sample_to_key(ZULEndpointData* data, Type* sample, ZULCdrInput* stream,     \
                                               bool deserializeEncapsulation, bool deserializeKey,           \
                                               void* endpointPluginQos);                                     \
    std::size_t Type##Plugin_get_serialized_key_max_size(ZULEndpointData* data, bool includeEncapsulation,   \
                                                         std::uint16_t encapsulationId,                      \
                                                         std::size_t alignment);                             \
    void Type##PluginSupport_print_data(const Type* sample, const char* description, int indent);

// Every type but the enumerations. Data is the caller's until it is destroyed; null when memory is exhausted.
#define ZUL_DECLARE_PLUGIN_SUPPORT(Type)                                                                     \
    ZULKeyKind Type##Plugin_get_key_kind();                                                                  \
    bool Type##Plugin_copy_sample(ZULEndpointData* data, Type* destination, const Type* source);             \
    Type* Type##PluginSupport_create_data();                                                                 \
    Type* Type##PluginSupport_create_data_ex(bool allocatePointers);                                         \
    Type* Type##PluginSupport_create_data_w_params(const DDS_TypeAllocationParams_t* params);                \
    void Type##PluginSupport_destroy_data(Type* sample);                                                     \
    void Type##PluginSupport_destroy_data_ex(Type* sample, bool deallocatePointers);                         \
    void Type##PluginSupport_destroy_data_w_params(Type* sample,                                             \
                                                   const DDS_TypeDeallocationParams_t* params);              \
    bool Type##PluginSupport_copy_data(Type* destination, const Type* source);

// Every struct and the union: the form that also fails a sample in which an unknown enumerator was met.
#define ZUL_DECLARE_PLUGIN_WRAPPERS(Type)                                                                    \
    bool Type##Plugin_deserialize(ZULEndpointData* data, Type* sample, ZULCdrInput* stream,                  \
                                  bool deserializeEncapsulation, bool deserializeSample,                     \
                                  void* endpointPluginQos);                                                  \
    bool Type##Plugin_deserialize_key(ZULEndpointData* data, Type* sample, ZULCdrInput* stream,              \
                                      bool deserializeEncapsulation, bool deserializeKey,                    \
                                      void* endpointPluginQos);

ZUL_FOR_EACH_ENUMERATION(ZUL_DECLARE_PLUGIN_CODEC, ZUL_RoutingService_Administration_)
ZUL_DECLARE_PLUGIN_CODEC(ZUL_RoutingService_Administration_EntityName)
ZUL_DECLARE_PLUGIN_SUPPORT(ZUL_RoutingService_Administration_EntityName)
ZUL_FOR_EACH_RECORD(ZUL_DECLARE_PLUGIN_CODEC, ZUL_RoutingService_Administration_)
ZUL_FOR_EACH_RECORD(ZUL_DECLARE_PLUGIN_SUPPORT, ZUL_RoutingService_Administration_)
ZUL_FOR_EACH_RECORD(ZUL_DECLARE_PLUGIN_WRAPPERS, ZUL_RoutingService_Administration_)

// The two types with endpoints: what their plugin records consist of.
#define ZUL_DECLARE_PLUGIN_ENDPOINT(Type)                                                                    \
    ZULParticipantData* Type##Plugin_on_participant_attached();                                              \
    void Type##Plugin_on_participant_detached(ZULParticipantData* data);                                     \
    ZULEndpointData* Type##Plugin_on_endpoint_attached(ZULParticipantData* data,                             \
                                                       const ZULEndpointInfo* info);                         \
    void Type##Plugin_on_endpoint_detached(ZULEndpointData* data);                                           \
    Type* Type##Plugin_get_sample(ZULEndpointData* data);                                                    \
    void Type##Plugin_return_sample(ZULEndpointData* data, Type* sample);
ZUL_DECLARE_PLUGIN_ENDPOINT(ZUL_RoutingService_Administration_CommandRequest)
ZUL_DECLARE_PLUGIN_ENDPOINT(ZUL_RoutingService_Administration_CommandResponse)
