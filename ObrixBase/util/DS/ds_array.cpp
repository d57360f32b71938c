// Kind 4, the array: a Ds_Array_storage_s whose member slots are the nodes. Slots are
// contiguous, so walking is cheap, but a node's address changes when the array grows or a
// member in front of it is removed.
#include <climits>
#include <cstdlib>
#include <cstring>

#include "ObrixBase/util/DS/ds_kind_internal.h"

namespace {

struct ArrayPolicy {
    static constexpr int kType = 4;
    static constexpr bool kCheapBefore = true;
    static constexpr bool kHasAllocate = true;

    static void* allocate(DS_Structure*, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        void* storage = std::calloc(1, sizeof(Ds_Array_storage_s));
        if (!storage)
            VK_SET_STATUS(status, VK_MEMORY_FAULT);
        return storage;
    }

    static Ds_Array_storage_s* store(DS_Structure* s) {
        return static_cast<Ds_Array_storage_s*>(s->storage);
    }
    static int indexOf(DS_Structure* s, void** node) { return int(node - store(s)->items); }

    static void** first(DS_Structure* s) {
        Ds_Array_storage_s* a = store(s);
        return a && a->count ? a->items : nullptr;
    }
    static void** last(DS_Structure* s) {
        Ds_Array_storage_s* a = store(s);
        return a && a->count ? a->items + a->count - 1 : nullptr;
    }
    static void** after(DS_Structure* s, void** node) {
        return indexOf(s, node) + 1 < store(s)->count ? node + 1 : nullptr;
    }
    static void** before(DS_Structure* s, void** node) {
        return indexOf(s, node) > 0 ? node - 1 : nullptr;
    }
    static int count(DS_Structure* s) { return store(s) ? store(s)->count : 0; }

    static void** insertAfter(DS_Structure* s, void** prev, void* item) {
        if (!store(s) && !(s->storage = allocate(s, nullptr)))
            return nullptr;
        Ds_Array_storage_s* a = store(s);
        // The index is taken before growing: growth moves every slot.
        const int at = prev ? indexOf(s, prev) + 1 : 0;
        if (a->count == a->capacity) {
            if (a->capacity > INT_MAX / 2)
                return nullptr;
            const int capacity = a->capacity ? a->capacity * 2 : 8;
            void* grown = std::realloc(a->items, sizeof(void*) * size_t(capacity));
            if (!grown)
                return nullptr;
            a->items = static_cast<void**>(grown);
            a->capacity = capacity;
        }
        std::memmove(a->items + at + 1, a->items + at, sizeof(void*) * size_t(a->count - at));
        a->items[at] = item;
        ++a->count;
        return a->items + at;
    }
    static void** insertPosition(DS_Structure* s, void** itemSlot, DS_Compare_fn comparator) {
        return obrix::ds::linearInsertPosition<ArrayPolicy>(s, itemSlot, comparator);
    }
    static void** erase(DS_Structure* s, void** node, void** keep) {
        Ds_Array_storage_s* a = store(s);
        const int at = indexOf(s, node);
        std::memmove(a->items + at, a->items + at + 1, sizeof(void*) * size_t(a->count - at - 1));
        --a->count;
        // Every slot behind the removed one moved one place forward.
        return keep ? keep - 1 : nullptr;
    }
    static void clear(DS_Structure* s, DS_Free_fn callback, void* user) {
        if (Ds_Array_storage_s* a = store(s)) {
            if (callback)
                for (int i = 0; i < a->count; ++i)
                    obrix::ds::callFree(callback, a->items + i, user);
            std::free(a->items);
            std::free(a);
        }
        s->storage = nullptr;
    }
};

} // namespace

DS_DEFINE_KIND_OPERATIONS(array, ArrayPolicy, &Ds_array_allocate)

extern "C" {

void* Ds_array_allocate(DS_Structure* s, int* status) {
    return ArrayPolicy::allocate(s, status);
}

void Ds_array_print_current(DS_Structure* s, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!s) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return;
    }
    AA_debug_print("Current is %d\n", ArrayPolicy::count(s));
}

} // extern "C"
