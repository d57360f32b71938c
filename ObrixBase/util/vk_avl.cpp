// The AVL family over the caller's records. Its rebalancing is not shared with the binary tree
// kind of the structure framework (util/DS/ds_bintree.cpp): here the balance and the insertion
// marks live in the caller's node header and removal rebalances the whole tree with a fixed,
// observable rotation order that callers see in their records, while the kind keeps heights
// and parent links in nodes it owns and rebalances along one path. One rebalancing for both
// would change what one of them promises.
#include "ObrixBase/util/vk_avl.h"

#include <algorithm>
#include <cstddef>

#include "ObrixBase/util/vk_fields_internal.h"

namespace {

using obrix::detail::loadField;
using obrix::detail::loadPointer;
using obrix::detail::storeField;
using obrix::detail::storePointer;

constexpr std::size_t kLeft = offsetof(VK_avl_header, left);
constexpr std::size_t kRight = offsetof(VK_avl_header, right);
constexpr std::size_t kBalance = offsetof(VK_avl_header, balance);
constexpr std::size_t kDirection = offsetof(VK_avl_header, direction);

constexpr signed char kWentLeft = 1;
constexpr signed char kWentRight = 2;

void* leftOf(void* node) {
    return loadField<void*>(node, kLeft);
}
void* rightOf(void* node) {
    return loadField<void*>(node, kRight);
}
short balanceOf(void* node) {
    return loadField<short>(node, kBalance);
}
signed char directionOf(void* node) {
    return loadField<signed char>(node, kDirection);
}
void setBalance(void* node, int balance) {
    storeField<short>(node, kBalance, static_cast<short>(balance));
}
void setDirection(void* node, signed char direction) {
    storeField<signed char>(node, kDirection, direction);
}

// Links are handled by their address (a root variable or a child field inside a node), so
// that a rotation can re-point whichever link held the rotated node.
void* leftLink(void* node) {
    return static_cast<unsigned char*>(node) + kLeft;
}
void* rightLink(void* node) {
    return static_cast<unsigned char*>(node) + kRight;
}
void* childLink(void* node, signed char direction) {
    return direction == kWentLeft ? leftLink(node) : rightLink(node);
}

// The rotation step shared by insertion and whole-tree rebalancing. Left-heavy nodes rotate
// once only when their left child leans exactly left; a left child of balance 0 (which only
// whole-tree rebalancing meets) takes the double rotation, and the rebalancing loop evens out
// what that leaves. Right-heavy is the mirror image. Returns whether it rotated.
bool rotateIfUnbalanced(void* link) {
    void* node = loadPointer(link);
    const int balance = balanceOf(node);
    if (balance >= -1 && balance <= 1)
        return false;

    const bool leftHeavy = balance < 0;
    const int lean = leftHeavy ? -1 : 1;
    auto inner = [&](void* n) { return leftHeavy ? leftLink(n) : rightLink(n); };
    auto outer = [&](void* n) { return leftHeavy ? rightLink(n) : leftLink(n); };

    void* child = loadPointer(inner(node));
    if (balanceOf(child) == lean) {
        storePointer(inner(node), loadPointer(outer(child)));
        storePointer(outer(child), node);
        storePointer(link, child);
        setBalance(node, 0);
        setBalance(child, 0);
        return true;
    }

    void* middle = loadPointer(outer(child));
    const int middleBalance = balanceOf(middle);
    storePointer(outer(child), loadPointer(inner(middle)));
    storePointer(inner(node), loadPointer(outer(middle)));
    storePointer(inner(middle), child);
    storePointer(outer(middle), node);
    storePointer(link, middle);
    setBalance(node, middleBalance == lean ? -lean : 0);
    setBalance(child, middleBalance == -lean ? lean : 0);
    setBalance(middle, 0);
    return true;
}

// Whole-tree rebalancing: recompute every balance from the heights, apply the first rotation
// met in post-order, and start again until a full walk rotates nothing. Restarting from the
// top after a rotation would only re-walk what is unchanged: every node before the rotated
// subtree in post-order keeps its balance (its subtree did not move) and nodes after it are
// not reached yet. So the walk restarts within the rotated subtree alone, which yields the
// same rotations in the same order, at a cost of the rotated subtree's size per rotation
// instead of the whole tree's. Returns the settled subtree's height (0 when empty).
int settleSubtree(void* link) {
    for (;;) {
        void* node = loadPointer(link);
        if (!node)
            return 0;
        const int left = settleSubtree(leftLink(node));
        const int right = settleSubtree(rightLink(node));
        setBalance(node, right - left);
        if (!rotateIfUnbalanced(link))
            return std::max(left, right) + 1;
    }
}

void* extreme(void* node, std::size_t side) {
    if (!node)
        return nullptr;
    while (void* child = loadField<void*>(node, side))
        node = child;
    return node;
}

// The in-order neighbour of the node equal to `key`: the nearest node of its subtree on that
// side, else the last ancestor at which the search turned away from that side (for the
// successor, the last turn to the left).
void* neighbour(void* root, void* key, VK_avl_comparator compare, bool successor) {
    if (!key || !compare)
        return nullptr;
    void* turn = nullptr;
    void* node = root;
    while (node) {
        const int order = compare(key, node);
        if (order == 0) {
            void* subtree = successor ? rightOf(node) : leftOf(node);
            if (subtree)
                return extreme(subtree, successor ? kLeft : kRight);
            return turn;
        }
        if (order < 0) {
            if (successor)
                turn = node;
            node = leftOf(node);
        } else {
            if (!successor)
                turn = node;
            node = rightOf(node);
        }
    }
    return nullptr;
}

template <class Visit>
int walkInOrder(void* node, Visit& visit) {
    if (!node)
        return 0;
    if (int stop = walkInOrder(leftOf(node), visit))
        return stop;
    if (int stop = visit(node))
        return stop;
    return walkInOrder(rightOf(node), visit);
}

template <class Visit>
int walkPostOrder(void* node, Visit& visit) {
    if (!node)
        return 0;
    if (int stop = walkPostOrder(leftOf(node), visit))
        return stop;
    if (int stop = walkPostOrder(rightOf(node), visit))
        return stop;
    return visit(node);
}

} // namespace

