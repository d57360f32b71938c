// The rules every structure kind shares (filtering, insertion order, status codes, walking,
// set operations), written once over a small storage policy. A kind's source defines its
// policy and instantiates the twenty table operations with DS_DEFINE_KIND_OPERATIONS.
//
// A storage policy P provides, all ignoring the filter (nodes are member slot addresses):
//   static constexpr int kType;            the kind's identifier
//   static constexpr bool kCheapBefore;     before() is O(1)
//   static constexpr bool kHasAllocate;     the kind makes its storage at creation, with
//   static void* allocate(DS_Structure*, int* status)
//   static void** first(DS_Structure*), last(DS_Structure*)
//   static void** after(DS_Structure*, void** node), before(DS_Structure*, void** node)
//   static int count(DS_Structure*)
//   static void** insertAfter(DS_Structure*, void** prev, void* item)   prev null: at the front;
//                                          the new node, or null when memory runs out
//   static void** insertPosition(DS_Structure*, void** itemSlot, DS_Compare_fn)
//                                          the node the new item goes after (null: front)
//   static void** erase(DS_Structure*, void** node, void** keep)   frees node; returns where
//                                          `keep` (a later node or null) now lives
//   static void clear(DS_Structure*, DS_Free_fn, void* user)       frees all; storage null
#ifndef OBRIX_UTIL_DS_DS_KIND_INTERNAL_H
#define OBRIX_UTIL_DS_DS_KIND_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "ds_kind_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <vector>

#include "ObrixBase/util/DS/ds_structures.h"
#include "ObrixBase/util/aa_debug.h"

namespace obrix::ds {

/// Calls a member's free callback. DS_memory_free takes only the slot, so it is called as
/// what it is rather than through the two-argument callback type.
long callFree(DS_Free_fn callback, void** slot, void* user);

/// Calls a structure comparator. The ready-made comparators that take their slots as
/// `void **` or `char **` are called with those types rather than through DS_Compare_fn.
int callCompare(DS_Compare_fn comparator, void* a, void* b);

/// Calls a find callback; Ds_string_find is called with its own `char *` arguments.
int callMatch(DS_Match_fn match, void* item, void* key);

/// Sorts `n` items with a structure comparator, which receives the addresses of two slots.
/// The C runtime's qsort is used: it stays memory-safe with comparators that are not
/// consistent, where std::sort would not.
void sortItems(void** items, size_t n, DS_Compare_fn comparator);

/// The insertion rule shared by every kind: the new item goes in front of the first member
/// for which the comparator answers anything other than exactly 1. The FIFO and FILO
/// comparators answer constantly, so their positions are taken without asking them.
template <class P>
void** linearInsertPosition(DS_Structure* s, void** itemSlot, DS_Compare_fn comparator) {
    if (comparator == &Ds_fifo_comparator)
        return P::last(s);
    if (comparator == &Ds_filo_comparator)
        return nullptr;
    void** prev = nullptr;
    for (void** n = P::first(s); n && callCompare(comparator, itemSlot, n) == 1; n = P::after(s, n))
        prev = n;
    return prev;
}

template <class P>
struct Kind {
    static bool visible(DS_Structure* s, void** n) { return !s->filter || s->filter(*n) != 0; }

    static void** forwardVisible(DS_Structure* s, void** n) {
        while (n && !visible(s, n))
            n = P::after(s, n);
        return n;
    }
    static void** backwardVisible(DS_Structure* s, void** n) {
        while (n && !visible(s, n))
            n = P::before(s, n);
        return n;
    }
    static void** firstVisible(DS_Structure* s) { return forwardVisible(s, P::first(s)); }
    static void** lastVisible(DS_Structure* s) { return backwardVisible(s, P::last(s)); }
    static void** nextVisible(DS_Structure* s, void** n) {
        return forwardVisible(s, P::after(s, n));
    }
    static void** prevVisible(DS_Structure* s, void** n) {
        return backwardVisible(s, P::before(s, n));
    }

    static void** findItem(DS_Structure* s, void* item) {
        for (void** n = firstVisible(s); n; n = nextVisible(s, n))
            if (*n == item)
                return n;
        return nullptr;
    }

    // ---- the table's operations ----

