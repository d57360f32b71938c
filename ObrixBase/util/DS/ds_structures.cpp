// The structure framework: the registries of kinds, comparators and filters, the generic
// operations over any kind, and the ready-made callbacks.
#include "ObrixBase/util/DS/ds_structures.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "Base/rpt/rpt.h"
#include "ObrixBase/util/DS/ds_kind_internal.h"
#include "ObrixBase/util/DS/vk_register.h"
#include "ObrixBase/util/aa_debug.h"

namespace {

// The framework's registries, process-wide and unguarded like the rest of the library's
// state. Each is a registration table, created by its first registration and kept until the
// process ends.
DS_Structure* objectTable = nullptr;
DS_Structure* comparatorRegistry = nullptr;
DS_Structure* filterRegistry = nullptr;

bool builtinKindsRegistered = false;

// Kind 2 goes first: registration tables are themselves singly linked lists, so it must be
// known before any other table is made.
void registerBuiltinKinds() {
    if (builtinKindsRegistered)
        return;
    builtinKindsRegistered = true;
    Ds_register_structure(2, Ds_slist_get_methods(), nullptr);
    Ds_register_structure(1, Ds_dlist_get_methods(), nullptr);
    Ds_register_structure(3, Ds_bintree_get_methods(), nullptr);
    Ds_register_structure(4, Ds_array_get_methods(), nullptr);
}

// The library's one load-time registration: callers never meet an empty kind registry.
struct BuiltinKinds {
    BuiltinKinds() { registerBuiltinKinds(); }
} builtinKinds;

template <class Fn>
void* fnToItem(Fn fn) {
    return reinterpret_cast<void*>(fn);
}
template <class Fn>
Fn itemToFn(void* item) {
    return reinterpret_cast<Fn>(item);
}

// True when `fn` may be installed: no registry yet, or `fn` registered in it.
bool acceptable(DS_Structure* registry, void* fn) {
    if (!registry)
        return true;
    int local = 0;
    return VK_get_items_registration_id(fn, registry, &local) >= 0;
}

// The comparator and filter registries follow one rule, written once: a structure's function
// is replaced only by one its registry holds (any function while there is no registry), and
// lookups answer through the registry by index or by function.
template <class Fn>
Fn setRegistered(DS_Structure* s, Fn DS_Structure::*field, DS_Structure* registry, Fn fn,
                 int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!s) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return nullptr;
    }
    Fn previous = s->*field;
    if (!acceptable(registry, fnToItem(fn))) {
        VK_SET_STATUS(status, VK_ITEM_NOT_FOUND);
        return previous;
    }
    s->*field = fn;
    return previous;
}

template <class Fn>
Fn registeredFunction(DS_Structure* registry, int index, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    int local = 0;
    void* item = VK_get_id_registration(index, registry, &local);
    if (!item)
        VK_SET_STATUS(status, VK_ITEM_NOT_FOUND);
    return itemToFn<Fn>(item);
}

template <class Fn>
int registeredIndex(DS_Structure* registry, Fn fn, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    int local = 0;
    return registry ? VK_get_items_registration_id(fnToItem(fn), registry, &local) : -1;
}

// The low 32 bits of an address, the width the structure printout shows.
unsigned low32(const void* p) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(p));
}

using StorageOp = void* (*)(DS_Structure*, DS_Structure*, int*);

// An empty record without methods, for the set operations that lend it a kind's table
// themselves. The record comes from the C heap like every node of the kinds, so that
// DS_destructor and callers free it alike.
DS_Structure* newRecord() {
    auto* s = static_cast<DS_Structure*>(std::malloc(sizeof(DS_Structure)));
    if (!s)
        return nullptr;
    s->ordered = 1;
    s->storage = nullptr;
    s->comparator = &Ds_fifo_comparator;
    s->filter = nullptr;
    s->methods = nullptr;
    return s;
}

