/* Intrusive AVL trees over the caller's own records, ordered by a caller comparator. A tree
   node starts with a VK_avl_header (or the same four fields declared by hand); the caller's
   data follows. The tree is held in a caller variable pointing at the root node; routines
   that may change the root take that variable's address. The tree never allocates or frees,
   and holds at most one node per key. */
#ifndef OBRIX_UTIL_VK_AVL_H
#define OBRIX_UTIL_VK_AVL_H

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** The leading fields of every tree node. */
typedef struct VK_avl_header {
    void* left;            /**< subtree of smaller items */
    void* right;           /**< subtree of greater items */
    short balance;         /**< height(right) - height(left), in -1..1 between operations */
    signed char direction; /**< scratch mark left by insertion: 1 went left, 2 went right */
} VK_avl_header;

/** Orders two nodes (or a key and a node): negative, 0 or positive. */
typedef int (*VK_avl_comparator)(void* a, void* b);
/** Visits one node; a non-zero result stops the walk. */
typedef int (*VK_avl_walker)(void* node);
/** Visits one node with the caller's data; a non-zero result stops the walk. */
typedef int (*VK_avl_user_walker)(void* node, void* user);

/// Clears the node's header and links it in with one pass down the tree, rebalancing with at
/// most one single or double rotation. Returns 0 when inserted, 1 when a node comparing equal
/// is already there (the tree is unchanged and the new node not linked), -1 when `root`,
/// `node` or `compare` is null. O(log n), no allocation.
OBRIX_API int VK_avl_insert(void** root, void* node, VK_avl_comparator compare);
/// Takes `node` (found by identity along its search path) out of the tree, then rebalances the
/// whole tree with `VK_avl_balance`. Returns 0 when removed, 1 when `node` is not in the tree,
/// -1 when an argument is null. The removed node's links are left as they were. Cost: O(n)
/// for the rebalancing walk plus, per rotation, the size of the rotated subtree; use it on
/// trees of thousands of nodes, not as a hot-loop delete on large ones.
OBRIX_API int VK_avl_remove(void** root, void* node, VK_avl_comparator compare);
/// Plain binary-tree removal without rebalancing: a node with two children is replaced by its
/// right child, and its left subtree hangs below the leftmost node of the right subtree.
/// Returns 0 when removed, 1 when `node` itself is not on its search path (an equal but
/// different node does not count), -1 when an argument is null. Balances are not updated.
OBRIX_API int VK_bt_remove(void** root, void* node, VK_avl_comparator compare);
/// Rebalances the tree held at `root`: recomputes every balance from the heights, applies the
/// first rotation found in post-order, and repeats until a full walk rotates nothing. A null
/// `root` is ignored. O(n), plus the size of the rotated subtree for every rotation.
/// `root` is the address of the root variable, like insert's and remove's, and not the root
/// node: a rotation at the top puts another node in the root's place, and only through the
/// variable's address can the caller's tree follow it (a balance given the node alone would
/// leave the caller holding a node that is no longer the root).
OBRIX_API void VK_avl_balance(void** root);
/// The node that compares equal to `key` (`compare(key, node)`), or null. O(log n).
OBRIX_API void* VK_avl_find(void* root, void* key, VK_avl_comparator compare);
/// The in-order successor of the node equal to `key`; null when `key` is not in the tree, has
/// no successor, or an argument is null. O(log n).
OBRIX_API void* VK_avl_next(void* root, void* key, VK_avl_comparator compare);
/// The in-order predecessor of the node equal to `key`; null as for `VK_avl_next`. O(log n).
OBRIX_API void* VK_avl_prev(void* root, void* key, VK_avl_comparator compare);
/// The leftmost (smallest) node under `node`; null for null. O(log n).
OBRIX_API void* VK_avl_first(void* node);
/// The rightmost (greatest) node under `node`; null for null. O(log n).
OBRIX_API void* VK_avl_last(void* node);
/// The left child, or null for a null node.
OBRIX_API void* VK_avl_left(void* node);
/// The right child, or null for a null node.
OBRIX_API void* VK_avl_right(void* node);
/// Visits left subtree, node, right subtree. Returns the first non-zero result of `fn`, which
/// ends the walk, else 0 (also for a null root or `fn`). O(n), recursion as deep as the tree.
OBRIX_API int VK_avl_inorder(void* root, VK_avl_walker fn);
/// `VK_avl_inorder` passing `user` to every call.
OBRIX_API int VK_avl_inorder_user(void* root, VK_avl_user_walker fn, void* user);
/// Visits left subtree, right subtree, node, with the same early stop; a walker may unlink or
/// free the node it is given, since its subtrees are done. O(n).
OBRIX_API int VK_avl_postorder(void* root, VK_avl_walker fn);
/// `VK_avl_postorder` passing `user` to every call.
OBRIX_API int VK_avl_postorder_user(void* root, VK_avl_user_walker fn, void* user);

OBRIX_EXTERN_C_END

#endif
