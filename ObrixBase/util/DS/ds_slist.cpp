// Kind 2, the singly linked list: the structure's storage is the first node itself, and each
// node is a malloc'ed {data, next}. Registration tables and the debug file list live on it.
#include <cstdlib>

#include "ObrixBase/util/DS/ds_kind_internal.h"

namespace {

struct SlistNode {
    void* data; // first, so that a node is its member slot
    SlistNode* next;
};

SlistNode* asNode(void** slot) {
    return reinterpret_cast<SlistNode*>(slot);
}
void** asSlot(SlistNode* node) {
    return reinterpret_cast<void**>(node);
}

struct SlistPolicy {
    static constexpr int kType = 2;
    static constexpr bool kCheapBefore = false;
    static constexpr bool kHasAllocate = false;

    static SlistNode* head(DS_Structure* s) { return static_cast<SlistNode*>(s->storage); }

    static void** first(DS_Structure* s) { return asSlot(head(s)); }
    static void** after(DS_Structure*, void** node) { return asSlot(asNode(node)->next); }
    static void** last(DS_Structure* s) {
        SlistNode* n = head(s);
        while (n && n->next)
            n = n->next;
        return asSlot(n);
    }
    static void** before(DS_Structure* s, void** node) {
        SlistNode* target = asNode(node);
        SlistNode* n = head(s);
        if (n == target)
            return nullptr;
        while (n && n->next != target)
            n = n->next;
        return asSlot(n);
    }
    static int count(DS_Structure* s) {
        int n = 0;
        for (SlistNode* node = head(s); node; node = node->next)
            ++n;
        return n;
    }
    static void** insertAfter(DS_Structure* s, void** prev, void* item) {
        auto* node = static_cast<SlistNode*>(std::malloc(sizeof(SlistNode)));
        if (!node)
            return nullptr;
        node->data = item;
        if (prev) {
            node->next = asNode(prev)->next;
            asNode(prev)->next = node;
        } else {
            node->next = head(s);
            s->storage = node;
        }
        return asSlot(node);
    }
    static void** insertPosition(DS_Structure* s, void** itemSlot, DS_Compare_fn comparator) {
        return obrix::ds::linearInsertPosition<SlistPolicy>(s, itemSlot, comparator);
    }
    static void** erase(DS_Structure* s, void** node, void** keep) {
        SlistNode* target = asNode(node);
        if (void** p = before(s, node))
            asNode(p)->next = target->next;
        else
            s->storage = target->next;
        std::free(target);
        return keep;
    }
    static void clear(DS_Structure* s, DS_Free_fn callback, void* user) {
        SlistNode* n = head(s);
        while (n) {
            SlistNode* next = n->next;
            if (callback)
                obrix::ds::callFree(callback, asSlot(n), user);
            std::free(n);
            n = next;
        }
        s->storage = nullptr;
    }
};

} // namespace

DS_DEFINE_KIND_OPERATIONS(slist, SlistPolicy, nullptr)
