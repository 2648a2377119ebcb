// Heap: whatever promises a failure when memory runs out allocates here, so that a test can make the n-th
// allocation fail. Thread-safe. Memory comes zeroed; a null pointer may be freed.
#pragma once

#include <cstddef>
#include <new>

// Allocates `count` elements of `size` bytes, zeroed. Null when memory is exhausted or the product overflows.
void* ZULHeap_allocateArray(std::size_t count, std::size_t size);

template <class T>
T* ZULHeap_allocate(std::size_t count = 1) {
    return static_cast<T*>(ZULHeap_allocateArray(count, sizeof(T)));
}

void ZULHeap_free(void* memory);

// The heap for containers of the standard library, which then throw std::bad_alloc.
template <class T>
struct ZULHeapAllocator {
    using value_type = T;
    ZULHeapAllocator() = default;
    template <class Other>
    ZULHeapAllocator(const ZULHeapAllocator<Other>&) {}
    bool operator==(const ZULHeapAllocator&) const = default;

    T* allocate(std::size_t count) {
        T* memory = ZULHeap_allocate<T>(count);
        return memory != nullptr ? memory : throw std::bad_alloc();
    }
    void deallocate(T* memory, std::size_t) { ZULHeap_free(memory); }
};

// Test aid: after `allocations` more successful allocations the next one fails, once. A negative number
// switches it off (the initial state).
void ZULHeap_failAfter(long allocations);
