// Reading and taking: samples of the type's pool, decoded into by the library, as loans or as copies.
#include "middleware/dds/reading_rules.h"
#include "middleware/fastdds/entities.h"
#include "middleware/fastdds/library_call.h"
#include "middleware/fastdds/qos_mapping.h"

#include <algorithm>
#include <fastdds/dds/core/LoanableCollection.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>

namespace fast = eprosima::fastdds::dds;

namespace {

// A collection that owns pointers to pooled samples: the library decodes into them and leaves out what it
// cannot decode. Its own loans would hand out undecodable samples as valid.
class PooledSamples final : public fast::LoanableCollection {
public:
    PooledSamples(const zul::TypeAdapter& adapter, DDS_Long count) : adapter_(adapter) {
        samples_.reserve(static_cast<std::size_t>(count));
        void* sample = nullptr;
        while (static_cast<DDS_Long>(samples_.size()) < count &&
               (sample = adapter.getReaderSample()) != nullptr) {
            samples_.push_back(sample);
        }
        elements_ = samples_.data();
        maximum_ = static_cast<size_type>(samples_.size());
    }
    ~PooledSamples() {
        std::for_each(samples_.begin(), samples_.end(),
                      [this](void* sample) { adapter_.returnReaderSample(sample); });
    }
    PooledSamples(const PooledSamples&) = delete;
    PooledSamples& operator=(const PooledSamples&) = delete;

    // Hands the filled samples over to a vector that has room for them; the others go back to the pool.
    void release(std::vector<void*>& filled) {
        filled.assign(samples_.begin(), samples_.begin() + length_);
        samples_.erase(samples_.begin(), samples_.begin() + length_);
    }

private:
    void resize(size_type /*newLength*/) override {} // never grows

    const zul::TypeAdapter& adapter_;
    std::vector<void*> samples_;
};

// The default limit matches what the reader asks of its pool; `limit` is what one call may return.
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

struct States {
    fast::SampleStateMask sample;
    fast::ViewStateMask view;
    fast::InstanceStateMask instance;
};

DDS_ReturnCode_t statesOf(const DDS_DataReader& self, const DDS_ReadOrTakeParams& params, States& states) {
    DDS_ReadCondition condition{params.sample_states, params.view_states, params.instance_states};
    if (params.condition != nullptr) {
        const std::lock_guard lock(self.conditionsMutex);
        const auto own = std::find_if(self.conditions.begin(), self.conditions.end(),
                                      [&params](const auto& each) { return each.get() == params.condition; });
        if (own == self.conditions.end()) {
            return DDS_RETCODE_PRECONDITION_NOT_MET;
        }
        condition = **own;
    }
    states = {static_cast<fast::SampleStateMask>(condition.sampleStates),
              static_cast<fast::ViewStateMask>(condition.viewStates),
              static_cast<fast::InstanceStateMask>(condition.instanceStates)};
    return DDS_RETCODE_OK;
}

// May throw when memory runs out, but not after samples were taken.
DDS_ReturnCode_t readOrTake(DDS_DataReader& self, const DDS_DataSeqView& data, DDS_SampleInfoSeq* infos,
                            const DDS_ReadOrTakeParams& params, DDS_ReceivedSamples& received) {
    constexpr const char* CONTEXT = "DDS_DataReader_read_or_take_untyped";
    DDS_ReturnCode_t code = ZULReading_check(data, infos, params);
    States states;
    if (code == DDS_RETCODE_OK) {
        code = statesOf(self, params, states);
    }
    if (code != DDS_RETCODE_OK) {
        return code;
    }
    const bool asLoan = data.maximum == 0;
    const DDS_Long limit = asLoan ? self.maxSamples : std::min(self.maxSamples, data.maximum);
    const DDS_Long wanted = samplesToAskFor(self, params, limit);
    PooledSamples samples(*self.adapter, wanted);
    const auto room = static_cast<DDS_Long>(samples.maximum());
    if (room == 0) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    // Whatever may fail comes before samples are taken, which would be lost later.
    std::list<DDS_DataReader::Loan> loan(1);
    std::vector<void*>& filled = loan.front().samples;
    filled.reserve(samples.maximum());
    loan.front().infos.resize(asLoan ? samples.maximum() : 0);
    fast::SampleInfoSeq libraryInfos;
    libraryInfos.length(samples.maximum()); // makes room
    libraryInfos.length(0);
    code = zul::toReturnCode(
        params.take
            ? self.reader->take(samples, libraryInfos, room, states.sample, states.view, states.instance)
            : self.reader->read(samples, libraryInfos, room, states.sample, states.view, states.instance));
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
        ZULSequence::loan_contiguous(infos, filledInfos, count, count, CONTEXT);
        const std::lock_guard lock(self.loansMutex);
        self.loans.splice(self.loans.end(), loan);
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
    if (self == nullptr) {
        return nullptr;
    }
    const std::lock_guard lock(self->conditionsMutex);
    return self->conditions.emplace_back(new DDS_ReadCondition{sampleStates, viewStates, instanceStates})
        .get();
}

DDS_ReturnCode_t DDS_DataReader_delete_readcondition(DDS_DataReader* self, DDS_ReadCondition* condition) {
    if (self == nullptr || condition == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const std::lock_guard lock(self->conditionsMutex);
    const auto isIt = [condition](const auto& own) {
        return own.get() == condition;
    };
    return std::erase_if(self->conditions, isIt) > 0 ? DDS_RETCODE_OK : DDS_RETCODE_PRECONDITION_NOT_MET;
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
    const std::lock_guard lock(self->loansMutex);
    const auto loan = std::find_if(self->loans.begin(), self->loans.end(),
                                   [samples](const auto& each) { return each.samples.data() == samples; });
    if (loan == self->loans.end() || infos->contiguous != loan->infos.data()) {
        return DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    for (void* sample : loan->samples) {
        self->adapter->returnReaderSample(sample);
    }
    ZULSequence::unloan(infos, __func__);
    self->loans.erase(loan);
    return DDS_RETCODE_OK;
}
