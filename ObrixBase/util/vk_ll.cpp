#include "ObrixBase/util/vk_ll.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "ObrixBase/util/vk_fields_internal.h"

namespace {

using obrix::detail::loadPointer;
using obrix::detail::storePointer;

constexpr std::size_t kPrevOffset = offsetof(VK_ll_header, prev);
constexpr std::size_t kNextOffset = offsetof(VK_ll_header, next);

void* prevOf(void* node) {
    return obrix::detail::loadField<void*>(node, kPrevOffset);
}
void* nextOf(void* node) {
    return obrix::detail::loadField<void*>(node, kNextOffset);
}
void setPrev(void* node, void* value) {
    obrix::detail::storeField<void*>(node, kPrevOffset, value);
}
void setNext(void* node, void* value) {
    obrix::detail::storeField<void*>(node, kNextOffset, value);
}

void* lastFrom(void* node) {
    while (void* next = nextOf(node))
        node = next;
    return node;
}

// Links `node` directly after `after`, which is on the list held at `head`.
void linkAfter(void* after, void* node) {
    void* next = nextOf(after);
    setPrev(node, after);
    setNext(node, next);
    setNext(after, node);
    if (next)
        setPrev(next, node);
}

void freeNode(void* head, void* node) {
    VK_ll_remove(head, node);
    std::free(node);
}

} // namespace

