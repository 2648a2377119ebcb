// Heap: every allocation of the platform and of the data types goes through here, so that a test can make
// the n-th one fail. Thread-safe. Memory comes zeroed; a null pointer may be freed.
#pragma once

#include <cstddef>

// Allocates `count` elements of `size` bytes, zeroed. Null when memory is exhausted or the product overflows.
void* ZULHeap_allocateArray(std::size_t count, std::size_t size);

template <class T>
T* ZULHeap_allocate(std::size_t count = 1) {
    return static_cast<T*>(ZULHeap_allocateArray(count, sizeof(T)));
}

void ZULHeap_free(void* memory);

// Test aid: the allocation that follows after `allocations` further successful ones fails, once.
// A negative number switches it off (the initial state).
void ZULHeap_failAfter(long allocations);
