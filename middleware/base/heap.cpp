#include "middleware/base/heap.h"

#include <atomic>
#include <cstdlib>

namespace {
std::atomic<long> g_failAfter{-1};

bool failsNow() {
    long left = g_failAfter.load(std::memory_order_relaxed);
    while (left >= 0) {
        if (g_failAfter.compare_exchange_weak(left, left - 1)) {
            return left == 0;
        }
    }
    return false;
}
} // namespace

void* ZULHeap_allocateArray(std::size_t count, std::size_t size) {
    return failsNow() ? nullptr : std::calloc(count == 0 ? 1 : count, size);
}

void ZULHeap_free(void* memory) {
    std::free(memory);
}

void ZULHeap_failAfter(long allocations) {
    g_failAfter.store(allocations);
}