    static long walk(DS_Structure* s, DS_Walk_fn walker, void* user, int limit, int fromEnd,
                     int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s || !walker) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return -1;
        }
        // Walking backwards over a kind without cheap predecessors goes through a list of its
        // visible nodes, so that the walk stays linear.
        std::vector<void**> nodes;
        const bool listed = fromEnd && !P::kCheapBefore;
        if (listed) {
            try {
                for (void** n = firstVisible(s); n; n = nextVisible(s, n))
                    nodes.push_back(n);
            } catch (const std::bad_alloc&) {
                VK_SET_STATUS(status, VK_MEMORY_FAULT);
                return -1;
            }
        }
        size_t listedLeft = nodes.size();
        auto advance = [&](void** n) -> void** {
            if (listed)
                return listedLeft ? nodes[--listedLeft] : nullptr;
            return fromEnd ? prevVisible(s, n) : nextVisible(s, n);
        };
        long visited = 0;
        for (void** n = listed ? advance(nullptr) : (fromEnd ? lastVisible(s) : firstVisible(s)); n;
             n = advance(n)) {
            if (limit > 0 && visited == limit) {
                VK_SET_STATUS(status, VK_WALK_INCOMPLETE);
                break;
            }
            int answer = walker(*n, user);
            ++visited;
            if (answer < 0) {
                VK_SET_STATUS(status, VK_WALK_ERROR);
                break;
            }
            if (answer == 0) {
                VK_SET_STATUS(status, VK_WALK_TERMINATED);
                break;
            }
        }
        return visited;
    }

    static int enumerate(DS_Structure* s, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return -1;
        }
        if (!s->filter)
            return P::count(s);
        int n = 0;
        for (void** node = firstVisible(s); node; node = nextVisible(s, node))
            ++n;
        return n;
    }

    static long add(DS_Structure* s, void* item, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return 0;
        }
        if (s->filter && !s->filter(item)) {
            VK_SET_STATUS(status, VK_ITEM_FILTERED);
            return 0;
        }
        // The position is found over every stored member, filtered or not: the order belongs
        // to the storage, the filter is only a view of it.
        void** prev;
        bool unordered = false;
        if (!s->comparator) {
            unordered = true;
            VK_SET_STATUS(status, VK_CANNOT_SORT);
            prev = P::last(s);
        } else {
            prev = P::insertPosition(s, &item, s->comparator);
        }
        if (!P::insertAfter(s, prev, item)) {
            VK_SET_STATUS(status, VK_MEMORY_FAULT);
            return 0;
        }
        // Without a status pointer nobody could learn whether the order held, so the flag is
        // cleared: callers that care about `ordered` pass a status.
        if (unordered || !status)
            s->ordered = 0;
        return 1;
    }

    static void* remove(DS_Structure* s, void* item, DS_Free_fn callback, void* user, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        void** node = findItem(s, item);
        if (!node) {
            VK_SET_STATUS(status, VK_ITEM_NOT_FOUND);
            return nullptr;
        }
        void** keep = nextVisible(s, node);
        if (callback)
            callFree(callback, node, user);
        return P::erase(s, node, keep);
    }

    static long sort(DS_Structure* s, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return 0;
        }
        if (!s->comparator) {
            VK_SET_STATUS(status, VK_CANNOT_SORT);
            return 0;
        }
        // Every member is sorted, filtered or not, and the items are written back into the
        // existing nodes: node identities stay, the items move.
        const int n = P::count(s);
        if (n > 1) {
            auto* items = static_cast<void**>(std::malloc(sizeof(void*) * size_t(n)));
            if (!items) {
                VK_SET_STATUS(status, VK_MEMORY_FAULT);
                return 0;
            }
            int i = 0;
            for (void** node = P::first(s); node; node = P::after(s, node))
                items[i++] = *node;
            sortItems(items, size_t(n), s->comparator);
            i = 0;
            for (void** node = P::first(s); node; node = P::after(s, node))
                *node = items[i++];
            std::free(items);
        }
        s->ordered = 1;
        return 1;
    }

    /// A storage being built member by member in a given order, for the operations that
    /// return new storage.
    struct Builder {
        DS_Structure shell{1, nullptr, nullptr, nullptr, nullptr};
        void** last = nullptr;
        bool failed = false;

        explicit Builder(int* status) {
            if constexpr (P::kHasAllocate) {
                shell.storage = P::allocate(&shell, nullptr);
                failed = shell.storage == nullptr;
                if (failed)
                    VK_SET_STATUS(status, VK_MEMORY_FAULT);
            }
        }
        void append(void* item, int* status) {
            if (failed)
                return;
            void** node = P::insertAfter(&shell, last, item);
            if (!node) {
                failed = true;
                VK_SET_STATUS(status, VK_MEMORY_FAULT);
                return;
            }
            last = node;
        }
        /// The built storage, or null after a failure (what was built is freed, the items
        /// are left alone).
        void* finish() {
            if (failed) {
                P::clear(&shell, nullptr, nullptr);
                return nullptr;
            }
            return shell.storage;
        }
    };

    static bool bothGiven(DS_Structure* a, DS_Structure* b, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (a && b)
            return true;
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return false;
    }

    static void* merge(DS_Structure* a, DS_Structure* b, int* status) {
        if (!bothGiven(a, b, status))
            return nullptr;
        DS_Compare_fn cmp = a->comparator;
        if (!cmp)
            VK_SET_STATUS(status, VK_CANNOT_SORT);
        Builder out(status);
        void** na = firstVisible(a);
        void** nb = firstVisible(b);
        while (na || nb) {
            const bool takeB = !na || (nb && cmp && callCompare(cmp, nb, na) != 1);
            if (takeB) {
                out.append(*nb, status);
                nb = nextVisible(b, nb);
            } else {
                out.append(*na, status);
                na = nextVisible(a, na);
            }
        }
        return out.finish();
    }

    /// The members of `a` kept by difference (wanted false) or intersection (wanted true).
    static void* selectAgainst(DS_Structure* a, DS_Structure* b, bool wanted, int* status) {
        if (!bothGiven(a, b, status))
            return nullptr;
        if (!a->comparator)
            VK_SET_STATUS(status, VK_CANNOT_SORT);
        std::vector<void*> inB;
        try {
            for (void** n = firstVisible(b); n; n = nextVisible(b, n))
                inB.push_back(*n);
        } catch (const std::bad_alloc&) {
            VK_SET_STATUS(status, VK_MEMORY_FAULT);
            return nullptr;
        }
        std::sort(inB.begin(), inB.end(), std::less<void*>());
        Builder out(status);
        for (void** n = firstVisible(a); n; n = nextVisible(a, n))
            if (std::binary_search(inB.begin(), inB.end(), *n, std::less<void*>()) == wanted)
                out.append(*n, status);
        return out.finish();
    }
    static void* difference(DS_Structure* a, DS_Structure* b, int* status) {
        return selectAgainst(a, b, false, status);
    }
    static void* intersect(DS_Structure* a, DS_Structure* b, int* status) {
        return selectAgainst(a, b, true, status);
    }

    static void* find(DS_Structure* s, DS_Match_fn match, void* key, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s || (!match && !key)) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        if (!match)
            return findItem(s, key);
        for (void** n = firstVisible(s); n; n = nextVisible(s, n))
            if (callMatch(match, *n, key))
                return n;
        return nullptr;
    }

    static long containsItem(DS_Structure* s, void* item, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return 0;
        }
        return findItem(s, item) ? 1 : 0;
    }

    static void* getData(void* node, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!node) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        return *static_cast<void**>(node);
    }

    static void* setData(void* node, void* item, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!node) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        void** slot = static_cast<void**>(node);
        void* previous = *slot;
        *slot = item;
        return previous;
    }

    static void* duplicate(DS_Structure* s, DS_Copy_fn copy, void* user, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        if (!s->comparator)
            VK_SET_STATUS(status, VK_CANNOT_SORT);
        Builder out(status);
        for (void** n = firstVisible(s); n && !out.failed; n = nextVisible(s, n))
            out.append(copy ? copy(*n, user) : *n, status);
        return out.finish();
    }

    static void* head(DS_Structure* s, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        return firstVisible(s);
    }
    static void* tail(DS_Structure* s, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        return lastVisible(s);
    }
    static void* next(DS_Structure* s, void* node, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s || !node) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        return nextVisible(s, static_cast<void**>(node));
    }
    static void* prev(DS_Structure* s, void* node, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s || !node) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return nullptr;
        }
        return prevVisible(s, static_cast<void**>(node));
    }

    static long destructor(DS_Structure* s, DS_Free_fn callback, void* user, int* status) {
        VK_SET_STATUS(status, VK_NO_ERROR);
        if (!s) {
            VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
            return 0;
        }
        P::clear(s, callback, user);
        s->storage = nullptr;
        return 1;
    }

    static int getType() { return P::kType; }
};

} // namespace obrix::ds

