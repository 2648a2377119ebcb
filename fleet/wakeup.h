// Wakeup: what a program waits on when it waits for anything, be it an answer, a router or an interrupt.
// Whoever is woken looks again at what it waits for; a wakeup says only that there may be something new.
#pragma once

#include "middleware/base/semaphore.h"

#include <atomic>
#include <chrono>
#include <memory>

namespace zul::fleet {

using Clock = std::chrono::steady_clock;

class Wakeup {
public:
    Wakeup(); // throws std::bad_alloc when there is no semaphore

    // From any thread.
    void notify();
    // Async-signal-safe. Ends this wait and every later one, until the interrupt is taken back.
    void interrupt();
    bool isInterrupted() const { return isInterrupted_.load(); }
    // For what has to be done in spite of it: takes the interrupt back, and returns whether there was one.
    bool takeInterrupt() { return isInterrupted_.exchange(false); }

    // One thread at a time. Returns at the latest at `deadline`.
    void waitUntil(Clock::time_point deadline);

private:
    struct Deleter {
        void operator()(ZULSemaphore* semaphore) const { ZULSemaphore_delete(semaphore); }
    };
    std::unique_ptr<ZULSemaphore, Deleter> semaphore_;
    std::atomic<bool> isPending_{false};
    std::atomic<bool> isInterrupted_{false};
};

} // namespace zul::fleet