// Makes the result record of difference, intersection and merge: `a`'s kind, comparator and
// filter over the storage that `op` builds. The record is made first so that a memory
// shortage is known before the kind does any work.
DS_Structure* combine(DS_Structure* a, DS_Structure* b, StorageOp (*slot)(DS_Jump_table_s*),
                      bool nullWhenEmpty, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!a || !b || !a->methods || !b->methods) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return nullptr;
    }
    StorageOp op = slot(a->methods);
    if (!op || op != slot(b->methods) || a->comparator != b->comparator) {
        VK_SET_STATUS(status, VK_INCOMPATIBILITY);
        return nullptr;
    }
    DS_Structure* result = newRecord();
    if (!result) {
        VK_SET_STATUS(status, VK_MEMORY_FAULT);
        return nullptr;
    }
    result->methods = a->methods;
    result->filter = a->filter;
    result->comparator = a->comparator;
    int local = 0;
    result->storage = op(a, b, &local);
    if (local != VK_NO_ERROR && local != VK_CANNOT_SORT) {
        VK_SET_STATUS(status, local);
        std::free(result);
        return nullptr;
    }
    if (!result->storage && nullWhenEmpty) {
        std::free(result);
        return nullptr;
    }
    // Without a status pointer the caller cannot learn how the kind fared, so the result is
    // never claimed to be ordered then.
    result->ordered = status && local != VK_CANNOT_SORT && a->ordered && b->ordered ? 1 : 0;
    VK_SET_STATUS(status, local);
    return result;
}

int compareUnsigned(std::uintptr_t x, std::uintptr_t y) {
    return x == y ? 0 : (x > y ? 1 : -1);
}

int keepNonNull(void* item) {
    return item != nullptr;
}

} // namespace

namespace obrix::ds {

long callFree(DS_Free_fn callback, void** slot, void* user) {
    using AnyFn = void (*)(void);
    if (reinterpret_cast<AnyFn>(callback) == reinterpret_cast<AnyFn>(&DS_memory_free))
        return DS_memory_free(slot);
    return callback(slot, user);
}

int callCompare(DS_Compare_fn comparator, void* a, void* b) {
    if (comparator == DS_DEFAULT_COMPARATOR)
        return Ds_default_comparator(static_cast<void**>(a), static_cast<void**>(b));
    if (comparator == DS_STRING_COMPARATOR)
        return Ds_string_comparator(static_cast<char**>(a), static_cast<char**>(b));
    return comparator(a, b);
}

int callMatch(DS_Match_fn match, void* item, void* key) {
    if (match == DS_STRING_FIND)
        return Ds_string_find(static_cast<char*>(item), static_cast<char*>(key));
    return match(item, key);
}

namespace {
DS_Compare_fn sortComparator = nullptr;
int sortAdapter(const void* a, const void* b) {
    return callCompare(sortComparator, const_cast<void*>(a), const_cast<void*>(b));
}
} // namespace

void sortItems(void** items, size_t n, DS_Compare_fn comparator) {
    // A comparator may itself sort another structure, so the one in use is restored after.
    DS_Compare_fn outer = sortComparator;
    sortComparator = comparator;
    std::qsort(items, n, sizeof(void*), &sortAdapter);
    sortComparator = outer;
}

} // namespace obrix::ds

extern "C" {

long Ds_register_structure(int kind, DS_Jump_table_s* table, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!table) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    // Intersection and allocation are optional; every other operation is needed by the
    // framework's generic operations.
    const bool complete = table->walk && table->enumerate && table->add && table->remove &&
                          table->sort && table->merge && table->find && table->difference &&
                          table->contains_item && table->get_data && table->set_data &&
                          table->duplicate && table->head && table->tail && table->next &&
                          table->prev && table->destructor && table->get_type;
    if (!complete) {
        VK_SET_STATUS(status, VK_INVALID_DATA);
        return 0;
    }
    // The object table cannot be made by DS_create_type before any kind exists, so the first
    // kind registered lends it its own operations.
    if (!objectTable) {
        auto* record = static_cast<DS_Structure*>(std::malloc(sizeof(DS_Structure)));
        if (!record) {
            VK_SET_STATUS(status, VK_MEMORY_FAULT);
            return 0;
        }
        record->ordered = 1;
        record->storage = nullptr;
        record->comparator = DS_DEFAULT_COMPARATOR;
        record->filter = nullptr;
        record->methods = table;
        if (table->allocate)
            record->storage = table->allocate(record, status);
        objectTable = record;
    }
    return VK_register_item(kind, table, &objectTable, status);
}

