/* The structure framework: one container record, DS_Structure, whose storage is chosen at
   creation by a numeric kind (1 doubly linked list, 2 singly linked list, 3 binary tree,
   4 array). Each kind supplies a table of twenty operations; the framework adds a comparator
   and a filter per structure, registries of kinds, comparators and filters, and generic
   operations (create, destroy, difference, intersection, merge, duplicate, filtering,
   printing). Typical use:

       DS_Structure *s = DS_create_type(DS_KIND_SLIST, &status, __LINE__, __FILE__);
       s->methods->add(s, item, &status);
       for (void *n = s->methods->head(s, &status); n; n = s->methods->next(s, n, &status))
           use(s->methods->get_data(n, &status));
       DS_destructor(&s, NULL, NULL, &status);

   Every operation takes a trailing `int *status` (null allowed), sets it to 0 first and
   writes the codes of aa_debug.h. Structures never own their items: a free callback decides
   what happens to them. Process-wide registries, single-threaded like the whole library. */
#ifndef OBRIX_UTIL_DS_DS_STRUCTURES_H
#define OBRIX_UTIL_DS_DS_STRUCTURES_H

#include <stdbool.h>

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** Orders two members. Receives the addresses of two member slots (each really a `void **`
    holding an item) and answers negative, 0 or positive. Insertion moves past a member only
    while the answer is exactly 1, so comparators should answer -1, 0 or 1. */
typedef int (*DS_Compare_fn)(void* a, void* b);
/** Decides whether an item is seen by a structure's walking operations: non-zero passes. */
typedef int (*DS_Filter_fn)(void* item);
/** Find callback: non-zero when `item` (the member itself) matches `key`. */
typedef int (*DS_Match_fn)(void* item, void* key);
/** Walk callback, called with each visited item: positive goes on, 0 stops the walk
    (status `VK_WALK_TERMINATED` (10)), negative stops it as failed (status `VK_WALK_ERROR`
    (9)). */
typedef int (*DS_Walk_fn)(void* item, void* user);
/** Called with a member's slot (`void **`) before its node is freed; it may free the item and
    clear the slot. DS_memory_free is the usual one for plain heap items. */
typedef long (*DS_Free_fn)(void** slot, void* user);
/** Makes the item for a duplicate structure from an original item; the result is stored as
    it is (null included). */
typedef void* (*DS_Copy_fn)(void* item, void* user);
/** Prints one item for DS_print_structure. */
typedef void (*DS_Print_fn)(void* item, void* user);

struct DS_Jump_table_s;

/** The container record. The fields are public and read by callers; change the comparator
    and filter through DS_set_comparator / DS_set_filter so that the registries are honoured. */
typedef struct DS_Structure {
    int ordered;                     /**< 1 when the members are known to be in comparator order */
    void* storage;                   /**< the kind's storage root; null for an empty list or tree */
    DS_Compare_fn comparator;        /**< Ds_fifo_comparator at creation */
    DS_Filter_fn filter;             /**< null at creation: every member passes */
    struct DS_Jump_table_s* methods; /**< the kind's operations; null for an unknown kind */
} DS_Structure;

/** The operations of one kind, in slot order. A node is the address of a member slot: the
    item is the node's first field, so a node is also a `void **`. Every operation sees only
    members that pass the structure's filter, except sort and destructor, which see all.
    At registration every slot must be filled except intersect (8) and allocate (18); the four
    spare slots stay empty in every kind.

    | slot | operation     | result                                                          |
    |------|---------------|-----------------------------------------------------------------|
    | 0    | walk          | members visited; -1 for a null structure or walker (status      |
    |      |               | `VK_ARGUMENT_ERROR` (1))                                        |
    | 1    | enumerate     | members that pass the filter; -1 for a null structure           |
    | 2    | add           | 1 on success (status `VK_CANNOT_SORT` (14) without comparator:  |
    |      |               | appended); 0 with status `VK_ARGUMENT_ERROR` (1),               |
    |      |               | `VK_MEMORY_FAULT` (3) or `VK_ITEM_FILTERED` (16)                |
    | 3    | remove        | the next visible node after the removed one; null and status    |
    |      |               | `VK_ITEM_NOT_FOUND` (12)                                        |
    | 4    | sort          | 1 on success; 0 with status `VK_CANNOT_SORT` (14, no comparator)|
    |      |               | or `VK_MEMORY_FAULT` (3)                                        |
    | 5    | merge         | new storage holding both structures' visible members            |
    | 6    | find          | first visible node that matches                                 |
    | 7    | difference    | new storage: members of the first absent from the second        |
    | 8    | intersect     | new storage: members of the first present in the second         |
    | 9    | contains_item | 1 when the item (same pointer) is a visible member              |
    | 10   | get_data      | the node's item                                                 |
    | 11   | set_data      | stores an item in the node, returns the previous one            |
    | 12   | duplicate     | new storage holding copies of the visible members               |
    | 13   | head          | first visible node                                              |
    | 14   | tail          | last visible node                                               |
    | 15   | next          | following visible node or null                                  |
    | 16   | prev          | preceding visible node or null                                  |
    | 17   | destructor    | frees every node (filter ignored), storage becomes null         |
    | 18   | allocate      | a new, empty storage root (array kind only)                     |
    | 19   | get_type      | the kind's identifier                                           | */
