// Type plugin: the record of operations through which the middleware creates, copies, encodes and delivers
// samples of one data type, and the default endpoint data (sample pool and, for a writer, buffer pool) that
// plugins build on.
#pragma once

#include "middleware/base/basic_types.h"
#include "middleware/cdr/stream.h"
#include "middleware/idl/type_code.h"

#include <cstddef>

struct ZULParticipantData; // per participant and type
struct ZULEndpointData;    // per endpoint kind, participant and type

enum ZULEndpointKind { ZUL_ENDPOINT_WRITER, ZUL_ENDPOINT_READER };
struct ZULEndpointInfo {
    ZULEndpointKind kind;
};

enum ZULKeyKind { ZUL_KEY_NONE = 0, ZUL_KEY_USER = 1 };

// All sizes are bytes. `sample` is a record of the plugin's type. The record is plain data: a copy works like
// the original, which may be deleted once a participant has registered it.
struct ZULTypePlugin {
    ZULParticipantData* (*onParticipantAttached)();
    void (*onParticipantDetached)(ZULParticipantData*);
    ZULEndpointData* (*onEndpointAttached)(ZULParticipantData*, const ZULEndpointInfo&); // null on failure
    void (*onEndpointDetached)(ZULEndpointData*);
    bool (*copySample)(ZULEndpointData*, void* destination, const void* source);
    void* (*createSample)(ZULEndpointData*); // null on failure
    void (*deleteSample)(ZULEndpointData*, void* sample);
    bool (*serialize)(ZULEndpointData*, const void* sample, ZULCdrOutput*, bool serializeEncapsulation,
                      std::uint16_t encapsulationId, bool serializeSample, void* endpointPluginQos);
    bool (*deserialize)(ZULEndpointData*, void* sample, ZULCdrInput*, bool deserializeEncapsulation,
                        bool deserializeSample, void* endpointPluginQos);
    void* (*getSample)(ZULEndpointData*); // from the pool
    void (*returnSample)(ZULEndpointData*, void* sample);
    std::size_t (*getSerializedSampleMaxSize)(ZULEndpointData*, bool includeEncapsulation,
                                              std::uint16_t encapsulationId, std::size_t currentAlignment);
    std::size_t (*getSerializedSampleMinSize)(ZULEndpointData*, bool includeEncapsulation,
                                              std::uint16_t encapsulationId, std::size_t currentAlignment);
    std::size_t (*getSerializedSampleSize)(ZULEndpointData*, bool includeEncapsulation,
                                           std::uint16_t encapsulationId, std::size_t currentAlignment,
                                           const void* sample);
    ZULKeyKind (*getKeyKind)();
    // Keyless types leave these two empty.
    bool (*serializeKey)(ZULEndpointData*, const void* sample, ZULCdrOutput*);
    bool (*deserializeKey)(ZULEndpointData*, void* sample, ZULCdrInput*);
    // What is announced to other participants; may be replaced before registration.
    const DDS_TypeCode* typeCode;
    std::uint8_t* (*getBuffer)(ZULEndpointData*, std::size_t size); // writer only; null on failure
    void (*returnBuffer)(ZULEndpointData*, std::uint8_t* buffer);
    const char* typeName; // the plugin's own type name; a participant may register it under another
};

// What the default endpoint data asks of the plugin.
struct ZULEndpointDataOperations {
    void* (*createData)();
    void (*destroyData)(void* sample);
};

ZULParticipantData* ZULParticipantData_new();
void ZULParticipantData_delete(ZULParticipantData* data);

// Null when memory is exhausted. Thread-safe afterwards.
ZULEndpointData* ZULEndpointData_new(const ZULEndpointDataOperations& operations);
// Frees all samples and buffers, those still lent out included.
void ZULEndpointData_delete(ZULEndpointData* data);

void* ZULEndpointData_createSample(ZULEndpointData* data);
void ZULEndpointData_deleteSample(ZULEndpointData* data, void* sample);
// From the pool, which grows on demand; null when memory is exhausted. Returning null, or what is not lent,
// does nothing.
void* ZULEndpointData_getSample(ZULEndpointData* data);
void ZULEndpointData_returnSample(ZULEndpointData* data, void* sample);

// The writer's buffers: `maximumSize` bytes each, kept for reuse. One is made at once; false if that fails.
bool ZULEndpointData_createBufferPool(ZULEndpointData* data, std::size_t maximumSize);
// Null when `size` is above that maximum, or memory is exhausted.
std::uint8_t* ZULEndpointData_getBuffer(ZULEndpointData* data, std::size_t size);
void ZULEndpointData_returnBuffer(ZULEndpointData* data, std::uint8_t* buffer);

// Largest serialized size of a sample of this endpoint, as the plugin recorded it; 0 until then, and for
// null data.
std::size_t ZULEndpointData_maxSerializedSize(const ZULEndpointData* data);
void ZULEndpointData_setMaxSerializedSize(ZULEndpointData* data, std::size_t size);