DS_Structure* Ds_get_object_table(void) {
    registerBuiltinKinds();
    return objectTable;
}

// The caller's source position is not needed: the record is not accounted.
DS_Structure* DS_create_type(int kind, int* status, int /*line*/, const char* /*file*/) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    registerBuiltinKinds();
    if (!objectTable) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return nullptr;
    }
    int local = 0;
    auto* methods =
        static_cast<DS_Jump_table_s*>(VK_get_id_registration(kind, objectTable, &local));
    // A record without methods would look like a structure to the caller and fail only at the
    // first s->methods->add: refuse the kind here instead.
    if (!methods) {
        VK_SET_STATUS(status, VK_ITEM_NOT_FOUND);
        return nullptr;
    }
    DS_Structure* s = newRecord();
    if (!s) {
        VK_SET_STATUS(status, VK_MEMORY_FAULT);
        return nullptr;
    }
    s->methods = methods;
    if (methods->allocate)
        s->storage = methods->allocate(s, status);
    return s;
}

long DS_destructor(DS_Structure** s, DS_Free_fn callback, void* user, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!s) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    long emptied = DS_empty_list(*s, callback, user, status);
    if (!emptied)
        return emptied;
    std::free(*s);
    *s = nullptr;
    return 1;
}

long DS_empty_list(DS_Structure* s, DS_Free_fn callback, void* user, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!s || !s->methods)
        return 1;
    long result = s->methods->destructor(s, callback, user, status);
    return result ? 1 : result;
}

long DS_memory_free(void** p) {
    if (p && *p) {
        std::free(*p);
        *p = nullptr;
    }
    return 1;
}

int DS_comparator(DS_Structure* s, void* a, void* b) {
    return s && s->comparator ? obrix::ds::callCompare(s->comparator, a, b) : 0;
}

bool DS_filter(DS_Structure* s, void* item) {
    return !s || !s->filter || s->filter(item) != 0;
}

DS_Compare_fn DS_set_comparator(DS_Structure* s, DS_Compare_fn comparator, int* status) {
    return setRegistered(s, &DS_Structure::comparator, comparatorRegistry, comparator, status);
}

DS_Filter_fn DS_set_filter(DS_Structure* s, DS_Filter_fn filter, int* status) {
    return setRegistered(s, &DS_Structure::filter, filterRegistry, filter, status);
}

long DS_register_comparator(int index, DS_Compare_fn comparator, int* status) {
    return VK_register_item(index, fnToItem(comparator), &comparatorRegistry, status);
}

long DS_register_filter(int index, DS_Filter_fn filter, int* status) {
    return VK_register_item(index, fnToItem(filter), &filterRegistry, status);
}

DS_Compare_fn DS_get_comparator_function(int index, int* status) {
    return registeredFunction<DS_Compare_fn>(comparatorRegistry, index, status);
}

DS_Filter_fn DS_get_filter_function(int index, int* status) {
    return registeredFunction<DS_Filter_fn>(filterRegistry, index, status);
}

int DS_get_comparator_index(DS_Compare_fn comparator, int* status) {
    return registeredIndex(comparatorRegistry, comparator, status);
}

int DS_get_filter_index(DS_Filter_fn filter, int* status) {
    return registeredIndex(filterRegistry, filter, status);
}

DS_Structure* DS_difference(DS_Structure* a, DS_Structure* b, int* status) {
    return combine(
        a, b, [](DS_Jump_table_s* t) -> StorageOp { return t->difference; }, true, status);
}

DS_Structure* DS_intersect(DS_Structure* a, DS_Structure* b, int* status) {
    return combine(
        a, b, [](DS_Jump_table_s* t) -> StorageOp { return t->intersect; }, true, status);
}

DS_Structure* DS_merge(DS_Structure* a, DS_Structure* b, int* status) {
    return combine(
        a, b, [](DS_Jump_table_s* t) -> StorageOp { return t->merge; }, false, status);
}