typedef struct DS_Jump_table_s {
    /** Slot 0: visits the visible members in order with `walker`. `limit` > 0 visits at most
        that many members (status `VK_WALK_INCOMPLETE` (11) when more remain); `from_end`
        non-zero walks from the last member backwards. */
    long (*walk)(DS_Structure* s, DS_Walk_fn walker, void* user, int limit, int from_end,
                 int* status);
    /** Slot 1: counts the visible members. */
    int (*enumerate)(DS_Structure* s, int* status);
    /** Slot 2: adds `item` by the insertion rule; filtered items are refused. */
    long (*add)(DS_Structure* s, void* item, int* status);
    /** Slot 3: removes the node holding `item`, passing its slot to `callback`. */
    void* (*remove)(DS_Structure* s, void* item, DS_Free_fn callback, void* user, int* status);
    /** Slot 4: sorts all members, filtered ones included, into comparator order. */
    long (*sort)(DS_Structure* s, int* status);
    /** Slot 5: a new storage root holding the members of both. */
    void* (*merge)(DS_Structure* a, DS_Structure* b, int* status);
    /** Slot 6: the first visible node whose item `match`es `key`. */
    void* (*find)(DS_Structure* s, DS_Match_fn match, void* key, int* status);
    /** Slot 7: a new storage root: members of `a` absent from `b`. */
    void* (*difference)(DS_Structure* a, DS_Structure* b, int* status);
    /** Slot 8: a new storage root: members of `a` present in `b` (a kind may leave it empty). */
    void* (*intersect)(DS_Structure* a, DS_Structure* b, int* status);
    /** Slot 9: 1 when `item` is a visible member. */
    long (*contains_item)(DS_Structure* s, void* item, int* status);
    /** Slot 10: the item a node holds. */
    void* (*get_data)(void* node, int* status);
    /** Slot 11: stores `item` in a node and returns the previous one. */
    void* (*set_data)(void* node, void* item, int* status);
    /** Slot 12: a new storage root with `copy` of each visible item. */
    void* (*duplicate)(DS_Structure* s, DS_Copy_fn copy, void* user, int* status);
    /** Slot 13: the first visible node. */
    void* (*head)(DS_Structure* s, int* status);
    /** Slot 14: the last visible node. */
    void* (*tail)(DS_Structure* s, int* status);
    /** Slot 15: the visible node after `node`, or null. */
    void* (*next)(DS_Structure* s, void* node, int* status);
    /** Slot 16: the visible node before `node`, or null. */
    void* (*prev)(DS_Structure* s, void* node, int* status);
    /** Slot 17: frees every node, passing each slot to `callback`. */
    long (*destructor)(DS_Structure* s, DS_Free_fn callback, void* user, int* status);
    /** Slot 18: a new empty storage root (only the array kind fills it). */
    void* (*allocate)(DS_Structure* s, int* status);
    /** Slot 19: the kind's identifier. */
    int (*get_type)(void);
    /** Reserved; empty in every kind. */
    void (*spare[4])(void);
} DS_Jump_table_s;

/* ---- kinds and structures ---- */

/** The identifiers of the four built-in structure kinds, for DS_create_type. A kind a caller
    registers itself with Ds_register_structure takes any other non-negative number. */
typedef enum DS_Kind {
    DS_KIND_DLIST = 1, /**< doubly linked list */
    DS_KIND_SLIST = 2, /**< singly linked list */
    DS_KIND_AVL = 3,   /**< balanced (AVL) binary tree */
    DS_KIND_ARRAY = 4, /**< growable array */
} DS_Kind;

