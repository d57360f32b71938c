/* Cell lists: a doubly linked list that holds the caller's items in small cells it allocates
   itself. The cells start with the two links of the intrusive lists (vk_ll.h), so every
   VK_ll_* routine also works on a cell list. Keep a `VK_List *` head variable (null for an
   empty list) and pass its address to the routines that can change the first cell. */
#ifndef OBRIX_UTIL_VK_LIST_H
#define OBRIX_UTIL_VK_LIST_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/util/vk_ll.h"

OBRIX_EXTERN_C_BEGIN

/** One cell, allocated with `malloc`. The item is never owned by the list. */
typedef struct VK_List {
    struct VK_List* prev; /**< previous cell, null at the first */
    struct VK_List* next; /**< next cell, null at the last */
    void* data;           /**< the caller's item */
} VK_List;

/** A match test on one item: non-zero means found. */
typedef int (*VK_list_match)(void* data, void* key);

/* ---- adding: each returns the new cell, or null (and changes nothing) when `head` or `data`
   is null or the cell cannot be allocated; a null item is never stored ---- */

/// A new cell for `data` at the end. O(n).
OBRIX_API VK_List* VK_list_append(VK_List** head, void* data);
/// A new cell for `data` at the front. O(1).
OBRIX_API VK_List* VK_list_prepend(VK_List** head, void* data);
/// A new cell for `data` in front of the cell `before`; at the end when `before` is null or
/// the list is empty. O(1), O(n) when appending.
OBRIX_API VK_List* VK_list_insert(VK_List** head, void* before, void* data);
/// A new cell for `data` in front of the first cell for which `compare(new_cell, cell)` is 0
/// or negative, else at the end; equal items keep the newest first. The comparator receives
/// two cells, not two items, and reads their `data` itself. Null `compare`: null. O(n).
OBRIX_API VK_List* VK_list_insert_sorted(VK_List** head, void* data, VK_ll_comparator compare);

/* ---- searching ---- */

/// The first cell from `list` onward whose item is `data` (the same pointer), or null. O(n).
OBRIX_API VK_List* VK_list_find(VK_List* list, void* data);
/// The first cell from `list` onward for which `match(cell->data, key)` is non-zero; null when
/// none is or any argument is null. O(n).
OBRIX_API VK_List* VK_list_compar(VK_List* list, void* key, VK_list_match match);

/* ---- taking out: items are never freed ---- */

/// Unlinks and frees `cell` (not its item) and returns the cell to go on with: its successor,
/// or its predecessor when it was the last. Null when `head` is null, the list is empty or
/// `cell` is null (and then nothing changes). O(1).
OBRIX_API VK_List* VK_list_delete(VK_List** head, VK_List* cell);
/// As `VK_list_delete`, but the cell is only unlinked (its links cleared); the caller owns it
/// and frees it with `free`. O(1).
OBRIX_API VK_List* VK_list_remove(VK_List** head, VK_List* cell);
/// Frees every cell; `*head` becomes null. A null `head` is ignored. O(n).
OBRIX_API void VK_list_delete_all(VK_List** head);
/// Unlinks every cell without freeing it; `*head` becomes null and the cells are the
/// caller's. A null `head` is ignored. O(n).
OBRIX_API void VK_list_remove_all(VK_List** head);
/// Frees every cell whose item is null. A null `head` is ignored. O(n).
OBRIX_API void VK_list_delete_empty(VK_List** head);

OBRIX_EXTERN_C_END

#endif
