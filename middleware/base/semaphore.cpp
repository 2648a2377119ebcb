// Semaphores are POSIX ones: giving is the one thing that a signal handler may do. Takes wait until a point
// on the monotonic clock, so one that a signal interrupts goes on with the time that is left.
#include "middleware/base/semaphore.h"

#include "middleware/base/heap.h"

#include <cerrno>
#include <ctime>
#include <new>
#include <semaphore.h>
#include <unistd.h>

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZUL_THREAD_SANITIZER 1
#endif
#endif
#if defined(__SANITIZE_THREAD__) || defined(ZUL_THREAD_SANITIZER)
// The sanitizer does not know sem_clockwait: tell it what a give and a take order, and let it run the
// handlers of signals, which it holds back until a call that it knows.
extern "C" void __tsan_acquire(void*);
extern "C" void __tsan_release(void*);
#define ZUL_ORDER_TAKE(address) __tsan_acquire(address)
#define ZUL_ORDER_GIVE(address) __tsan_release(address)
#define ZUL_LET_SIGNALS_IN() static_cast<void>(usleep(0))
#else
#define ZUL_ORDER_TAKE(address) static_cast<void>(address)
#define ZUL_ORDER_GIVE(address) static_cast<void>(address)
#define ZUL_LET_SIGNALS_IN() static_cast<void>(0)
#endif

struct ZULSemaphore {
    sem_t handle;
};

namespace {
constexpr std::int64_t NANOSECONDS_PER_SECOND = 1'000'000'000;
} // namespace

ZULDeadline ZULDeadline_after(const ZULTime& span) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const std::int64_t fraction =
        static_cast<std::int64_t>((span.frac * std::uint64_t{NANOSECONDS_PER_SECOND}) >> 32);
    return {.nanoseconds = (now.tv_sec + span.sec) * NANOSECONDS_PER_SECOND + now.tv_nsec + fraction,
            .never = span.sec == ZUL_TIME_FOREVER_SEC};
}

ZULSemaphore* ZULSemaphore_new(const ZULSemaphoreProperty& property) {
    auto* semaphore = ZULHeap_allocate<ZULSemaphore>();
    if (semaphore != nullptr &&
        sem_init(&semaphore->handle, 0, static_cast<unsigned>(property.initialCount)) != 0) {
        ZULHeap_free(semaphore);
        return nullptr;
    }
    return semaphore;
}

void ZULSemaphore_delete(ZULSemaphore* semaphore) {
    if (semaphore != nullptr) {
        sem_destroy(&semaphore->handle);
        ZULHeap_free(semaphore);
    }
}

ZULSemaphoreStatus ZULSemaphore_give(ZULSemaphore* semaphore) {
    ZUL_ORDER_GIVE(semaphore);
    return sem_post(&semaphore->handle) == 0 ? ZUL_SEMAPHORE_OK : ZUL_SEMAPHORE_ERROR;
}

ZULSemaphoreStatus ZULSemaphore_take(ZULSemaphore* semaphore, const ZULDeadline& deadline) {
    const std::int64_t at = deadline.nanoseconds < 0 ? 0 : deadline.nanoseconds;
    const timespec until{.tv_sec = static_cast<time_t>(at / NANOSECONDS_PER_SECOND),
                         .tv_nsec = static_cast<long>(at % NANOSECONDS_PER_SECOND)};
    const auto wait = [&] {
        return deadline.never ? sem_wait(&semaphore->handle)
                              : sem_clockwait(&semaphore->handle, CLOCK_MONOTONIC, &until);
    };
    int result = wait();
    while (result != 0 && errno == EINTR) {
        ZUL_LET_SIGNALS_IN();
        result = wait();
    }
    if (result == 0) {
        ZUL_ORDER_TAKE(semaphore);
        return ZUL_SEMAPHORE_OK;
    }
    return errno == ETIMEDOUT ? ZUL_SEMAPHORE_TIMEOUT : ZUL_SEMAPHORE_ERROR;
}

void ZULSleep(std::int32_t seconds, std::uint32_t nanoseconds) {
    if (seconds >= 0) {
        const timespec span{.tv_sec = seconds, .tv_nsec = static_cast<long>(nanoseconds)};
        clock_nanosleep(CLOCK_MONOTONIC, 0, &span, nullptr);
    }
}
