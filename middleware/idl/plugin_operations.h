// Plugin operations of one IDL type, in the shape that the middleware's plugin record and the named
// operations take.
#pragma once

#include "middleware/idl/bounds.h"
#include "middleware/idl/codec.h"
#include "middleware/idl/data_operations.h"
#include "middleware/idl/print.h"
#include "middleware/idl/type_code_of.h"
#include "middleware/idl/type_plugin.h"

#include <cstdio>

namespace zul::idl {

// An endpoint whose samples may reach this size cannot describe a parameter by a 16-bit length.
constexpr std::size_t SHORT_FORM_LIMIT = 65536;

template <class IdlType>
inline constexpr bool travelsAsParameterList = false;
template <Composite IdlType>
inline constexpr bool travelsAsParameterList<IdlType> =
    Description<typename IdlType::Value>::form == WireForm::MUTABLE;

template <class IdlType>
struct PluginOperations {
    using Value = typename IdlType::Value;

    // ---- samples ----
    static Value* createData(const Allocation& params) {
        auto* sample = ZULHeap_allocate<Value>();
        if (sample != nullptr && !initialize(IdlType{}, *sample, params)) {
            ZULHeap_free(sample);
            return nullptr;
        }
        return sample;
    }
    static void destroyData(Value* sample) {
        if (sample != nullptr) {
            finalize(IdlType{}, *sample);
            ZULHeap_free(sample);
        }
    }
    static void printData(const Value* sample, const char* description, int indent) {
        if (sample == nullptr) {
            printHead(description, indent);
            std::printf("\nNULL\n");
        } else {
            print(IdlType{}, *sample, description, indent);
        }
    }

    // ---- wire ----
    // Flattened: calls that the compiler would leave inside cost a fifth of a small request's encoding.
    [[gnu::flatten]] static bool serializeSample(ZULEndpointData* data, const Value& sample,
                                                 ZULCdrOutput& stream, bool serializeEncapsulation,
                                                 std::uint16_t encapsulationId, bool serializeBody) {
        const std::size_t previousOrigin = stream.origin;
        if (serializeEncapsulation) {
            if (!ZULEncapsulation_isValid(encapsulationId)) {
                return false;
            }
            if (travelsAsParameterList<IdlType>) {
                encapsulationId = ZULEncapsulation_toParameterList(encapsulationId);
            }
            if (!ZULCdrOutput_putEncapsulation(stream, encapsulationId)) {
                return false;
            }
        }
        const ZULParameterForm form = ZULEndpointData_maxSerializedSize(data) < SHORT_FORM_LIMIT
                                          ? ZUL_PARAMETER_SHORT
                                          : ZUL_PARAMETER_LONG;
        const bool written = !serializeBody || serialize(IdlType{}, stream, sample, form);
        stream.origin = previousOrigin;
        return written;
    }
    // Calls `body(stream)` after the header, with the alignment that the header sets.
    template <class Body>
    static bool afterEncapsulation(ZULCdrInput& stream, bool hasEncapsulation, Body body) {
        const std::size_t previousOrigin = stream.origin;
        if (hasEncapsulation && !ZULCdrInput_getEncapsulation(stream)) {
            return false;
        }
        const bool done = body(stream);
        stream.origin = previousOrigin;
        return done;
    }
    static bool deserializeSample(Value& sample, ZULCdrInput& stream, bool hasEncapsulation,
                                  bool deserializeBody) {
        return afterEncapsulation(stream, hasEncapsulation, [&](ZULCdrInput& body) {
            return !deserializeBody || idl::deserialize(IdlType{}, body, sample);
        });
    }
    // The form that the middleware calls: an unknown enumerator anywhere fails the sample, even where the end
    // of the stream would have excused it.
    static bool deserialize(Value& sample, ZULCdrInput& stream, bool hasEncapsulation, bool deserializeBody) {
        stream.unknownEnumerator = false;
        return deserializeSample(sample, stream, hasEncapsulation, deserializeBody) &&
               !stream.unknownEnumerator;
    }
    static bool skipSample(ZULCdrInput& stream, bool hasEncapsulation, bool skipBody) {
        return afterEncapsulation(stream, hasEncapsulation,
                                  [&](ZULCdrInput& body) { return !skipBody || idl::skip(IdlType{}, body); });
    }
    // Exact bytes, counted by the code that writes them; 1 for an invalid identifier, 0 for a sample that
    // cannot be written.
    static std::size_t exactSize(ZULEndpointData* data, bool includeEncapsulation,
                                 std::uint16_t encapsulationId, std::size_t currentAlignment,
                                 const Value& sample) {
        if (includeEncapsulation && !ZULEncapsulation_isValid(encapsulationId)) {
            return 1; // oddity 25
        }
        ZULCdrOutput counter{.capacity = SIZE_MAX, .position = currentAlignment};
        return serializeSample(data, sample, counter, includeEncapsulation, encapsulationId, true)
                   ? counter.position - currentAlignment
                   : 0;
    }
};

// The operations that the middleware calls through a plugin record; there a sample is a void pointer.
template <class IdlType>
struct EndpointOperations {
    using Plugin = PluginOperations<IdlType>;
    using Value = typename Plugin::Value;

