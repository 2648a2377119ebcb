// Closing the queue ends every wait, whatever it waits for.
#include "practice_router/endpoints/request_queue.h"

namespace zul::practice {

void RequestQueue::push(Request request) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, ending(), [this] { return requests_.size() < MAX_QUEUED; });
    if (!isClosed()) {
        request.followsLoss = hasLost_;
        requests_.push_back(std::move(request));
        hasLost_ = false;
        changed_.notify_all();
    }
}

std::optional<Request> RequestQueue::pop() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, ending(), [this] { return !requests_.empty(); });
    if (isClosed()) {
        return std::nullopt;
    }
    Request request = std::move(requests_.front());
    requests_.pop_front();
    changed_.notify_all();
    return request;
}

bool RequestQueue::pause(std::chrono::milliseconds span) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, ending(), span, [] { return false; });
    return !isClosed();
}

} // namespace zul::practice