/** Registers `table` as kind `kind`. Returns 1; 0 with status `VK_ARGUMENT_ERROR` (1) for a null
    table, `VK_INVALID_DATA` (5) when a slot other than intersect or allocate is empty, or
    `VK_INVALID_FUNCTION` (4) for a negative or already registered kind (the first
    table stays). The library registers kinds 2, 1, 3 and 4 itself when it loads. */
OBRIX_API long Ds_register_structure(int kind, DS_Jump_table_s* table, int* status);

/** The registration table of kinds (identifier to DS_Jump_table_s), owned by the framework.
    Its `ordered` flag is 0 after start-up: the library registers its kinds without a status
    pointer, and an add that cannot report its status never claims to have kept the order.
    Lookups by identifier walk the table and do not depend on the flag. */
OBRIX_API DS_Structure* Ds_get_object_table(void);

/** A new, empty structure of `kind` with comparator Ds_fifo_comparator, no filter and
    `ordered` 1. Null with status `VK_ITEM_NOT_FOUND` (12) for a kind that is not registered,
    and null with `VK_MEMORY_FAULT` (3) when memory runs out: a non-null result always has its
    kind's `methods`. `line` and `file` name the caller's
    source position and are not used: the record comes from the C heap (malloc), like every
    node of the four kinds (the heap rule in ma_memory_manager.h), and is not counted by
    MA_get_stats. Release with DS_destructor. */
OBRIX_API DS_Structure* DS_create_type(int kind, int* status, int line, const char* file);

/** Empties `*s` (see DS_empty_list), frees the record and sets `*s` to null; returns 1.
    Null `s` gives status `VK_ARGUMENT_ERROR` (1) and 0. Items are passed to `callback` and never
   freed otherwise. */
OBRIX_API long DS_destructor(DS_Structure** s, DS_Free_fn callback, void* user, int* status);

/** Frees every node of `s` (filter ignored), passing each member slot to `callback` when one
    is given. The record stays usable. A null structure or one without methods counts as empty:
    returns 1. */
OBRIX_API long DS_empty_list(DS_Structure* s, DS_Free_fn callback, void* user, int* status);

/** Frees `*p` with free() when not null and sets it to null; always 1. */
OBRIX_API long DS_memory_free(void** p);

/** DS_memory_free as a free callback, for DS_destructor, DS_empty_list and remove. The
    framework recognises it and calls DS_memory_free with its one argument. */
#define DS_MEMORY_FREE ((DS_Free_fn)(void (*)(void))DS_memory_free)

/** `s`'s comparator applied to `a` and `b`; 0 when `s` is null or has none. */
OBRIX_API int DS_comparator(DS_Structure* s, void* a, void* b);

/** True when `s` is null, has no filter, or its filter passes `item`. */
OBRIX_API bool DS_filter(DS_Structure* s, void* item);

/** Sets `s`'s comparator and returns the previous one. Once any comparator was registered,
    only registered ones (null included only if registered) are accepted: otherwise status
   `VK_ITEM_NOT_FOUND` (12) and nothing changes. Null `s`: status `VK_ARGUMENT_ERROR` (1), null.
   Does not reorder existing members. */
OBRIX_API DS_Compare_fn DS_set_comparator(DS_Structure* s, DS_Compare_fn comparator, int* status);

/** DS_set_comparator's rule for filters, against the filter registry. */
OBRIX_API DS_Filter_fn DS_set_filter(DS_Structure* s, DS_Filter_fn filter, int* status);

/** Registers a comparator under `index`: 1, or 0 with status `VK_INVALID_FUNCTION` (4) for a
 * negative or taken index. */
OBRIX_API long DS_register_comparator(int index, DS_Compare_fn comparator, int* status);
/** Registers a filter under `index`: 1, or 0 with status `VK_INVALID_FUNCTION` (4) for a negative
 * or taken index. */
OBRIX_API long DS_register_filter(int index, DS_Filter_fn filter, int* status);
/** The comparator registered under `index`, or null with status `VK_ITEM_NOT_FOUND` (12). */
OBRIX_API DS_Compare_fn DS_get_comparator_function(int index, int* status);
/** The filter registered under `index`, or null with status `VK_ITEM_NOT_FOUND` (12). */
OBRIX_API DS_Filter_fn DS_get_filter_function(int index, int* status);
/** The index `comparator` was first registered under, or -1. */
OBRIX_API int DS_get_comparator_index(DS_Compare_fn comparator, int* status);
/** The index `filter` was first registered under, or -1. */
OBRIX_API int DS_get_filter_index(DS_Filter_fn filter, int* status);

