// The reader: its delivery thread, takes and loans.
#include "middleware/dds/reading_rules.h"
#include "tests/fake_dds/fake_dds.h"

#include <chrono>
#include <cstring>
#include <utility>

using namespace fake_dds;

namespace {

constexpr char POISON = '\x5A';

Response* makeResponse(const Answer& answer) {
    using Kind = ZUL_RoutingService_Administration_CommandResponseKind;
    Response* response = ZUL_RoutingService_Administration_CommandResponseTypeSupport_create_data();
    response->id = answer.id;
    response->kind = static_cast<Kind>(answer.kind);
    response->is_final = answer.isFinal ? 1 : 0;
    DDS_String_free(response->message); // whose bound the answer's message may exceed
    response->message = DDS_String_dup(answer.message.c_str());
    return response;
}

void release(void* sample) {
    auto* response = static_cast<Response*>(sample);
    response->id = {0x5A5A5A5A, 0x5A5A5A5A, 0x5A5A5A5A};
    std::memset(response->message, POISON, std::strlen(response->message));
    ZUL_RoutingService_Administration_CommandResponseTypeSupport_delete_data(response);
}

} // namespace

void DDS_DataReader::run(const std::stop_token& stop) {
    std::unique_lock lock(world().mutex);
    while (change.wait(lock, stop, [this] { return isPending; }) && !stop.stop_requested()) {
        isPending = false;
        isBusy = true;
        lock.unlock();
        listener.on_data_available(listener.listener_data, this);
        lock.lock();
        isBusy = false;
        change.notify_all();
    }
}

DDS_DataReader::~DDS_DataReader() {
    for (const Sample& sample : available) {
        release(sample.response);
    }
    for (void* sample : loan) {
        release(sample);
    }
}

DDS_ReturnCode_t DDS_DataReader_read_or_take_untyped(DDS_DataReader* self, const DDS_DataSeqView& data,
                                                     DDS_SampleInfoSeq* infos,
                                                     const DDS_ReadOrTakeParams& params,
                                                     DDS_ReceivedSamples* received) {
    const DDS_ReturnCode_t failure = world().note(params.take ? "take" : "read");
    const DDS_ReturnCode_t code = failure != DDS_RETCODE_OK ? failure : ZULReading_check(data, infos, params);
    if (code != DDS_RETCODE_OK) {
        return code;
    }
    if (data.maximum > 0) {
        return DDS_RETCODE_UNSUPPORTED; // only loans
    }
    const std::lock_guard lock(world().mutex);
    const auto count = static_cast<DDS_Long>(self->available.size());
    if (count == 0) {
        return DDS_RETCODE_NO_DATA;
    }
    if (!self->loan.empty()) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    for (const DDS_DataReader::Sample& sample : self->available) {
        DDS_SampleInfo& info = self->loanInfos.emplace_back();
        info.instance_handle = ZUL_HANDLE_KEYLESS_INSTANCE;
        info.valid_data = sample.isValid;
        self->loan.push_back(sample.response);
    }
    self->available.clear();
    ZULSequence::loan_contiguous(infos, self->loanInfos.data(), count, count, __func__);
    *received = {.is_loan = true, .samples = self->loan.data(), .count = count};
    ++world().openLoans;
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_DataReader_return_loan_untyped(DDS_DataReader* self, void** samples, DDS_Long count,
                                                    DDS_SampleInfoSeq* infos) {
    if (const auto hook = world().currentHooks().onReturnLoan) {
        hook();
    }
    const DDS_ReturnCode_t code = world().note("return_loan");
    if (code != DDS_RETCODE_OK) {
        return code;
    }
    const std::lock_guard lock(world().mutex);
    if (samples != self->loan.data() || static_cast<std::size_t>(count) != self->loan.size() ||
        infos->contiguous != self->loanInfos.data()) {
        return DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    for (void* sample : std::exchange(self->loan, {})) {
        release(sample);
    }
    ZULSequence::unloan(infos, __func__);
    self->loanInfos = {};
    --world().openLoans;
    return DDS_RETCODE_OK;
}

const char* DDS_DataReader_get_plugin_type_name(const DDS_DataReader*) {
    return ZUL_RoutingService_Administration_CommandResponseTypeSupport_get_type_name();
}

namespace fake_dds {

void deliver(const std::vector<Answer>& answers) {
    const std::lock_guard lock(world().mutex);
    if (DDS_DataReader* target = world().reader()) {
        for (const Answer& answer : answers) {
            target->available.push_back({makeResponse(answer), answer.isValid});
        }
        target->isPending = true;
        target->change.notify_all();
    }
}

bool awaitIdle() {
    std::unique_lock lock(world().mutex);
    DDS_DataReader* target = world().reader();
    return target == nullptr || target->change.wait_for(lock, std::chrono::seconds(30), [target] {
        return !target->isBusy && !target->isPending;
    });
}

} // namespace fake_dds
