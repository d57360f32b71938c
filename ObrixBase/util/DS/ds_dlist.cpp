// Kind 1, the doubly linked list: a storage header {first, last, count} made on the first add,
// over malloc'ed {data, next, prev} nodes, so that appending, tail, prev and counting are O(1).
#include <cstdlib>

#include "ObrixBase/util/DS/ds_kind_internal.h"

namespace {

struct DlistNode {
    void* data; // first, so that a node is its member slot
    DlistNode* next;
    DlistNode* prev;
};

struct DlistHeader {
    DlistNode* first;
    DlistNode* last;
    int count;
};

DlistNode* asNode(void** slot) {
    return reinterpret_cast<DlistNode*>(slot);
}
void** asSlot(DlistNode* node) {
    return reinterpret_cast<void**>(node);
}

struct DlistPolicy {
    static constexpr int kType = 1;
    static constexpr bool kCheapBefore = true;
    static constexpr bool kHasAllocate = false;

    static DlistHeader* header(DS_Structure* s) { return static_cast<DlistHeader*>(s->storage); }

    static void** first(DS_Structure* s) { return header(s) ? asSlot(header(s)->first) : nullptr; }
    static void** last(DS_Structure* s) { return header(s) ? asSlot(header(s)->last) : nullptr; }
    static void** after(DS_Structure*, void** node) { return asSlot(asNode(node)->next); }
    static void** before(DS_Structure*, void** node) { return asSlot(asNode(node)->prev); }
    static int count(DS_Structure* s) { return header(s) ? header(s)->count : 0; }

    static void** insertAfter(DS_Structure* s, void** prev, void* item) {
        DlistHeader* h = header(s);
        if (!h) {
            h = static_cast<DlistHeader*>(std::calloc(1, sizeof(DlistHeader)));
            if (!h)
                return nullptr;
            s->storage = h;
        }
        auto* node = static_cast<DlistNode*>(std::malloc(sizeof(DlistNode)));
        if (!node)
            return nullptr;
        DlistNode* p = asNode(prev);
        DlistNode* n = p ? p->next : h->first;
        *node = {item, n, p};
        (p ? p->next : h->first) = node;
        (n ? n->prev : h->last) = node;
        ++h->count;
        return asSlot(node);
    }
    static void** insertPosition(DS_Structure* s, void** itemSlot, DS_Compare_fn comparator) {
        return obrix::ds::linearInsertPosition<DlistPolicy>(s, itemSlot, comparator);
    }
    static void** erase(DS_Structure* s, void** node, void** keep) {
        DlistHeader* h = header(s);
        DlistNode* n = asNode(node);
        (n->prev ? n->prev->next : h->first) = n->next;
        (n->next ? n->next->prev : h->last) = n->prev;
        --h->count;
        std::free(n);
        return keep;
    }
    static void clear(DS_Structure* s, DS_Free_fn callback, void* user) {
        if (DlistHeader* h = header(s)) {
            DlistNode* n = h->first;
            while (n) {
                DlistNode* next = n->next;
                if (callback)
                    obrix::ds::callFree(callback, asSlot(n), user);
                std::free(n);
                n = next;
            }
            std::free(h);
        }
        s->storage = nullptr;
    }
};

} // namespace

DS_DEFINE_KIND_OPERATIONS(dlist, DlistPolicy, nullptr)
