// Counting semaphores, time and sleep of the platform. Timed waits run on the monotonic clock against an
// absolute deadline: an interrupted wait goes on with what is left, and a change of the clock does no harm.
#pragma once

#include <cstdint>

// Time span: whole seconds and a fraction in units of 2^-32 s. A span of zero or less ends a wait
// at once; one of ZUL_TIME_FOREVER_SEC seconds never does.
struct ZULTime {
    std::int32_t sec;
    std::uint32_t frac;
};
constexpr std::int32_t ZUL_TIME_FOREVER_SEC = 0x7FFFFFFF;

// A point on the monotonic clock, or "never".
struct ZULDeadline {
    std::int64_t nanoseconds;
    bool never;
};
ZULDeadline ZULDeadline_after(const ZULTime& span);

enum ZULSemaphoreStatus { ZUL_SEMAPHORE_OK, ZUL_SEMAPHORE_TIMEOUT, ZUL_SEMAPHORE_ERROR };

struct ZULSemaphoreProperty {
    std::int32_t initialCount;
};

struct ZULSemaphore;

// The caller owns the semaphore; delete it when no thread uses it any more. Null when memory or kernel
// resources are exhausted.
ZULSemaphore* ZULSemaphore_new(const ZULSemaphoreProperty& property);
void ZULSemaphore_delete(ZULSemaphore* semaphore); // null is ignored
// Adds one. The only operation here that a signal handler may call.
ZULSemaphoreStatus ZULSemaphore_give(ZULSemaphore* semaphore);
ZULSemaphoreStatus ZULSemaphore_take(ZULSemaphore* semaphore, const ZULDeadline& deadline);

// Sleeps on the monotonic clock; not at all for negative seconds. A signal that the calling thread handles
// ends it early. `nanoseconds` is below 1'000'000'000.
void ZULSleep(std::int32_t seconds, std::uint32_t nanoseconds);