    static void* createSample() { return Plugin::createData(DDS_TYPE_ALLOCATION_PARAMS_DEFAULT); }
    static void destroySample(void* sample) { Plugin::destroyData(static_cast<Value*>(sample)); }
    static bool copySample(ZULEndpointData*, void* destination, const void* source) {
        return copy(IdlType{}, *static_cast<Value*>(destination), *static_cast<const Value*>(source));
    }
    static bool serialize(ZULEndpointData* data, const void* sample, ZULCdrOutput* stream, bool encapsulation,
                          std::uint16_t encapsulationId, bool body, void*) {
        return Plugin::serializeSample(data, *static_cast<const Value*>(sample), *stream, encapsulation,
                                       encapsulationId, body);
    }
    static bool deserialize(ZULEndpointData*, void* sample, ZULCdrInput* stream, bool encapsulation,
                            bool body, void*) {
        return Plugin::deserialize(*static_cast<Value*>(sample), *stream, encapsulation, body);
    }
    template <Bound bound>
    static std::size_t sizeBound(ZULEndpointData*, bool encapsulation, std::uint16_t encapsulationId,
                                 std::size_t currentAlignment) {
        return boundOf<bound>(IdlType{}, encapsulation, encapsulationId, currentAlignment);
    }
    static std::size_t exactSize(ZULEndpointData* data, bool encapsulation, std::uint16_t encapsulationId,
                                 std::size_t currentAlignment, const void* sample) {
        return Plugin::exactSize(data, encapsulation, encapsulationId, currentAlignment,
                                 *static_cast<const Value*>(sample));
    }
    static ZULKeyKind keyKind() { return ZUL_KEY_NONE; }

    static ZULEndpointData* attach(ZULParticipantData*, const ZULEndpointInfo& info) {
        ZULEndpointData* data =
            ZULEndpointData_new({.createData = createSample, .destroyData = destroySample});
        if (data == nullptr || info.kind != ZUL_ENDPOINT_WRITER) {
            return data;
        }
        const std::size_t maximum = sizeBound<Bound::MAXIMUM>(data, false, ZUL_ENCAPSULATION_CDR_LE, 0);
        ZULEndpointData_setMaxSerializedSize(data, maximum);
        // A buffer holds what the exact-size operation may report, the header included.
        if (!ZULEndpointData_createBufferPool(data, maximum + ZUL_ENCAPSULATION_SIZE)) {
            ZULEndpointData_delete(data);
            return nullptr;
        }
        return data;
    }

    static ZULTypePlugin* newPlugin(const char* typeName) {
        const DDS_TypeCode* code = typeCodeOrNull(IdlType{});
        auto* plugin = code != nullptr ? ZULHeap_allocate<ZULTypePlugin>() : nullptr;
        if (plugin != nullptr) {
            *plugin = {
                .onParticipantAttached = ZULParticipantData_new,
                .onParticipantDetached = ZULParticipantData_delete,
                .onEndpointAttached = attach,
                .onEndpointDetached = ZULEndpointData_delete,
                .copySample = copySample,
                .createSample = ZULEndpointData_createSample,
                .deleteSample = ZULEndpointData_deleteSample,
                .serialize = serialize,
                .deserialize = deserialize,
                .getSample = ZULEndpointData_getSample,
                .returnSample = ZULEndpointData_returnSample,
                .getSerializedSampleMaxSize = sizeBound<Bound::MAXIMUM>,
                .getSerializedSampleMinSize = sizeBound<Bound::MINIMUM>,
                .getSerializedSampleSize = exactSize,
                .getKeyKind = keyKind,
                .serializeKey = nullptr,
                .deserializeKey = nullptr,
                .typeCode = code,
                .getBuffer = ZULEndpointData_getBuffer,
                .returnBuffer = ZULEndpointData_returnBuffer,
                .typeName = typeName,
            };
        }
        return plugin;
    }
};

} // namespace zul::idl
