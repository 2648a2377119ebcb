// Ordered sets of borrowed items, whose key is a text that they hold: how the XML reader looks things up. The
// key must not change while the item is in a set.
#pragma once

#include "middleware/base/heap.h"

#include <cstring>
#include <set>

// Compares items with each other and with texts, byte by byte.
template <auto KEY>
struct ZULOrderByText {
    using is_transparent = void;
    static const char* keyOf(const char* text) { return text; }
    template <class Item>
    static const char* keyOf(const Item* item) {
        return item->*KEY;
    }
    template <class Left, class Right>
    bool operator()(const Left* left, const Right* right) const {
        return std::strcmp(keyOf(left), keyOf(right)) < 0;
    }
};

template <class Item, auto KEY>
using ZULOrderedSet = std::set<Item*, ZULOrderByText<KEY>, ZULHeapAllocator<Item*>>;
