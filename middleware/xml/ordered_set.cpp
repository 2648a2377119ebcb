// An AVL tree: after a change, each node on the way back to the root is balanced by at most two rotations.
// The recursion is as deep as the tree, some 25 levels for the largest document.
#include "middleware/xml/ordered_set.h"

#include "middleware/base/heap.h"

#include <algorithm>
#include <cstring>

struct ZULOrderedSetNode {
    void* item;
    ZULOrderedSetNode* child[2]; // smaller keys, greater keys
    int height;
};

namespace {

using Node = ZULOrderedSetNode;

int height(const Node* node) {
    return node != nullptr ? node->height : 0;
}

// Turns the child on `side`, if there is one, up in place of `node`.
Node* rotate(Node* node, int side) {
    Node* up = node->child[side];
    if (up == nullptr) {
        return node;
    }
    node->child[side] = up->child[1 - side];
    up->child[1 - side] = node;
    node->height = 1 + std::max(height(node->child[0]), height(node->child[1]));
    up->height = 1 + std::max(height(up->child[0]), height(up->child[1]));
    return up;
}

// Restores the balance of `node`, whose subtrees are balanced and differ by two levels at most.
Node* balance(Node* node) {
    const int difference = height(node->child[1]) - height(node->child[0]);
    if (difference < -1 || difference > 1) {
        const int heavy = difference > 0 ? 1 : 0;
        Node*& child = node->child[heavy];
        if (height(child->child[heavy]) < height(child->child[1 - heavy])) {
            child = rotate(child, 1 - heavy);
        }
        return rotate(node, heavy);
    }
    node->height = 1 + std::max(height(node->child[0]), height(node->child[1]));
    return node;
}

Node* insertBelow(Node* node, Node* fresh, ZULOrderedSetKey keyOf) {
    if (node == nullptr) {
        return fresh;
    }
    const int side = std::strcmp(keyOf(fresh->item), keyOf(node->item)) > 0 ? 1 : 0;
    node->child[side] = insertBelow(node->child[side], fresh, keyOf);
    return balance(node);
}

Node* detachFirst(Node* node, Node*& first) {
    if (node->child[0] == nullptr) {
        first = node;
        return node->child[1];
    }
    node->child[0] = detachFirst(node->child[0], first);
    return balance(node);
}

// The key is there.
Node* extractBelow(Node* node, const char* key, ZULOrderedSetKey keyOf, Node*& extracted) {
    const int order = std::strcmp(key, keyOf(node->item));
    if (order != 0) {
        Node*& child = node->child[order > 0 ? 1 : 0];
        child = extractBelow(child, key, keyOf, extracted);
        return balance(node);
    }
    Node* replacement = node->child[0];
    if (node->child[1] != nullptr) {
        Node* rest = detachFirst(node->child[1], replacement);
        replacement->child[1] = rest;
        replacement->child[0] = node->child[0];
    }
    extracted = node;
    return replacement != nullptr ? balance(replacement) : nullptr;
}

void freeBelow(Node* node) {
    if (node != nullptr) {
        freeBelow(node->child[0]);
        freeBelow(node->child[1]);
        ZULHeap_free(node);
    }
}

} // namespace

ZULOrderedSetStatus ZULOrderedSet_insert(ZULOrderedSet* self, void* item, ZULOrderedSetNode* node) {
    if (ZULOrderedSet_find(self, self->keyOf(item)) != nullptr) {
        return ZUL_ORDERED_SET_EXISTS;
    }
    Node* fresh = node != nullptr ? node : ZULHeap_allocate<Node>();
    if (fresh == nullptr) {
        return ZUL_ORDERED_SET_OUT_OF_MEMORY;
    }
    *fresh = {.item = item, .child = {nullptr, nullptr}, .height = 1};
    self->root = insertBelow(self->root, fresh, self->keyOf);
    ++self->count;
    return ZUL_ORDERED_SET_OK;
}

ZULOrderedSetNode* ZULOrderedSet_extract(ZULOrderedSet* self, const char* key) {
    Node* extracted = nullptr;
    if (ZULOrderedSet_find(self, key) != nullptr) {
        self->root = extractBelow(self->root, key, self->keyOf, extracted);
        --self->count;
    }
    return extracted;
}

void ZULOrderedSetNode_free(ZULOrderedSetNode* node) {
    ZULHeap_free(node);
}

void* ZULOrderedSet_find(const ZULOrderedSet* self, const char* key) {
    for (const Node* node = self->root; node != nullptr;) {
        const int order = std::strcmp(key, self->keyOf(node->item));
        if (order == 0) {
            return node->item;
        }
        node = node->child[order > 0 ? 1 : 0];
    }
    return nullptr;
}

void ZULOrderedSet_finalize(ZULOrderedSet* self) {
    freeBelow(self->root);
    self->root = nullptr;
    self->count = 0;
}
