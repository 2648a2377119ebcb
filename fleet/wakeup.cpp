// However many notifications come before the wait, they give the semaphore once: a burst of samples is one
// wakeup, and the semaphore cannot overflow.
#include "fleet/wakeup.h"

#include <new>

namespace zul::fleet {

Wakeup::Wakeup() : semaphore_(ZULSemaphore_new({.initialCount = 0})) {
    if (semaphore_ == nullptr) {
        throw std::bad_alloc();
    }
}

void Wakeup::notify() {
    if (!isPending_.exchange(true)) {
        ZULSemaphore_give(semaphore_.get());
    }
}

void Wakeup::interrupt() {
    isInterrupted_.store(true);
    notify();
}

void Wakeup::waitUntil(Clock::time_point deadline) {
    if (isInterrupted()) {
        return;
    }
    const auto since = std::chrono::duration_cast<std::chrono::nanoseconds>(deadline.time_since_epoch());
    if (ZULSemaphore_take(semaphore_.get(), {.nanoseconds = since.count(), .never = false}) ==
        ZUL_SEMAPHORE_OK) {
        isPending_.store(false);
    }
}

} // namespace zul::fleet
