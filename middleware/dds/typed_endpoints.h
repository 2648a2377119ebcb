// What typed readers and writers are made of: narrowing by type name, the parameter record of every typed
// writer operation, and the one routine that every typed read and take goes through.
#pragma once

#include "middleware/base/log.h"
#include "middleware/dds/dds.h"

#include <algorithm>
#include <cstring>

namespace zul::dds {

inline DDS_ReturnCode_t refuse(const char* context, const char* argument) {
    ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_BAD_PARAMETER_s, argument);
    return DDS_RETCODE_BAD_PARAMETER;
}

// Compares the name of the endpoint's type plugin, not the name it is registered under: a program may
// register a type under a name of its own.
template <class Typed, class Untyped>
Typed* narrow(Untyped* endpoint, const char* pluginTypeName, const char* typeName, const char* context,
              const char* nullMessage, const char* wrongTypeMessage) {
    if (endpoint == nullptr || pluginTypeName == nullptr) {
        refuse(context, nullMessage);
        return nullptr;
    }
    if (std::strcmp(pluginTypeName, typeName) != 0) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_ASSERTION_s, wrongTypeMessage);
        return nullptr;
    }
    return reinterpret_cast<Typed*>(endpoint);
}
template <class Typed>
Typed* narrowWriter(DDS_DataWriter* writer, const char* typeName) {
    return narrow<Typed>(writer, DDS_DataWriter_get_plugin_type_name(writer), typeName, "TDataWriter_narrow",
                         "null writer", "wrong type writer");
}
template <class Typed>
Typed* narrowReader(DDS_DataReader* reader, const char* typeName) {
    return narrow<Typed>(reader, DDS_DataReader_get_plugin_type_name(reader), typeName, "TDataReader_narrow",
                         "null reader", "wrong type reader");
}
template <class Untyped, class Typed>
Untyped* widen(Typed* endpoint, const char* context, const char* nullMessage) {
    if (endpoint == nullptr) {
        refuse(context, nullMessage);
    }
    return reinterpret_cast<Untyped*>(endpoint);
}

// The parameters of a writer operation; false, and a log line, where one is missing.
inline bool writeParams(DDS_WriteParams_t& params, const DDS_InstanceHandle_t* handle,
                        const DDS_Time_t* timestamp, const char* context) {
    if (handle == nullptr || timestamp == nullptr) {
        refuse(context, handle == nullptr ? "handle" : "source_timestamp");
        return false;
    }
    params = {.handle = *handle, .source_timestamp = *timestamp};
    return true;
}

// Whether each element that may be filled has its buffers; asked before samples are taken, which would be
// lost otherwise.
template <class T, class Traits>
bool canTakeSamples(const DDS_Sequence<T, Traits>& data, DDS_Long maxSamples) {
    const bool isLimited = maxSamples != DDS_LENGTH_UNLIMITED;
    const DDS_Long count = isLimited ? std::min(maxSamples, data.maximum) : data.maximum;
    bool isReady = true;
    for (DDS_Long i = 0; isReady && data.owned && i < count; ++i) {
        isReady = Traits::prepare(data.contiguous[i], nullptr);
    }
    return isReady;
}

template <class T, class Traits>
DDS_ReturnCode_t readOrTake(DDS_DataReader* reader, DDS_Sequence<T, Traits>* data, DDS_SampleInfoSeq* infos,
                            const DDS_ReadOrTakeParams& params, const char* context) {
    if (data == nullptr || infos == nullptr) {
        return refuse(context, data == nullptr ? "received_data" : "info_seq");
    }
    ZULSequence::open(data, context);
    if (!canTakeSamples(*data, params.max_samples)) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_ASSERTION_s,
                          "received_data has elements without buffers; initialize them first");
        return DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    const DDS_DataSeqView view{.length = data->length,
                               .maximum = data->maximum,
                               .has_ownership = data->owned,
                               .contiguous_buffer = data->contiguous,
                               .element_size = sizeof(T)};
    DDS_ReceivedSamples received{};
    const DDS_ReturnCode_t code = DDS_DataReader_read_or_take_untyped(reader, view, infos, params, &received);
    if (code == DDS_RETCODE_NO_DATA) {
        ZULSequence::set_length(data, 0, context);
        ZULSequence::set_length(infos, 0, context);
    }
    if (code != DDS_RETCODE_OK) {
        return code;
    }
    if (!received.is_loan) {
        return ZULSequence::set_length(data, received.count, context) ? DDS_RETCODE_OK : DDS_RETCODE_ERROR;
    }
    if (!ZULSequence::loan(data, nullptr, reinterpret_cast<T**>(received.samples), received.count,
                           received.count, context)) {
        DDS_DataReader_return_loan_untyped(reader, received.samples, received.count, infos);
        return DDS_RETCODE_ERROR;
    }
    return DDS_RETCODE_OK;
}

template <class T, class Traits>
DDS_ReturnCode_t readOrTakeWithCondition(DDS_DataReader* reader, DDS_Sequence<T, Traits>* data,
                                         DDS_SampleInfoSeq* infos, DDS_ReadOrTakeParams params,
                                         const DDS_ReadCondition* condition, const char* context) {
    if (condition == nullptr) {
        return refuse(context, "condition");
    }
    params.condition = condition;
    return readOrTake(reader, data, infos, params, context);
}

// The next unread sample, copied into the caller's.
template <class Seq, class T>
DDS_ReturnCode_t nextSample(DDS_DataReader* reader, T* sample, DDS_SampleInfo* info, bool take,
                            const char* context) {
    if (sample == nullptr || info == nullptr) {
        return refuse(context, sample == nullptr ? "received_data" : "sample_info");
    }
    // Sequences over the caller's two records; they are never finalised.
    Seq one{};
    DDS_SampleInfoSeq infos{};
    ZULSequence::initialize(&one, context);
    ZULSequence::initialize(&infos, context);
    one.contiguous = sample;
    infos.contiguous = info;
    one.maximum = infos.maximum = 1;
    return readOrTake(reader, &one, &infos,
                      {.take = take, .max_samples = 1, .sample_states = DDS_NOT_READ_SAMPLE_STATE}, context);
}

template <class T, class Traits>
DDS_ReturnCode_t returnLoan(DDS_DataReader* reader, DDS_Sequence<T, Traits>* data, DDS_SampleInfoSeq* infos,
                            const char* context) {
    if (data == nullptr || infos == nullptr) {
        return refuse(context, "received_data");
    }
    if (ZULSequence::has_ownership(data, context) && ZULSequence::has_ownership(infos, context)) {
        return DDS_RETCODE_OK; // nothing was loaned
    }
    const DDS_ReturnCode_t code = DDS_DataReader_return_loan_untyped(
        reader, reinterpret_cast<void**>(data->discontiguous), data->length, infos);
    if (code == DDS_RETCODE_OK && !ZULSequence::unloan(data, context)) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_ANY_FAILURE_s, "unloan sequence");
        return DDS_RETCODE_ERROR;
    }
    return code;
}

} // namespace zul::dds
