#include "fleet/response_queue.h"

#include <utility>

namespace zul::fleet {

void ResponseQueue::push(Response&& response) {
    std::unique_lock lock(mutex_);
    hasRoom_.wait(lock, [this] { return bytes_ < limit_ || isClosed_; });
    if (!isClosed_) {
        bytes_ += sizeof response + response.message.size();
        responses_.push_back(std::move(response));
    }
}

void ResponseQueue::noteLoss() {
    const std::lock_guard lock(mutex_);
    hasLost_ = true;
}

ResponseQueue::Batch ResponseQueue::take() {
    const std::lock_guard lock(mutex_);
    bytes_ = 0;
    hasRoom_.notify_all();
    return {std::exchange(responses_, {}), std::exchange(hasLost_, false)};
}

void ResponseQueue::close() {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
    hasRoom_.notify_all();
}

} // namespace zul::fleet