/** A new structure of `a`'s kind, comparator and filter holding, in `a`'s order, the visible
    members of `a` whose items are not visible members of `b`. Status `VK_ARGUMENT_ERROR` (1) for a
   null structure or one without methods, `VK_INCOMPATIBILITY` (7) when the kinds or comparators
   differ, `VK_MEMORY_FAULT` (3) when memory runs out. An empty result of a list or tree kind is
   null (status 0). The result is marked ordered only when a status pointer was given, the kind did
   not report `VK_CANNOT_SORT` (14) and both inputs were ordered. Cost: O(n log m). The caller
   destroys the result; items are shared, not copied. */
OBRIX_API DS_Structure* DS_difference(DS_Structure* a, DS_Structure* b, int* status);

/** DS_difference's rules, keeping the members of `a` that are visible members of `b`. */
OBRIX_API DS_Structure* DS_intersect(DS_Structure* a, DS_Structure* b, int* status);

/** A new structure holding the visible members of `a` and `b`, merged by `a`'s comparator:
    a member of `b` goes in front of the current member of `a` unless the comparator answers
    exactly 1 (so a FIFO comparator gives `a` then `b`). Compatibility, status and ordered rules
    as DS_difference, except that an empty result is an empty structure, not null. */
OBRIX_API DS_Structure* DS_merge(DS_Structure* a, DS_Structure* b, int* status);

/** A new structure of `s`'s kind, comparator and filter holding its visible members in order,
    each passed through `copy` when one is given (else the items are shared). Status
   `VK_ARGUMENT_ERROR` (1) for a null structure or one without methods; ordered rule as
   DS_difference; an empty result is an empty structure. */
OBRIX_API DS_Structure* DS_duplicate(DS_Structure* s, DS_Copy_fn copy, void* user, int* status);

/** Removes every member for which `keep` returns 0 (every member when `keep` is null),
    passing each removed slot to `callback`. The filter and comparator are cleared through
    DS_set_filter / DS_set_comparator for the pass, so once a filter registry exists the filter
    cannot be cleared and only visible members are considered. Returns 1; null `s`: status
   `VK_ARGUMENT_ERROR` (1), 0. */
OBRIX_API long DS_remove_unfiltered_items(DS_Structure* s, DS_Filter_fn keep, DS_Free_fn callback,
                                          void* user, int* status);

/** Removes every member whose item is null; returns 1, or 0 with status `VK_ARGUMENT_ERROR` (1) for
 * null `s`. */
OBRIX_API long DS_remove_nulls(DS_Structure* s, int* status);

/** Prints the structure through rptDebug at level 0: its address, filter, comparator, ordered
    flag, then every visible member through `print` (or as its address without one). A null
    structure prints "Null structure\n". */
OBRIX_API void DS_print_structure(DS_Structure* s, DS_Print_fn print, void* user, int* status);
/** Accepts DS_print_structure's arguments and prints nothing. */
OBRIX_API void DS_print(DS_Structure* s, DS_Print_fn print, void* user, int* status);

/* ---- ready-made callbacks ---- */

/** Compares the items held in two member slots as unsigned addresses: -1, 0, 1; 0 when
    either slot address is null. It takes the slots as what they are (`void **`), so store it
    in a DS_Compare_fn through DS_DEFAULT_COMPARATOR; the framework recognises it there and
    calls it with its own type. */
OBRIX_API int Ds_default_comparator(void** a, void** b);
/** Always 1: each new member goes after every existing one (insertion order). */
OBRIX_API int Ds_fifo_comparator(void* a, void* b);
/** Always -1: each new member goes in front (newest first). */
OBRIX_API int Ds_filo_comparator(void* a, void* b);
/** Compares the strings held in two member slots byte by byte as unsigned characters: -1, 0
    or 1; 0 when either slot address or either string is null. Store it in a DS_Compare_fn
    through DS_STRING_COMPARATOR. */
OBRIX_API int Ds_string_comparator(char** a, char** b);
/** Match callback for strings: 1 when `a` and `b` are equal strings, else 0 (also when either
    is null). Pass it where a DS_Match_fn is wanted through DS_STRING_FIND. */
OBRIX_API int Ds_string_find(char* a, char* b);

/** The ready-made callbacks above as the framework's callback types. The framework recognises
    these values wherever it calls a comparator or a match callback and calls the functions
    with their own argument types; other code that calls them through the callback types
    relies on `void *`, `void **` and `char *` being passed alike, as every supported
    platform does. */
/**@{*/
#define DS_DEFAULT_COMPARATOR ((DS_Compare_fn)(void (*)(void))Ds_default_comparator)
#define DS_STRING_COMPARATOR ((DS_Compare_fn)(void (*)(void))Ds_string_comparator)
#define DS_STRING_FIND ((DS_Match_fn)(void (*)(void))Ds_string_find)
/**@}*/

