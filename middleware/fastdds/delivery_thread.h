// Delivery thread: calls one reader's listener, on a thread of its own. The library's callback only leaves a
// note here and returns, because a callback that blocks would also block the thread that receives
// acknowledgements. All signals are blocked on this thread.
#pragma once

#include "middleware/dds/dds.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zul {

class DeliveryThread {
public:
    // `reader` outlives the thread. Statuses outside `mask` are not delivered.
    DeliveryThread(DDS_DataReader* reader, const DDS_DataReaderListener& listener, DDS_StatusMask mask);
    ~DeliveryThread() { stop(); }
    DeliveryThread(const DeliveryThread&) = delete;
    DeliveryThread& operator=(const DeliveryThread&) = delete;

    // Notes that a status has changed; from any thread, never blocks on the listener.
    void notify(DDS_StatusMask status);
    // Waits for a running callback and ends the thread. No callback runs afterwards.
    void stop();

private:
    void run();

    DDS_DataReader* reader_;
    DDS_DataReaderListener listener_;
    DDS_StatusMask mask_;
    std::mutex mutex_;
    std::condition_variable wake_;
    DDS_StatusMask pending_ = 0;
    bool stopping_ = false;
    std::thread thread_; // last: starts when everything else is there
};

} // namespace zul