extern "C" {

int VK_avl_insert(void** root, void* node, VK_avl_comparator compare) {
    if (!root || !node || !compare)
        return -1;
    // Field by field: the header's padding may hold the caller's own data.
    storePointer(leftLink(node), nullptr);
    storePointer(rightLink(node), nullptr);
    setBalance(node, 0);
    setDirection(node, 0);
    void* current = loadPointer(root);
    if (!current) {
        storePointer(root, node);
        return 0;
    }

    // Only the deepest node that already leaned can go out of balance; everything between it
    // and the new leaf was level and now leans towards the leaf.
    void* pivot = current;
    void* pivotParent = nullptr;
    void* parent = nullptr;
    for (;;) {
        if (balanceOf(current) != 0) {
            pivot = current;
            pivotParent = parent;
        }
        const int order = compare(node, current);
        if (order == 0)
            return 1;
        const signed char direction = order < 0 ? kWentLeft : kWentRight;
        setDirection(current, direction);
        void* next = loadPointer(childLink(current, direction));
        if (!next) {
            storePointer(childLink(current, direction), node);
            break;
        }
        parent = current;
        current = next;
    }

    const signed char pivotDirection = directionOf(pivot);
    setBalance(pivot, balanceOf(pivot) + (pivotDirection == kWentRight ? 1 : -1));
    for (void* n = loadPointer(childLink(pivot, pivotDirection)); n != node;) {
        const signed char direction = directionOf(n);
        setBalance(n, direction == kWentRight ? 1 : -1);
        n = loadPointer(childLink(n, direction));
    }
    rotateIfUnbalanced(pivotParent ? childLink(pivotParent, directionOf(pivotParent)) : root);
    return 0;
}

int VK_bt_remove(void** root, void* node, VK_avl_comparator compare) {
    if (!root || !node || !compare)
        return -1;
    void* link = root;
    for (;;) {
        void* current = loadPointer(link);
        if (!current)
            return 1;
        if (current == node)
            break;
        const int order = compare(node, current);
        if (order == 0)
            return 1;
        link = order < 0 ? leftLink(current) : rightLink(current);
    }

    void* left = leftOf(node);
    void* right = rightOf(node);
    void* replacement = nullptr;
    if (!left || !right) {
        replacement = left ? left : right;
    } else {
        storePointer(leftLink(extreme(right, kLeft)), left);
        replacement = right;
    }
    storePointer(link, replacement);
    return 0;
}

int VK_avl_remove(void** root, void* node, VK_avl_comparator compare) {
    const int result = VK_bt_remove(root, node, compare);
    if (result == 0)
        VK_avl_balance(root);
    return result;
}

void VK_avl_balance(void** root) {
    if (!root)
        return;
    settleSubtree(root);
}

void* VK_avl_find(void* root, void* key, VK_avl_comparator compare) {
    if (!key || !compare)
        return nullptr;
    void* node = root;
    while (node) {
        const int order = compare(key, node);
        if (order == 0)
            return node;
        node = order < 0 ? leftOf(node) : rightOf(node);
    }
    return nullptr;
}

void* VK_avl_next(void* root, void* key, VK_avl_comparator compare) {
    return neighbour(root, key, compare, true);
}

void* VK_avl_prev(void* root, void* key, VK_avl_comparator compare) {
    return neighbour(root, key, compare, false);
}

void* VK_avl_first(void* node) {
    return extreme(node, kLeft);
}

void* VK_avl_last(void* node) {
    return extreme(node, kRight);
}

void* VK_avl_left(void* node) {
    return node ? leftOf(node) : nullptr;
}

void* VK_avl_right(void* node) {
    return node ? rightOf(node) : nullptr;
}

int VK_avl_inorder(void* root, VK_avl_walker fn) {
    if (!fn)
        return 0;
    auto visit = [fn](void* node) { return fn(node); };
    return walkInOrder(root, visit);
}

int VK_avl_inorder_user(void* root, VK_avl_user_walker fn, void* user) {
    if (!fn)
        return 0;
    auto visit = [fn, user](void* node) { return fn(node, user); };
    return walkInOrder(root, visit);
}

int VK_avl_postorder(void* root, VK_avl_walker fn) {
    if (!fn)
        return 0;
    auto visit = [fn](void* node) { return fn(node); };
    return walkPostOrder(root, visit);
}

int VK_avl_postorder_user(void* root, VK_avl_user_walker fn, void* user) {
    if (!fn)
        return 0;
    auto visit = [fn, user](void* node) { return fn(node, user); };
    return walkPostOrder(root, visit);
}

} // extern "C"
