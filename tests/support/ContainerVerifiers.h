// Structural checks of the intrusive containers, for randomised tests and the fuzz targets:
// each returns an empty string when the structure is sound, else a description of the first
// fault found. Header-only and free of GoogleTest, so the fuzzers can use them too.
#ifndef OBRIX_TESTS_SUPPORT_CONTAINERVERIFIERS_H
#define OBRIX_TESTS_SUPPORT_CONTAINERVERIFIERS_H

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "ObrixBase/util/vk_avl.h"
#include "ObrixBase/util/vk_ll.h"

namespace obrix::test {

/// Checks the list that starts at `first`: `first.prev` is null, the walk along `next` ends
/// (no cycle), and every node's `prev` is the node before it, so `a.next == b` exactly when
/// `b.prev == a`. Appends the nodes in order to `nodes` when given.
inline std::string checkListLinks(void* first, std::vector<void*>* nodes = nullptr) {
    if (first && VK_ll_prev(first))
        return "the first node has a non-null prev";
    std::set<void*> seen;
    void* before = nullptr;
    for (void* node = first; node; node = VK_ll_next(node)) {
        if (!seen.insert(node).second)
            return "the list runs in a cycle";
        if (VK_ll_prev(node) != before)
            return "node " + std::to_string(seen.size() - 1) +
                   " has a prev that is not its "
                   "predecessor";
        if (nodes)
            nodes->push_back(node);
        before = node;
    }
    return {};
}

namespace detail {

struct AvlWalk {
    VK_avl_comparator compare;
    bool checkBalances;
    std::vector<void*>* inOrder;
    std::set<void*> seen;
    void* previous = nullptr;
    std::string fault;

    // Returns the subtree height; records the first fault.
    int visit(void* node, int depth) {
        if (!node || !fault.empty())
            return 0;
        if (depth > 200 || !seen.insert(node).second) {
            fault = "the tree links a node twice or runs too deep";
            return 0;
        }
        const int left = visit(VK_avl_left(node), depth + 1);
        if (!fault.empty())
            return 0;
        if (previous && compare(previous, node) >= 0) {
            fault = "the in-order walk is not strictly ascending";
            return 0;
        }
        previous = node;
        if (inOrder)
            inOrder->push_back(node);
        const int right = visit(VK_avl_right(node), depth + 1);
        if (!fault.empty())
            return 0;
        VK_avl_header header;
        std::memcpy(&header, node, sizeof header);
        if (checkBalances && header.balance != right - left)
            fault = "a balance of " + std::to_string(header.balance) +
                    " differs from the height difference " + std::to_string(right - left);
        else if (checkBalances && (header.balance < -1 || header.balance > 1))
            fault = "a balance is outside -1..1";
        return (left > right ? left : right) + 1;
    }
};

} // namespace detail

/// Checks the tree under `root`: the in-order walk is strictly ascending by `compare`, no node
/// is linked twice, and (unless `checkBalances` is false) every stored balance equals
/// height(right) - height(left) and lies in -1..1. Appends the nodes in order to `inOrder`
/// when given.
inline std::string checkAvlTree(void* root, VK_avl_comparator compare,
                                std::vector<void*>* inOrder = nullptr, bool checkBalances = true) {
    detail::AvlWalk walk{compare, checkBalances, inOrder, {}, nullptr, {}};
    walk.visit(root, 0);
    return walk.fault;
}

} // namespace obrix::test

#endif
