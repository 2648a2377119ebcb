// The requests that wait for the worker: filled by the middleware's delivery thread, emptied by the worker,
// closed by the main thread. Bounded: a full queue holds the delivery thread back, and with it, in the end,
// the writers; no piece of an upload is lost.
#pragma once

#include "practice_router/actions/request.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>

namespace zul::practice {

constexpr std::size_t MAX_QUEUED = 64; // requests

class RequestQueue {
public:
    // Waits for room. When the queue is closed, the request is dropped.
    void push(Request request);
    // A request was lost before it could be pushed. The next one will tell. For the thread that pushes.
    void noteLoss() { hasLost_ = true; }
    // Waits for a request. Nothing when the queue is closed, whatever is still in it.
    std::optional<Request> pop();
    // Ends every wait, present and future.
    void close() { ending_.request_stop(); }
    bool isClosed() const { return ending_.stop_requested(); }
    // Lets time pass, unless the queue is closed. True when all of it has passed.
    bool pause(std::chrono::milliseconds span);
    // For work in progress: asked to stop when the queue is closed.
    std::stop_token ending() const { return ending_.get_token(); }

private:
    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<Request> requests_;
    bool hasLost_ = false;
    std::stop_source ending_; // asked to stop: the queue is closed
};

} // namespace zul::practice
