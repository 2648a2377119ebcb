#include "practice_router/endpoints/request_queue.h"

bool PracticeRequestQueue_push(PracticeRequestQueue& self, PracticeRequest request) {
    std::unique_lock lock(self.mutex);
    self.changed.wait(lock, [&self] { return self.isClosed || self.requests.size() < PRACTICE_QUEUE_MAX; });
    if (self.isClosed) {
        return false;
    }
    self.requests.push_back(std::move(request));
    self.changed.notify_all();
    return true;
}

std::optional<PracticeRequest> PracticeRequestQueue_pop(PracticeRequestQueue& self) {
    std::unique_lock lock(self.mutex);
    self.changed.wait(lock, [&self] { return self.isClosed || !self.requests.empty(); });
    if (self.isClosed) {
        return std::nullopt;
    }
    PracticeRequest request = std::move(self.requests.front());
    self.requests.pop_front();
    self.changed.notify_all();
    return request;
}

void PracticeRequestQueue_close(PracticeRequestQueue& self) {
    const std::lock_guard lock(self.mutex);
    self.isClosed = true;
    self.ending.request_stop();
    self.changed.notify_all();
}

bool PracticeRequestQueue_isClosed(PracticeRequestQueue& self) {
    const std::lock_guard lock(self.mutex);
    return self.isClosed;
}

bool PracticeRequestQueue_pause(PracticeRequestQueue& self, std::chrono::milliseconds span) {
    std::unique_lock lock(self.mutex);
    return !self.changed.wait_for(lock, span, [&self] { return self.isClosed; });
}
