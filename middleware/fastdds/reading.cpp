// Reading and taking: the library decodes into samples of the type's pool, which go out as loans or as
// copies. Whatever may fail comes before samples are taken, because what is taken and not returned is lost.
#include "middleware/fastdds/entities.h"
#include "middleware/fastdds/library_call.h"
#include "middleware/fastdds/pooled_samples.h"
#include "middleware/fastdds/qos_mapping.h"

#include <algorithm>
#include <fastdds/dds/subscriber/SampleInfo.hpp>

namespace fast = eprosima::fastdds::dds;

namespace {

constexpr const char* CONTEXT = "DDS_DataReader_read_or_take_untyped";

// Nil comes before the one instance, and nothing after it, whatever else a handle may once have named.
DDS_ReturnCode_t checkInstance(const DDS_ReadOrTakeParams& params) {
    if (params.instances == DDS_ANY_INSTANCE) {
        return DDS_RETCODE_OK;
    }
    if (params.handle == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (params.instances == DDS_THIS_INSTANCE) {
        return *params.handle == ZUL_HANDLE_KEYLESS_INSTANCE ? DDS_RETCODE_OK : DDS_RETCODE_BAD_PARAMETER;
    }
    return params.handle->isValid == 0 ? DDS_RETCODE_OK : DDS_RETCODE_NO_DATA;
}

// What the standard asks of the arguments, and of the two sequences together.
DDS_ReturnCode_t checkArguments(const DDS_DataSeqView& data, const DDS_SampleInfoSeq* infos,
                                const DDS_ReadOrTakeParams& params) {
    const bool isLimited = params.max_samples != DDS_LENGTH_UNLIMITED;
    if (infos == nullptr || (isLimited && params.max_samples < 1)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    ZULSequence::open(infos, CONTEXT);
    const bool isPair =
        data.length == infos->length && data.maximum == infos->maximum && data.has_ownership == infos->owned;
    const bool hasRoom =
        data.maximum == 0 || (data.has_ownership && !(isLimited && params.max_samples > data.maximum));
    return isPair && hasRoom ? checkInstance(params) : DDS_RETCODE_PRECONDITION_NOT_MET;
}

// How many samples this call asks the pool for; `limit` is the most that it may return.
DDS_Long samplesToAskFor(const DDS_DataReader& self, const DDS_ReadOrTakeParams& params, DDS_Long limit) {
    if (params.max_samples != DDS_LENGTH_UNLIMITED) {
        limit = std::min(limit, params.max_samples);
    }
    // As long as no read has left samples behind, what is unread is all that a take can find.
    if (params.take && !self.leavesReadSamples) {
        const auto unread =
            static_cast<DDS_Long>(std::min<std::uint64_t>(self.reader->get_unread_count(), INT32_MAX));
        limit = std::min(limit, std::max<DDS_Long>(unread, 1));
    }
    return limit;
}

// May throw when memory runs out, but not after samples were taken.
DDS_ReturnCode_t readOrTake(DDS_DataReader& self, const DDS_DataSeqView& data, DDS_SampleInfoSeq* infos,
                            const DDS_ReadOrTakeParams& params, DDS_ReceivedSamples& received) {
    const DDS_ReturnCode_t refusal = checkArguments(data, infos, params);
    if (refusal != DDS_RETCODE_OK) {
        return refusal;
    }
    DDS_ReadCondition states{params.sample_states, params.view_states, params.instance_states};
    if (params.condition != nullptr && !self.conditions.find(params.condition, states)) {
        return DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    const bool asLoan = data.maximum == 0;
    const DDS_Long limit = asLoan ? self.maxSamples : std::min(self.maxSamples, data.maximum);
    const DDS_Long wanted = samplesToAskFor(self, params, limit);
    zul::PooledSamples samples(*self.adapter, wanted);
    const auto room = static_cast<DDS_Long>(samples.maximum());
    if (room == 0) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    std::list<zul::Loan> loan(1);
    std::vector<void*>& filled = loan.front().samples;
    filled.reserve(samples.maximum());
    loan.front().infos.resize(asLoan ? samples.maximum() : 0);
    fast::SampleInfoSeq libraryInfos;
    libraryInfos.length(samples.maximum()); // makes room
    libraryInfos.length(0);
    const auto operation = params.take ? &fast::DataReader::take : &fast::DataReader::read;
    const DDS_ReturnCode_t code = zul::toReturnCode((self.reader->*operation)(
        samples, libraryInfos, room, static_cast<fast::SampleStateMask>(states.sampleStates),
        static_cast<fast::ViewStateMask>(states.viewStates),
        static_cast<fast::InstanceStateMask>(states.instanceStates)));
    if (code != DDS_RETCODE_OK) {
        return code;
    }
    self.leavesReadSamples = self.leavesReadSamples || !params.take;
    const DDS_Long count = samples.length();
    if (params.take && count == room) {
        self.note(DDS_DATA_AVAILABLE_STATUS); // there may be more than this call could return
    }
    DDS_SampleInfo* const filledInfos = asLoan ? loan.front().infos.data() : infos->contiguous;
    for (DDS_Long i = 0; i < count; ++i) {
        filledInfos[i] = zul::toSampleInfo(libraryInfos[i]);
        filledInfos[i].instance_handle = ZUL_HANDLE_KEYLESS_INSTANCE;
    }
    received = {.is_loan = asLoan, .samples = nullptr, .count = count};
    samples.release(filled);
    if (asLoan) {
        received.samples = filled.data();
        ZULSequence::loan(infos, filledInfos, nullptr, count, count, CONTEXT);
        self.loans.keep(loan);
        return DDS_RETCODE_OK;
    }
    bool copied = true;
    auto* destination = static_cast<std::uint8_t*>(data.contiguous_buffer);
    for (void* sample : filled) {
        copied = copied && self.adapter->copyReaderSample(destination, sample);
        destination += data.element_size;
        self.adapter->returnReaderSample(sample);
    }
    ZULSequence::set_length(infos, copied ? count : 0, CONTEXT);
    return copied ? DDS_RETCODE_OK : DDS_RETCODE_ERROR;
}

} // namespace

DDS_ReadCondition* DDS_DataReader_create_readcondition(DDS_DataReader* self, DDS_SampleStateMask sampleStates,
                                                       DDS_ViewStateMask viewStates,
                                                       DDS_InstanceStateMask instanceStates) {
    return self == nullptr ? nullptr : zul::callLibrary(__func__, nullptr, [&] {
        return self->conditions.create({sampleStates, viewStates, instanceStates});
    });
}

DDS_ReturnCode_t DDS_DataReader_delete_readcondition(DDS_DataReader* self, DDS_ReadCondition* condition) {
    if (self == nullptr || condition == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return self->conditions.remove(condition) ? DDS_RETCODE_OK : DDS_RETCODE_PRECONDITION_NOT_MET;
}

DDS_ReturnCode_t DDS_DataReader_read_or_take_untyped(DDS_DataReader* self, const DDS_DataSeqView& data,
                                                     DDS_SampleInfoSeq* infos,
                                                     const DDS_ReadOrTakeParams& params,
                                                     DDS_ReceivedSamples* received) {
    if (self == nullptr || received == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return zul::callLibrary(__func__, DDS_RETCODE_OUT_OF_RESOURCES,
                            [&] { return readOrTake(*self, data, infos, params, *received); });
}

DDS_ReturnCode_t DDS_DataReader_return_loan_untyped(DDS_DataReader* self, void** samples, DDS_Long /*count*/,
                                                    DDS_SampleInfoSeq* infos) {
    if (self == nullptr || infos == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (!self->loans.giveBack(samples, infos->contiguous, *self->adapter)) {
        return DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    ZULSequence::unloan(infos, __func__);
    return DDS_RETCODE_OK;
}
