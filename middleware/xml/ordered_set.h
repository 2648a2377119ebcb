// Ordered set of pointers, keyed by a text of each item: the look-up structure of the XML reader (children of
// an element, element classes of a registry). A balanced (AVL) tree, so its depth stays logarithmic whatever
// the order in which a document names things. It owns its nodes, never the items. A record of zeroes plus a
// key operation is a valid empty set. Not thread-safe.
#pragma once

#include <cstddef>

struct ZULOrderedSetNode;

// The key of an item: NUL-terminated, compared byte by byte. It must not change its place in the order while
// the item is in the set.
using ZULOrderedSetKey = const char* (*)(const void* item);

struct ZULOrderedSet {
    ZULOrderedSetKey keyOf;
    ZULOrderedSetNode* root;
    std::size_t count; // items
};

enum ZULOrderedSetStatus { ZUL_ORDERED_SET_OK, ZUL_ORDERED_SET_EXISTS, ZUL_ORDERED_SET_OUT_OF_MEMORY };

// The set is unchanged unless the result is OK. With a node that was extracted, which the set then owns
// again, no memory is needed.
ZULOrderedSetStatus ZULOrderedSet_insert(ZULOrderedSet* self, void* item, ZULOrderedSetNode* node = nullptr);
// Takes out the item of that key and returns its node, which the caller owns; null when there is none.
ZULOrderedSetNode* ZULOrderedSet_extract(ZULOrderedSet* self, const char* key);
void ZULOrderedSetNode_free(ZULOrderedSetNode* node); // null is ignored
// The item of exactly that key, or null.
void* ZULOrderedSet_find(const ZULOrderedSet* self, const char* key);
// Frees the nodes and leaves an empty set.
void ZULOrderedSet_finalize(ZULOrderedSet* self);
