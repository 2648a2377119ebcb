// Responses on their way from the delivery threads to the thread that gathers them. Bounded in bytes: while
// that thread is busy elsewhere, as with a terminal that takes no output, delivery waits, and reliable
// writers with it.
#pragma once

#include "fleet/gathering.h"

#include <condition_variable>
#include <mutex>

namespace zul::fleet {

class ResponseQueue {
public:
    explicit ResponseQueue(std::size_t limit) : limit_(limit) {}

    // From any thread. Waits for room, and drops the response when the queue is closed.
    void push(Response&& response);
    // From any thread: one that came could not be kept.
    void noteLoss();
    struct Batch {
        std::vector<Response> responses;
        bool isIncomplete; // at least one is missing
    };
    // All that have come since the last call.
    Batch take();
    // Ends every wait for room, now and later.
    void close();

private:
    const std::size_t limit_; // bytes; one more response may go beyond it
    std::mutex mutex_;
    std::condition_variable hasRoom_;
    std::vector<Response> responses_;
    std::size_t bytes_ = 0;
    bool hasLost_ = false;
    bool isClosed_ = false;
};

} // namespace zul::fleet
