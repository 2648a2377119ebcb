// Closing asks for the stop under the mutex: a wait that has just found the queue open is still woken.
#include "practice_router/endpoints/request_queue.h"

namespace zul::practice {

void RequestQueue::push(Request request) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isClosed() || requests_.size() < MAX_QUEUED; });
    if (!isClosed()) {
        requests_.push_back(std::move(request));
        changed_.notify_all();
    }
}

std::optional<Request> RequestQueue::pop() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isClosed() || !requests_.empty(); });
    if (isClosed()) {
        return std::nullopt;
    }
    Request request = std::move(requests_.front());
    requests_.pop_front();
    changed_.notify_all();
    return request;
}

void RequestQueue::close() {
    const std::lock_guard lock(mutex_);
    ending_.request_stop();
    changed_.notify_all();
}

bool RequestQueue::pause(std::chrono::milliseconds span) {
    std::unique_lock lock(mutex_);
    return !changed_.wait_for(lock, span, [this] { return isClosed(); });
}

} // namespace zul::practice