extern "C" {

void* VK_ll_next(void* node) {
    return node ? nextOf(node) : nullptr;
}

void* VK_ll_prev(void* node) {
    return node ? prevOf(node) : nullptr;
}

void* VK_ll_first(void* node) {
    if (!node)
        return nullptr;
    while (void* prev = prevOf(node))
        node = prev;
    return node;
}

void* VK_ll_last(void* node) {
    return node ? lastFrom(node) : nullptr;
}

int VK_ll_length(void* node) {
    int length = 0;
    for (; node; node = nextOf(node))
        ++length;
    return length;
}

void* VK_ll_nth(void* node, int n) {
    for (int i = 0; i < n && node; ++i)
        node = nextOf(node);
    return node;
}

int VK_ll_find_item_number(void* list, void* node) {
    int position = 0;
    for (void* current = list; current; current = nextOf(current), ++position)
        if (current == node)
            return position;
    return -1;
}

int VK_ll_present(void* list, void* node) {
    return node && VK_ll_find_item_number(list, node) >= 0 ? 1 : 0;
}

void* VK_ll_find(void* list, void* key, VK_ll_comparator compare, int sorted) {
    if (!list || !key || !compare)
        return nullptr;
    // The comparator is called once more with the null that ends the list: callers' comparators
    // see the end of the search, and some count or record it.
    for (void* node = list;; node = nextOf(node)) {
        const int order = compare(key, node);
        if (!node)
            return nullptr;
        if (order == 0)
            return node;
        if (sorted && order < 0)
            return nullptr;
    }
}

void VK_ll_append(void* head, void* node) {
    if (!head || !node)
        return;
    setNext(node, nullptr);
    void* first = loadPointer(head);
    if (!first) {
        setPrev(node, nullptr);
        storePointer(head, node);
        return;
    }
    void* last = lastFrom(first);
    setNext(last, node);
    setPrev(node, last);
}

void VK_ll_prepend(void* head, void* node) {
    if (!head)
        return;
    VK_ll_insert(head, loadPointer(head), node);
}

void VK_ll_insert(void* head, void* before, void* node) {
    if (!head || !node)
        return;
    if (!before || !loadPointer(head)) {
        VK_ll_append(head, node);
        return;
    }
    void* prev = prevOf(before);
    setPrev(node, prev);
    setNext(node, before);
    setPrev(before, node);
    if (prev)
        setNext(prev, node);
    if (loadPointer(head) == before)
        storePointer(head, node);
}

void VK_ll_remove(void* head, void* node) {
    if (!head || !node)
        return;
    void* prev = prevOf(node);
    void* next = nextOf(node);
    if (prev)
        setNext(prev, next);
    if (next)
        setPrev(next, prev);
    if (loadPointer(head) == node)
        storePointer(head, next);
    setPrev(node, nullptr);
    setNext(node, nullptr);
}

void VK_ll_replace(void* head, void* old, void* replacement) {
    if (!head || !old || !replacement)
        return;
    // The two leading link fields move as one block.
    std::memcpy(replacement, old, sizeof(VK_ll_header));
    if (void* prev = prevOf(old))
        setNext(prev, replacement);
    if (void* next = nextOf(old))
        setPrev(next, replacement);
    if (loadPointer(head) == old)
        storePointer(head, replacement);
    setPrev(old, nullptr);
    setNext(old, nullptr);
}

void VK_ll_merge(void* head, void* chain) {
    if (!head || !chain)
        return;
    void* first = loadPointer(head);
    if (!first) {
        storePointer(head, chain);
        setPrev(chain, nullptr);
        return;
    }
    void* last = lastFrom(first);
    setNext(last, chain);
    setPrev(chain, last);
}

void* VK_ll_copy_and_append(void* list, void* tail, int size) {
    if (size == 0 || (!list && !tail))
        return nullptr;
    if (!list) {
        setPrev(tail, nullptr);
        setNext(tail, nullptr);
        return tail;
    }
    // A copy smaller than the two links (or a negative size) could not be relinked without
    // writing past its end: such a request gets no copies at all.
    if (size < static_cast<int>(sizeof(VK_ll_header)))
        return nullptr;

    void* copies = nullptr;
    void* lastCopy = nullptr;
    for (void* node = list; node; node = nextOf(node)) {
        void* copy = std::malloc(static_cast<std::size_t>(size));
        if (!copy) {
            // Give back what was copied so far rather than hand out half a list.
            while (copies) {
                void* next = nextOf(copies);
                std::free(copies);
                copies = next;
            }
            return nullptr;
        }
        std::memcpy(copy, node, static_cast<std::size_t>(size));
        setPrev(copy, lastCopy);
        setNext(copy, nullptr);
        if (lastCopy)
            setNext(lastCopy, copy);
        else
            copies = copy;
        lastCopy = copy;
    }
    if (tail) {
        setNext(lastCopy, tail);
        setPrev(tail, lastCopy);
        setNext(tail, nullptr);
    }
    return copies;
}

void VK_ll_insert_sorted(void* head, void* node, VK_ll_comparator compare) {
    VK_ll_insert_sorted2(head, node, nullptr, nullptr, compare);
}

void VK_ll_insert_sorted2(void* head, void* node, void* head2, void* node2,
                          VK_ll_comparator compare) {
    if (!head || !node || !compare)
        return;
    const bool companion = head2 && node2;
    void* first = loadPointer(head);
    if (!first) {
        VK_ll_append(head, node);
        if (companion)
            VK_ll_append(head2, node2);
        return;
    }

    // The companion cursor walks in step and may run out first: a shorter companion list
    // simply gets no node for positions it does not have.
    void* current = first;
    void* current2 = companion ? loadPointer(head2) : nullptr;
    for (;;) {
        // Equal keys go in front of the first equal node, so the newest of a run comes first;
        // callers that walk a run rely on seeing the latest insertion before older ones.
        if (compare(node, current) <= 0) {
            VK_ll_insert(head, current, node);
            if (current2)
                VK_ll_insert(head2, current2, node2);
            return;
        }
        void* next = nextOf(current);
        if (!next)
            break;
        current = next;
        if (current2)
            current2 = nextOf(current2);
    }
    linkAfter(current, node);
    if (current2)
        linkAfter(current2, node2);
}

void VK_ll_merge_sorted(void* head, void* chain, void* head2, void* chain2,
                        VK_ll_comparator compare) {
    if (!head || !chain)
        return;
    void* node = chain;
    void* node2 = chain2;
    while (node) {
        // Read the successors first: insertion relinks the nodes being moved.
        void* next = nextOf(node);
        void* next2 = node2 ? nextOf(node2) : nullptr;
        VK_ll_insert_sorted2(head, node, head2, node2, compare);
        node = next;
        node2 = next2;
    }
}

int VK_ll_remove_match(void* head, VK_ll_predicate predicate) {
    if (!head || !predicate)
        return 0;
    int removed = 0;
    void* node = loadPointer(head);
    while (node) {
        void* next = nextOf(node);
        if (predicate(node) == 0) {
            freeNode(head, node);
            ++removed;
        }
        node = next;
    }
    return removed;
}

int VK_ll_remove_duplicates(void* head, void* head2, double tolerance,
                            VK_ll_tolerance_comparator compare) {
    if (!head || !compare)
        return 0;
    void* survivor = loadPointer(head);
    if (!survivor)
        return 0;
    void* candidate = nextOf(survivor);
    void* first2 = head2 ? loadPointer(head2) : nullptr;
    void* candidate2 = first2 ? nextOf(first2) : nullptr;
    int removed = 0;
    while (survivor && candidate) {
        void* next = nextOf(candidate);
        void* next2 = candidate2 ? nextOf(candidate2) : nullptr;
        // A run within tolerance is measured from the node that stays, so a slow drift of
        // values is cut off once it leaves the tolerance around the survivor.
        if (compare(survivor, candidate, tolerance) == 0) {
            freeNode(head, candidate);
            ++removed;
            if (candidate2)
                freeNode(head2, candidate2);
        } else {
            survivor = candidate;
        }
        candidate = next;
        candidate2 = next2;
    }
    return removed;
}

} // extern "C"
