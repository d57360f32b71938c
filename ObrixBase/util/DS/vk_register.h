/* Registration tables: maps from non-negative integer identifiers to opaque items, kept as a
   singly linked list structure (kind 2) of identifier/item records in registration order.
   Start with a null DS_Structure pointer; the first VK_register_item creates the table.
   Lookups walk the table, so they suit the small tables of kinds, callbacks and services. */
#ifndef OBRIX_UTIL_DS_VK_REGISTER_H
#define OBRIX_UTIL_DS_VK_REGISTER_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/util/DS/ds_structures.h"

OBRIX_EXTERN_C_BEGIN

/** One registration, a heap record owned by its table. */
typedef struct VK_Registration_s {
    int id;     /**< at least 0, unique within the table */
    void* item; /**< the registered item, not owned */
} VK_Registration_s;

/** Registers `item` under `id` in `*table`, creating the table when `*table` is null.
    Returns 1; 0 with status `VK_ARGUMENT_ERROR` (1) for a null `table`,
    `VK_INVALID_FUNCTION` (4) for a negative `id` or one the table holds (the earlier
    registration stays), `VK_MEMORY_FAULT` (3) when memory runs out, or the status of the
    table's add (`VK_ITEM_FILTERED` (16) when a filter set on the table refuses the record,
    which is then freed). Without a status pointer
    a refused record still answers 1. The same item may be registered under several
    identifiers. Cost O(n). */
OBRIX_API long VK_register_item(int id, void* item, DS_Structure** table, int* status);

/** The item registered under `id`, or null when `table` is null (status `VK_ARGUMENT_ERROR` (1)),
   empty, or does not hold `id` (status 0). */
OBRIX_API void* VK_get_id_registration(int id, DS_Structure* table, int* status);

/** The identifier of the first registration of `item` (pointer identity), or -1; a null
    table gives status `VK_ARGUMENT_ERROR` (1). */
OBRIX_API int VK_get_items_registration_id(void* item, DS_Structure* table, int* status);

/** Removes the first registration of `item` and frees its record: 1 when one was removed, 0
    otherwise. Null `item` gives status `VK_ARGUMENT_ERROR` (1) and 0. Also drops any member whose
   item slot is null. */
OBRIX_API long VK_deregister_item(void* item, DS_Structure* table, int* status);

/** Removes and frees every registration; the table record stays and can be reused. A null
    table returns 1. Never frees the registered items. */
OBRIX_API long VK_clear_registrations(DS_Structure* table, int* status);

OBRIX_EXTERN_C_END

#endif
