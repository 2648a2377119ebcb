// The library's callbacks leave bits in `pending_`; the thread takes all bits at once and calls the listener
// without the lock, so that it may block for as long as it likes.
#include "middleware/fastdds/delivery_thread.h"

#include "middleware/fastdds/library_call.h"

namespace zul {

namespace {

using Callback = void (*DDS_DataReaderListener::*)(void*, DDS_DataReader*);
struct Delivery {
    DDS_StatusMask status;
    Callback callback;
};
// Data comes last: a match is known before its first sample is delivered.
constexpr Delivery DELIVERIES[] = {
    {DDS_SUBSCRIPTION_MATCHED_STATUS, &DDS_DataReaderListener::on_subscription_matched},
    {DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS, &DDS_DataReaderListener::on_requested_incompatible_qos},
    {DDS_REQUESTED_DEADLINE_MISSED_STATUS, &DDS_DataReaderListener::on_requested_deadline_missed},
    {DDS_LIVELINESS_CHANGED_STATUS, &DDS_DataReaderListener::on_liveliness_changed},
    {DDS_SAMPLE_REJECTED_STATUS, &DDS_DataReaderListener::on_sample_rejected},
    {DDS_SAMPLE_LOST_STATUS, &DDS_DataReaderListener::on_sample_lost},
    {DDS_DATA_AVAILABLE_STATUS, &DDS_DataReaderListener::on_data_available},
};

} // namespace

DeliveryThread::DeliveryThread(DDS_DataReader* reader, const DDS_DataReaderListener& listener,
                               DDS_StatusMask mask)
    : reader_(reader), listener_(listener), mask_(mask) {
    const BlockedSignals blocked;
    thread_ = std::thread([this] { run(); });
}

void DeliveryThread::notify(DDS_StatusMask status) {
    if ((status & mask_) != 0) {
        const std::lock_guard lock(mutex_);
        pending_ |= status;
        wake_.notify_one();
    }
}

void DeliveryThread::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        wake_.notify_one();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

void DeliveryThread::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return stopping_ || pending_ != 0; });
        if (stopping_) {
            return;
        }
        const DDS_StatusMask statuses = pending_;
        pending_ = 0;
        lock.unlock();
        for (const Delivery& delivery : DELIVERIES) {
            const auto callback = listener_.*delivery.callback;
            if ((statuses & delivery.status) != 0 && callback != nullptr) {
                callback(listener_.listener_data, reader_);
            }
        }
        lock.lock();
    }
}

} // namespace zul
