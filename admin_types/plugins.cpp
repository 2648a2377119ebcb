#include "admin_types/plugins.h"

#include "admin_types/descriptions.h"
#include "middleware/idl/plugin_operations.h"

#define ZUL_DEFINE_PLUGIN_CODEC(Type, IdlType)                                                               \
    bool Type##Plugin_serialize(ZULEndpointData* data, const Type* sample, ZULCdrOutput* stream,             \
                                bool serializeEncapsulation, std::uint16_t encapsulationId,                  \
                                bool serializeSample, void*) {                                               \
        return zul::idl::PluginOperations<IdlType>::serializeSample(                                         \
            data, *sample, *stream, serializeEncapsulation, encapsulationId, serializeSample);               \
    }                                                                                                        \
    bool Type##Plugin_deserialize_sample(ZULEndpointData*, Type* sample, ZULCdrInput* stream,                \
                                         bool deserializeEncapsulation, bool deserializeSample, void*) {     \
        return zul::idl::PluginOperations<IdlType>::deserializeSample(                                       \
            *sample, *stream, deserializeEncapsulation, deserializeSample);                                  \
    }                                                                                                        \
    bool Type##Plugin_skip(ZULEndpointData*, ZULCdrInput* stream, bool skipEncapsulation, bool skipSample,   \
                           void*) {                                                                          \
        return zul::idl::PluginOperations<IdlType>::skipSample(*stream, skipEncapsulation, skipSample);      \
    }                                                                                                        \
    std::size_t Type##Plugin_get_serialized_sample_max_size(                                                 \
        ZULEndpointData*, bool includeEncapsulation, std::uint16_t encapsulationId, std::size_t alignment) { \
        return zul::idl::boundOf<zul::idl::Bound::MAXIMUM>(IdlType{}, includeEncapsulation, encapsulationId, \
                                                           alignment);                                       \
    }                                                                                                        \
    std::size_t Type##Plugin_get_serialized_sample_min_size(                                                 \
        ZULEndpointData*, bool includeEncapsulation, std::uint16_t encapsulationId, std::size_t alignment) { \
        return zul::idl::boundOf<zul::idl::Bound::MINIMUM>(IdlType{}, includeEncapsulation, encapsulationId, \
                                                           alignment);                                       \
    }                                                                                                        \
    std::size_t Type##Plugin_get_serialized_sample_size(ZULEndpointData* data, bool includeEncapsulation,    \
                                                        std::uint16_t encapsulationId,                       \
                                                        std::size_t alignment, const Type* sample) {         \
        return zul::idl::PluginOperations<IdlType>::exactSize(data, includeEncapsulation, encapsulationId,   \
                                                              alignment, *sample);                           \
    }                                                                                                        \
    bool Type##Plugin_serialize_key(ZULEndpointData* data, const Type* sample, ZULCdrOutput* stream,         \
                                    bool serializeEncapsulation, std::uint16_t encapsulationId,              \
                                    bool serializeKey, void* endpointPluginQos) {                            \
        return Type##Plugin_serialize(data, sample, stream, serializeEncapsulation, encapsulationId,         \
                                      serializeKey, endpointPluginQos);                                      \
    }                                                                                                        \
    bool Type##Plugin_deserialize_key_sample(ZULEndpointData* data, Type* sample, ZULCdrInput* stream,       \
                                             bool deserializeEncapsulation, bool deserializeKey,             \
                                             void* endpointPluginQos) {                                      \
        return Type##Plugin_deserialize_sample(data, sample, stream, deserializeEncapsulation,               \
                                               deserializeKey, endpointPluginQos);                           \
    }                                                                                                        \
    bool Type##Plugin_serialized_sample_to_key(ZULEndpointData* data, Type* sample, ZULCdrInput* stream,     \
                                               bool deserializeEncapsulation, bool deserializeKey,           \
                                               void* endpointPluginQos) {                                    \
        return Type##Plugin_deserialize_sample(data, sample, stream, deserializeEncapsulation,               \
                                               deserializeKey, endpointPluginQos);                           \
    }                                                                                                        \
    std::size_t Type##Plugin_get_serialized_key_max_size(ZULEndpointData* data, bool includeEncapsulation,   \
                                                         std::uint16_t encapsulationId,                      \
                                                         std::size_t alignment) {                            \
        return Type##Plugin_get_serialized_sample_max_size(data, includeEncapsulation, encapsulationId,      \
                                                           alignment);                                       \
    }                                                                                                        \
    void Type##PluginSupport_print_data(const Type* sample, const char* description, int indent) {           \
        zul::idl::PluginOperations<IdlType>::printData(sample, description, indent);                         \
    }

