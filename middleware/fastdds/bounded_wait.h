// Bounded wait: repeats an attempt that itself waits, without ever waiting longer than allowed in all.
#pragma once

#include "middleware/base/basic_types.h"

#include <algorithm>
#include <chrono>

namespace zul {

// How long all attempts together, and each of them, may wait.
struct BoundedWait {
    std::chrono::nanoseconds total{0};
    std::chrono::nanoseconds slice{0};
};

inline BoundedWait boundedWait(const DDS_Duration_t& total) {
    constexpr int SLICES_MIN = 16;
    constexpr std::chrono::nanoseconds SLICE_MAX = std::chrono::milliseconds(100);
    const auto whole = std::chrono::seconds(total.sec) + std::chrono::nanoseconds(total.nanosec);
    return {.total = whole, .slice = std::min<std::chrono::nanoseconds>(whole / SLICES_MIN, SLICE_MAX)};
}

// Repeats `attempt`, which waits for a slice at most and says DDS_RETCODE_TIMEOUT when that was not enough,
// as long as another slice stays within the total. `now` is the steady clock.
template <class Attempt, class Now>
DDS_ReturnCode_t attemptWithin(const BoundedWait& wait, Attempt attempt, Now now) {
    const auto lastStart = now() + wait.total - wait.slice;
    DDS_ReturnCode_t code = attempt();
    while (code == DDS_RETCODE_TIMEOUT && now() <= lastStart && wait.slice.count() > 0) {
        code = attempt();
    }
    return code;
}

} // namespace zul
