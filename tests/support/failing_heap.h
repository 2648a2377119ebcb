// Repeats an operation with its first, second, ... allocation failing, until it succeeds.
#pragma once

#include "middleware/base/heap.h"

#include <gtest/gtest.h>

// Returns how many allocations there are, or -1. `check(isDone)` looks at what each attempt left.
template <class Operation, class Check = void (*)(bool)>
long failEachAllocation(
    Operation succeeds, Check check = [](bool) {}) {
    for (long allocations = 0; allocations < 5000; ++allocations) {
        ZULHeap_failAfter(allocations);
        const bool isDone = succeeds();
        ZULHeap_failAfter(-1);
        check(isDone);
        if (isDone) {
            return allocations;
        }
    }
    ADD_FAILURE() << "it never succeeds";
    return -1;
}