#define ZUL_DEFINE_PLUGIN_SUPPORT(Type, IdlType)                                                             \
    ZULKeyKind Type##Plugin_get_key_kind() {                                                                 \
        return ZUL_KEY_NONE;                                                                                 \
    }                                                                                                        \
    bool Type##Plugin_copy_sample(ZULEndpointData*, Type* destination, const Type* source) {                 \
        return Type##_copy(destination, source);                                                             \
    }                                                                                                        \
    Type* Type##PluginSupport_create_data_w_params(const DDS_TypeAllocationParams_t* params) {               \
        return params == nullptr ? nullptr : zul::idl::PluginOperations<IdlType>::createData(*params);       \
    }                                                                                                        \
    Type* Type##PluginSupport_create_data_ex(bool allocatePointers) {                                        \
        const DDS_TypeAllocationParams_t params{                                                             \
            .allocate_pointers = allocatePointers, .allocate_optional_members = 0, .allocate_memory = 1};    \
        return Type##PluginSupport_create_data_w_params(&params);                                            \
    }                                                                                                        \
    Type* Type##PluginSupport_create_data() {                                                                \
        return Type##PluginSupport_create_data_ex(true);                                                     \
    }                                                                                                        \
    void Type##PluginSupport_destroy_data_w_params(Type* sample, const DDS_TypeDeallocationParams_t*) {      \
        zul::idl::PluginOperations<IdlType>::destroyData(sample);                                            \
    }                                                                                                        \
    void Type##PluginSupport_destroy_data_ex(Type* sample, bool) {                                           \
        zul::idl::PluginOperations<IdlType>::destroyData(sample);                                            \
    }                                                                                                        \
    void Type##PluginSupport_destroy_data(Type* sample) {                                                    \
        zul::idl::PluginOperations<IdlType>::destroyData(sample);                                            \
    }                                                                                                        \
    bool Type##PluginSupport_copy_data(Type* destination, const Type* source) {                              \
        return Type##_copy(destination, source);                                                             \
    }

#define ZUL_DEFINE_PLUGIN_WRAPPERS(Type, IdlType)                                                            \
    bool Type##Plugin_deserialize(ZULEndpointData*, Type* sample, ZULCdrInput* stream,                       \
                                  bool deserializeEncapsulation, bool deserializeSample, void*) {            \
        return zul::idl::PluginOperations<IdlType>::deserialize(*sample, *stream, deserializeEncapsulation,  \
                                                                deserializeSample);                          \
    }                                                                                                        \
    bool Type##Plugin_deserialize_key(ZULEndpointData* data, Type* sample, ZULCdrInput* stream,              \
                                      bool deserializeEncapsulation, bool deserializeKey,                    \
                                      void* endpointPluginQos) {                                             \
        return Type##Plugin_deserialize(data, sample, stream, deserializeEncapsulation, deserializeKey,      \
                                        endpointPluginQos);                                                  \
    }

#define ZUL_DEFINE_PLUGIN(Type, IdlType)                                                                     \
    ZUL_DEFINE_PLUGIN_CODEC(Type, IdlType)                                                                   \
    ZUL_DEFINE_PLUGIN_SUPPORT(Type, IdlType)                                                                 \
    ZUL_DEFINE_PLUGIN_WRAPPERS(Type, IdlType)
#define ZUL_DEFINE_STRUCT_PLUGIN(Type) ZUL_DEFINE_PLUGIN(Type, zul::idl::Struct<Type>)
#define ZUL_DEFINE_ENUMERATION_PLUGIN(Type) ZUL_DEFINE_PLUGIN_CODEC(Type, zul::idl::Enum<Type>)

ZUL_FOR_EACH_ENUMERATION(ZUL_DEFINE_ENUMERATION_PLUGIN, ZUL_RoutingService_Administration_)
ZUL_DEFINE_PLUGIN_CODEC(ZUL_RoutingService_Administration_EntityName, admin::EntityName<admin::RoutingModule>)
ZUL_DEFINE_PLUGIN_SUPPORT(ZUL_RoutingService_Administration_EntityName,
                          admin::EntityName<admin::RoutingModule>)
ZUL_FOR_EACH_STRUCT(ZUL_DEFINE_STRUCT_PLUGIN, ZUL_RoutingService_Administration_)
ZUL_DEFINE_PLUGIN(ZUL_RoutingService_Administration_Command,
                  zul::idl::Union<ZUL_RoutingService_Administration_Command>)

#define ZUL_DEFINE_PLUGIN_ENDPOINT(Type)                                                                     \
    ZULParticipantData* Type##Plugin_on_participant_attached() {                                             \
        return ZULParticipantData_new();                                                                     \
    }                                                                                                        \
    void Type##Plugin_on_participant_detached(ZULParticipantData* data) {                                    \
        ZULParticipantData_delete(data);                                                                     \
    }                                                                                                        \
    ZULEndpointData* Type##Plugin_on_endpoint_attached(ZULParticipantData* data,                             \
                                                       const ZULEndpointInfo* info) {                        \
        return zul::idl::EndpointOperations<zul::idl::Struct<Type>>::attach(data, *info);                    \
    }                                                                                                        \
    void Type##Plugin_on_endpoint_detached(ZULEndpointData* data) {                                          \
        ZULEndpointData_delete(data);                                                                        \
    }                                                                                                        \
    Type* Type##Plugin_get_sample(ZULEndpointData* data) {                                                   \
        return static_cast<Type*>(ZULEndpointData_getSample(data));                                          \
    }                                                                                                        \
    void Type##Plugin_return_sample(ZULEndpointData* data, Type* sample) {                                   \
        ZULEndpointData_returnSample(data, sample);                                                          \
    }
ZUL_DEFINE_PLUGIN_ENDPOINT(ZUL_RoutingService_Administration_CommandRequest)
ZUL_DEFINE_PLUGIN_ENDPOINT(ZUL_RoutingService_Administration_CommandResponse)