/// Defines a kind's twenty exported operations Ds_<kind>_<operation> over Kind<policy> and
/// its table, Ds_<kind>_get_methods. `allocate` is the kind's allocate operation or nullptr.
#define DS_DEFINE_KIND_OPERATIONS(kind, policy, allocate)                                          \
    using kind##Ops = obrix::ds::Kind<policy>;                                                     \
    extern "C" {                                                                                   \
    long Ds_##kind##_walk(DS_Structure* s, DS_Walk_fn w, void* u, int limit, int fromEnd,          \
                          int* st) {                                                               \
        return kind##Ops::walk(s, w, u, limit, fromEnd, st);                                       \
    }                                                                                              \
    int Ds_##kind##_enumerate(DS_Structure* s, int* st) {                                          \
        return kind##Ops::enumerate(s, st);                                                        \
    }                                                                                              \
    long Ds_##kind##_add(DS_Structure* s, void* item, int* st) {                                   \
        return kind##Ops::add(s, item, st);                                                        \
    }                                                                                              \
    void* Ds_##kind##_remove(DS_Structure* s, void* item, DS_Free_fn cb, void* u, int* st) {       \
        return kind##Ops::remove(s, item, cb, u, st);                                              \
    }                                                                                              \
    long Ds_##kind##_sort(DS_Structure* s, int* st) {                                              \
        return kind##Ops::sort(s, st);                                                             \
    }                                                                                              \
    void* Ds_##kind##_merge(DS_Structure* a, DS_Structure* b, int* st) {                           \
        return kind##Ops::merge(a, b, st);                                                         \
    }                                                                                              \
    void* Ds_##kind##_find(DS_Structure* s, DS_Match_fn m, void* key, int* st) {                   \
        return kind##Ops::find(s, m, key, st);                                                     \
    }                                                                                              \
    void* Ds_##kind##_difference(DS_Structure* a, DS_Structure* b, int* st) {                      \
        return kind##Ops::difference(a, b, st);                                                    \
    }                                                                                              \
    void* Ds_##kind##_intersect(DS_Structure* a, DS_Structure* b, int* st) {                       \
        return kind##Ops::intersect(a, b, st);                                                     \
    }                                                                                              \
    long Ds_##kind##_contains_item(DS_Structure* s, void* item, int* st) {                         \
        return kind##Ops::containsItem(s, item, st);                                               \
    }                                                                                              \
    void* Ds_##kind##_get_data(void* node, int* st) {                                              \
        return kind##Ops::getData(node, st);                                                       \
    }                                                                                              \
    void* Ds_##kind##_set_data(void* node, void* item, int* st) {                                  \
        return kind##Ops::setData(node, item, st);                                                 \
    }                                                                                              \
    void* Ds_##kind##_duplicate(DS_Structure* s, DS_Copy_fn c, void* u, int* st) {                 \
        return kind##Ops::duplicate(s, c, u, st);                                                  \
    }                                                                                              \
    void* Ds_##kind##_head(DS_Structure* s, int* st) {                                             \
        return kind##Ops::head(s, st);                                                             \
    }                                                                                              \
    void* Ds_##kind##_tail(DS_Structure* s, int* st) {                                             \
        return kind##Ops::tail(s, st);                                                             \
    }                                                                                              \
    void* Ds_##kind##_next(DS_Structure* s, void* n, int* st) {                                    \
        return kind##Ops::next(s, n, st);                                                          \
    }                                                                                              \
    void* Ds_##kind##_prev(DS_Structure* s, void* n, int* st) {                                    \
        return kind##Ops::prev(s, n, st);                                                          \
    }                                                                                              \
    long Ds_##kind##_destructor(DS_Structure* s, DS_Free_fn cb, void* u, int* st) {                \
        return kind##Ops::destructor(s, cb, u, st);                                                \
    }                                                                                              \
    int Ds_##kind##_get_type(void) {                                                               \
        return kind##Ops::getType();                                                               \
    }                                                                                              \
    DS_Jump_table_s* Ds_##kind##_get_methods(void) {                                               \
        static DS_Jump_table_s table = {&Ds_##kind##_walk,                                         \
                                        &Ds_##kind##_enumerate,                                    \
                                        &Ds_##kind##_add,                                          \
                                        &Ds_##kind##_remove,                                       \
                                        &Ds_##kind##_sort,                                         \
                                        &Ds_##kind##_merge,                                        \
                                        &Ds_##kind##_find,                                         \
                                        &Ds_##kind##_difference,                                   \
                                        &Ds_##kind##_intersect,                                    \
                                        &Ds_##kind##_contains_item,                                \
                                        &Ds_##kind##_get_data,                                     \
                                        &Ds_##kind##_set_data,                                     \
                                        &Ds_##kind##_duplicate,                                    \
                                        &Ds_##kind##_head,                                         \
                                        &Ds_##kind##_tail,                                         \
                                        &Ds_##kind##_next,                                         \
                                        &Ds_##kind##_prev,                                         \
                                        &Ds_##kind##_destructor,                                   \
                                        allocate,                                                  \
                                        &Ds_##kind##_get_type,                                     \
                                        {nullptr, nullptr, nullptr, nullptr}};                     \
        return &table;                                                                             \
    }                                                                                              \
    }

#endif
