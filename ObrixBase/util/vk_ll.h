/* Intrusive doubly linked lists over the caller's own records. Any record whose first two
   fields are a `prev` and a `next` pointer can be put on a list; the routines only relink
   nodes and never allocate or free them, except the three that say so. A list is held in a
   caller variable pointing at its first node; routines that may move the first node take the
   address of that variable (a `void *` designating a `void **`), the others take a node. */
#ifndef OBRIX_UTIL_VK_LL_H
#define OBRIX_UTIL_VK_LL_H

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** The two leading fields of every node. A record may start with this header or declare its
    own two pointers in the same places. */
typedef struct VK_ll_header {
    void* prev; /**< previous node, null at the first */
    void* next; /**< next node, null at the last */
} VK_ll_header;

/** Orders two nodes (or a key and a node): negative, 0 or positive. */
typedef int (*VK_ll_comparator)(void* a, void* b);
/** Returns 0 when the two nodes are to be treated as equal within `tolerance`. */
typedef int (*VK_ll_tolerance_comparator)(void* a, void* b, double tolerance);
/** A test on one node. */
typedef int (*VK_ll_predicate)(void* node);

/* ---- walking and queries: a null node gives null, 0 or -1, never a fault ---- */

/// The node after `node`, or null for the last node or a null node. O(1).
OBRIX_API void* VK_ll_next(void* node);
/// The node before `node`, or null for the first node or a null node. O(1).
OBRIX_API void* VK_ll_prev(void* node);
/// The first node of the list that `node` is on (following `prev`); null for null. O(n).
OBRIX_API void* VK_ll_first(void* node);
/// The last node of the list that `node` is on (following `next`); null for null. O(n).
OBRIX_API void* VK_ll_last(void* node);
/// The number of nodes from `node` to the end; 0 for null. O(n).
OBRIX_API int VK_ll_length(void* node);
/// `node` itself for `n < 1`; otherwise the node `n` steps further along `next`, or null when
/// the list ends first. O(n).
OBRIX_API void* VK_ll_nth(void* node, int n);
/// The 0-based position of `node` counted from `list`, or -1 when `list` is null or `node` is
/// not reached from it. O(n).
OBRIX_API int VK_ll_find_item_number(void* list, void* node);
/// 1 when `node` itself (by identity) is reached from `list`, else 0; 0 when either is null.
OBRIX_API int VK_ll_present(void* list, void* node);
/// Searches from `list` with `compare(key, node)`. Unsorted (`sorted` 0): the first node that
/// compares 0. Sorted (the list ascending by `compare`): stops with null at the first node
/// the key sorts before. After the last node `compare(key, NULL)` is called once more and its
/// result ignored, so the comparator must accept a null node. Null `list`, `key` or
/// `compare` gives null without a call. O(n).
OBRIX_API void* VK_ll_find(void* list, void* key, VK_ll_comparator compare, int sorted);

/* ---- changing the list: a null head address or node does nothing ---- */

/// Links `node` after the last node (or as the only node of an empty list). O(n).
OBRIX_API void VK_ll_append(void* head, void* node);
/// Links `node` in front of the first node; `VK_ll_insert(head, *head, node)`. O(1).
OBRIX_API void VK_ll_prepend(void* head, void* node);
/// Links `node` in front of `before`, moving the head when `before` is the first node;
/// appends when `before` is null or the list is empty. O(1), O(n) when appending.
OBRIX_API void VK_ll_insert(void* head, void* before, void* node);
/// Unlinks `node`, joins its neighbours, moves the head when it was first and clears both of
/// its links. The node is not freed. O(1).
OBRIX_API void VK_ll_remove(void* head, void* node);
/// Puts `replacement` where `old` is (its two links, its neighbours' links to it and the head)
/// and clears `old`'s links. Any argument null: nothing happens. O(1).
OBRIX_API void VK_ll_replace(void* head, void* old, void* replacement);
/// Attaches the chain of nodes starting at node `chain` after the last node; an empty list
/// takes `chain` as its first node. `chain` is a node, not a head address. O(n).
OBRIX_API void VK_ll_merge(void* head, void* chain);
/// Makes a new list of heap copies of every node of `list` (each a byte copy of `size` bytes
/// from `malloc`, relinked among the copies), attaches the single node `tail` after the last
/// copy (clearing `tail.next`, so whatever followed `tail` is cut off) and returns the first
/// copy. `size` 0, or `list` and `tail` both null: null. `list` null: `tail` with both links
/// cleared. A `size` below the two links, or an allocation failure, gives null and keeps no
/// copy. The caller frees the copies with `free`. O(n).
OBRIX_API void* VK_ll_copy_and_append(void* list, void* tail, int size);
/// `VK_ll_insert_sorted2(head, node, NULL, NULL, compare)`.
OBRIX_API void VK_ll_insert_sorted(void* head, void* node, VK_ll_comparator compare);
/// Inserts `node` in front of the first node for which `compare(node, current)` is 0 or
/// negative (so among equal keys the newest comes first), else after the last node. When
/// `head2` and `node2` are both given, `node2` goes into the companion list at the same
/// position: in front of the companion node standing where `node` went in, after the
/// companion node standing at the last position when `node` was appended, and nowhere when
/// the companion list has no node there. Null `head`, `node` or `compare`: nothing. O(n).
OBRIX_API void VK_ll_insert_sorted2(void* head, void* node, void* head2, void* node2,
                                    VK_ll_comparator compare);
/// Moves the nodes of `chain` one by one, each with the node at the same position of `chain2`,
/// into the lists `head` and `head2` with `VK_ll_insert_sorted2`. Null `head` or `chain`:
/// nothing. O(n·m).
OBRIX_API void VK_ll_merge_sorted(void* head, void* chain, void* head2, void* chain2,
                                  VK_ll_comparator compare);
/// Unlinks and frees (with `free`) every node for which `predicate(node)` returns 0: a result
/// of 0 means "matches, take it out". Returns the number removed; 0 for a null head address
/// or predicate. The nodes must come from `malloc`. O(n).
OBRIX_API int VK_ll_remove_match(void* head, VK_ll_predicate predicate);
/// For a list sorted so that equal items are adjacent: frees (with `free`) every node that
/// `compare(survivor, node, tolerance)` finds equal to the last node kept before it, and the
/// node at the same position of the companion list `head2` when one is given. Each node is
/// compared with the surviving node, not with its removed neighbour. Returns the number of
/// nodes removed from the first list; 0 for a null head address, null `compare` or an empty
/// list. The nodes must come from `malloc`. O(n).
OBRIX_API int VK_ll_remove_duplicates(void* head, void* head2, double tolerance,
                                      VK_ll_tolerance_comparator compare);

OBRIX_EXTERN_C_END

#endif
