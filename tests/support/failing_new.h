// While `g_newCanFail` is true, `new` fails with the heap. To be included in one source of a program.
#pragma once

#include "middleware/base/heap.h"

#include <cstdlib>

inline bool g_newCanFail = false;

// Not inline, where the compiler would see memory of `new` given to `free`.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return g_newCanFail ? ZULHeap_allocateArray(1, size) : std::malloc(size);
}
void* operator new(std::size_t size) {
    void* memory = operator new(size, std::nothrow);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
