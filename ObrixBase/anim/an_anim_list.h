/* Item lists of the animation layer. Two small families: AN_* keeps typed items
   (AN_Animtron_s: a type number and an opaque data pointer) in a DS_Structure, at most one
   item per data pointer; An_* keeps (type, item, data) nodes on an intrusive list, with sorting
   and an optional duplicate-free insertion. Records come from the accounted allocator
   (MA_malloc) and are plain C heap blocks: the routines here, MA_free and free all release
   them (VK_list_delete_all empties an An_* list; the blocks then stay counted as live, see
   ma_memory_manager.h). */
#ifndef OBRIX_ANIM_AN_ANIM_LIST_H
#define OBRIX_ANIM_AN_ANIM_LIST_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/util/DS/ds_structures.h"

OBRIX_EXTERN_C_BEGIN

/** A typed item. The data is never owned. */
typedef struct AN_Animtron_s {
    /** The caller's type tag, stored as given. */
    int type;
    /** The item; one AN_Animtron_s per data pointer in a list. */
    void* data;
    struct AN_Animtron_s* next; /**< null when created; followed only by AN_item_list_free */
} AN_Animtron_s;

/** One node of an An_* list; its first two fields are the intrusive list links. */
typedef struct An_Item_list_s {
    /** Intrusive link to the previous node (null at the head). */
    struct An_Item_list_s* prev;
    /** Intrusive link to the next node (null at the tail). */
    struct An_Item_list_s* next;
    /** The caller's type tag, stored as given. */
    int type;
    void* item; /**< never null; not owned */
    void* data; /**< an opaque value; not owned */
} An_Item_list_s;

/** The record An_sort_item_list sorts, one per node. */
typedef struct An_Item_sort_s {
    /** The node's type tag. */
    int type;
    /** The node's item, the sort key (by address). */
    void* item;
    /** The node's data. */
    void* data;
} An_Item_sort_s;

/* ---- AN_*: every routine sets `*status` (null allowed) to 0 first ---- */

/// A new item with `next` null, from MA_malloc with the caller's `line` and `file`; null with
/// status `VK_MEMORY_FAULT` (3) when memory runs out.
OBRIX_API AN_Animtron_s* AN_item_create_type(int type, void* data, int line, const char* file,
                                             int* status);
/// Frees `*item` when there is one, sets `*item` to null and returns 1; a null address gives
/// status `VK_ARGUMENT_ERROR` (1) and 0. The data is not touched.
OBRIX_API long AN_item_free(AN_Animtron_s** item, int* status);
/// Frees the chain that follows `next` from `*first`, sets `*first` to null and returns 1; a
/// null address gives status `VK_ARGUMENT_ERROR` (1) and 0.
OBRIX_API long AN_item_list_free(AN_Animtron_s** first, int* status);
/// 1 when both items exist and have the same type and the same data pointer, else 0.
OBRIX_API long AN_ds_item_equal(AN_Animtron_s* a, AN_Animtron_s* b);
/// The first item of `list` (walked from head, through its filter) whose data is `data` (the
/// same pointer), or null. Null `data` or `list` gives status `VK_ARGUMENT_ERROR` (1) and null; an
/// operation of the structure that reports a non-zero status stops the walk with null and that
/// status. O(n).
OBRIX_API AN_Animtron_s* AN_is_item_in_item_list(void* data, DS_Structure* list, int* status);
/// Adds a new item (type, data) with the structure's add operation, unless an item with the
/// same data is already there: then nothing is added and 0 is returned with status 0 (the
/// refusal is silent). Null `data` or `list`, or a list without methods, gives status
/// `VK_ARGUMENT_ERROR` (1) and 0. Otherwise returns 1 when no status pointer was given or the
/// status is 0 afterwards, so a caller that passes no status pointer cannot see a refusal by the
/// structure's filter; the refused item is freed either way. The list owns the new item: take it
/// out with AN_remove_from_item_list. O(n).
OBRIX_API long AN_add_to_item_list(int type, void* data, DS_Structure* list, int* status);
/// Removes and frees the first item whose data is `data`. Returns 1 when removed with status
/// 0, else 0; null arguments give status `VK_ARGUMENT_ERROR` (1), an absent item status
/// `VK_ITEM_NOT_FOUND` (12). O(n).
OBRIX_API long AN_remove_from_item_list(void* data, DS_Structure* list, int* status);
/// Prints the item through the debug printer (AA_debug_print), indented:
/// "Item: 0x..." then a braced block of "Type: %d", "Data: 0x..." and "Next: 0x...", one
/// indent level deeper (pointers printed as their low 32 bits). Returns 1; a null item prints
/// "Item: NULL" and returns 0.
OBRIX_API long AN_print_item(AN_Animtron_s* item, int* status);

/* ---- An_*: the list is given by the address of its head variable ---- */

/// Puts a new node at the front. Returns 1; 0 when `item` or `head` is null or memory runs
/// out. O(1).
OBRIX_API long An_add_to_item_list(int type, void* item, void* data, An_Item_list_s** head);
/// As An_add_to_item_list, but when a node with the same item and data (the type is not
/// compared) is already there nothing is added; returns 1 in both cases, 0 for a null `item`
/// or `head` or when memory runs out. O(n).
OBRIX_API long An_addUnique_to_item_list(int type, void* item, void* data, An_Item_list_s** head);
/// Orders two nodes by item, then by data, as unsigned addresses: -1, 0 or 1. A null (node,
/// item or data) sorts after everything: null against non-null gives 1, two nulls 0.
OBRIX_API int An_compareItemList(const void* a, const void* b);
/// An_compareItemList's order on the item alone, over two An_Item_sort_s records (a qsort
/// comparator).
OBRIX_API int An_compareItem(const void* a, const void* b);
/// Sorts the nodes' (type, item, data) by ascending item address, in place; equal items keep
/// no guaranteed order. With `unique` non-zero every item is kept once (the first of its run
/// in the sorted order) and the nodes left over at the end are deleted with VK_list_delete
/// (the C runtime's free; they leave the accounting first). Returns 1; 0 for a null
/// address, an empty list or when memory runs out (the list is then unchanged). O(n log n).
OBRIX_API long An_sort_item_list(An_Item_list_s** head, long unique);
/// Frees every node and sets `*head` to null; a null address is ignored. The items and data
/// are not touched.
OBRIX_API void An_free_item_list(An_Item_list_s** head);

OBRIX_EXTERN_C_END

#endif