DS_Structure* DS_duplicate(DS_Structure* s, DS_Copy_fn copy, void* user, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!s || !s->methods) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return nullptr;
    }
    DS_Structure* result = newRecord();
    if (!result) {
        VK_SET_STATUS(status, VK_MEMORY_FAULT);
        return nullptr;
    }
    result->methods = s->methods;
    result->filter = s->filter;
    result->comparator = s->comparator;
    int local = 0;
    result->storage = s->methods->duplicate(s, copy, user, &local);
    if (local != VK_NO_ERROR && local != VK_CANNOT_SORT) {
        VK_SET_STATUS(status, local);
        std::free(result);
        return nullptr;
    }
    result->ordered = status && local != VK_CANNOT_SORT && s->ordered ? 1 : 0;
    VK_SET_STATUS(status, local);
    return result;
}

long DS_remove_unfiltered_items(DS_Structure* s, DS_Filter_fn keep, DS_Free_fn callback, void* user,
                                int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!s) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    if (!s->methods)
        return 1;
    DS_Filter_fn savedFilter = s->filter;
    DS_Compare_fn savedComparator = s->comparator;
    int local = 0;
    DS_set_filter(s, nullptr, &local);
    DS_set_comparator(s, nullptr, &local);
    DS_Jump_table_s* m = s->methods;
    void* node = m->head(s, &local);
    while (node) {
        void* item = m->get_data(node, &local);
        if (keep && keep(item))
            node = m->next(s, node, &local);
        else
            node = m->remove(s, item, callback, user, &local);
    }
    // Restored directly: going through the setters could refuse an unregistered original.
    s->filter = savedFilter;
    s->comparator = savedComparator;
    return 1;
}

long DS_remove_nulls(DS_Structure* s, int* status) {
    return DS_remove_unfiltered_items(s, &keepNonNull, nullptr, nullptr, status);
}

void DS_print_structure(DS_Structure* s, DS_Print_fn print, void* user, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!s) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        rptDebug(0, "Null structure\n");
        return;
    }
    rptDebug(0, "Structure 0x%x\n", low32(s));
    rptDebug(0, ">>>");
    rptDebug(0, "Filter = 0x%x\n", low32(fnToItem(s->filter)));
    rptDebug(0, "Comparator = 0x%x\n", low32(fnToItem(s->comparator)));
    rptDebug(0, "Ordered = %s\n", s->ordered ? "TRUE" : "FALSE");
    rptDebug(0, "Filtered Member list =\n");
    rptDebug(0, ">>>");
    if (DS_Jump_table_s* m = s->methods) {
        int local = 0;
        for (void* node = m->head(s, &local); node; node = m->next(s, node, &local)) {
            void* item = m->get_data(node, &local);
            rptDebug(0, "Item %#x:\n", low32(node));
            if (print) {
                rptDebug(0, ">>>");
                print(item, user);
                rptDebug(0, "<<<");
            } else {
                rptDebug(0, "0x%x\n", low32(item));
            }
        }
    }
    rptDebug(0, "<<<");
    rptDebug(0, "<<<");
}

void DS_print(DS_Structure*, DS_Print_fn, void*, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
}

int Ds_default_comparator(void** a, void** b) {
    if (!a || !b)
        return 0;
    return compareUnsigned(reinterpret_cast<std::uintptr_t>(*a),
                           reinterpret_cast<std::uintptr_t>(*b));
}

int Ds_fifo_comparator(void*, void*) {
    return 1;
}

int Ds_filo_comparator(void*, void*) {
    return -1;
}

int Ds_string_comparator(char** a, char** b) {
    if (!a || !b)
        return 0;
    const char* x = *a;
    const char* y = *b;
    if (!x || !y)
        return 0;
    // strcmp compares as unsigned char, which is the order wanted here.
    int c = std::strcmp(x, y);
    return c == 0 ? 0 : (c > 0 ? 1 : -1);
}

int Ds_string_find(char* a, char* b) {
    if (!a || !b)
        return 0;
    return std::strcmp(a, b) == 0 ? 1 : 0;
}

} // extern "C"