/** ---- the four kinds ----
   Each kind exports its table and its twenty operations as Ds_<kind>_<operation>, with the
   arguments of the table's slots. Cost per operation, n members:
     dlist (1)   add O(n) by comparator, O(1) with the FIFO/FILO comparators; prev/tail O(1).
     slist (2)   add O(n) (FIFO appends walk to the end); prev and tail O(n).
     bintree (3) add O(log n): a balanced tree found by descent, which agrees with the list kinds
                 whenever the members are in comparator order; remove by item O(n).
     array (4)   add O(n) by comparator (amortised O(1) with FIFO); nodes are slot addresses
                 and move when the array grows or a member is removed.
   find, contains_item and remove compare items by pointer and are O(n) in every kind. */
#define DS_DECLARE_KIND_OPERATIONS(kind)                                                           \
    OBRIX_API DS_Jump_table_s* Ds_##kind##_get_methods(void);                                      \
    OBRIX_API long Ds_##kind##_walk(DS_Structure* s, DS_Walk_fn walker, void* user, int limit,     \
                                    int from_end, int* status);                                    \
    OBRIX_API int Ds_##kind##_enumerate(DS_Structure* s, int* status);                             \
    OBRIX_API long Ds_##kind##_add(DS_Structure* s, void* item, int* status);                      \
    OBRIX_API void* Ds_##kind##_remove(DS_Structure* s, void* item, DS_Free_fn callback,           \
                                       void* user, int* status);                                   \
    OBRIX_API long Ds_##kind##_sort(DS_Structure* s, int* status);                                 \
    OBRIX_API void* Ds_##kind##_merge(DS_Structure* a, DS_Structure* b, int* status);              \
    OBRIX_API void* Ds_##kind##_find(DS_Structure* s, DS_Match_fn match, void* key, int* status);  \
    OBRIX_API void* Ds_##kind##_difference(DS_Structure* a, DS_Structure* b, int* status);         \
    OBRIX_API void* Ds_##kind##_intersect(DS_Structure* a, DS_Structure* b, int* status);          \
    OBRIX_API long Ds_##kind##_contains_item(DS_Structure* s, void* item, int* status);            \
    OBRIX_API void* Ds_##kind##_get_data(void* node, int* status);                                 \
    OBRIX_API void* Ds_##kind##_set_data(void* node, void* item, int* status);                     \
    OBRIX_API void* Ds_##kind##_duplicate(DS_Structure* s, DS_Copy_fn copy, void* user,            \
                                          int* status);                                            \
    OBRIX_API void* Ds_##kind##_head(DS_Structure* s, int* status);                                \
    OBRIX_API void* Ds_##kind##_tail(DS_Structure* s, int* status);                                \
    OBRIX_API void* Ds_##kind##_next(DS_Structure* s, void* node, int* status);                    \
    OBRIX_API void* Ds_##kind##_prev(DS_Structure* s, void* node, int* status);                    \
    OBRIX_API long Ds_##kind##_destructor(DS_Structure* s, DS_Free_fn callback, void* user,        \
                                          int* status);                                            \
    OBRIX_API int Ds_##kind##_get_type(void)

/**@{*/
/** The exported operations of the four built-in kinds: Ds_dlist_*, Ds_slist_*,
    Ds_bintree_* and Ds_array_* (costs above). */
DS_DECLARE_KIND_OPERATIONS(dlist);
DS_DECLARE_KIND_OPERATIONS(slist);
DS_DECLARE_KIND_OPERATIONS(bintree);
DS_DECLARE_KIND_OPERATIONS(array);
/**@}*/

/** The array kind's storage record, zero-filled when allocated. */
typedef struct Ds_Array_storage_s {
    void** items; /**< `count` member slots; the nodes of this kind */
    int count;    /**< members held */
    int capacity; /**< slots allocated; doubles when full */
} Ds_Array_storage_s;

/** The array kind's allocate operation: a zero-filled Ds_Array_storage_s, or null with
    status `VK_MEMORY_FAULT` (3). */
OBRIX_API void* Ds_array_allocate(DS_Structure* s, int* status);

/** Prints "Current is %d\n" with the number of members held through AA_debug_print; status
   `VK_ARGUMENT_ERROR` (1) for a null structure. */
OBRIX_API void Ds_array_print_current(DS_Structure* s, int* status);

OBRIX_EXTERN_C_END

#endif
