#include "ObrixBase/util/vk_list.h"

#include <cstdlib>

namespace {

VK_List* newCell(void* data) {
    auto* cell = static_cast<VK_List*>(std::malloc(sizeof(VK_List)));
    if (cell) {
        cell->prev = nullptr;
        cell->next = nullptr;
        cell->data = data;
    }
    return cell;
}

// The cell that a caller walking the list goes on with once `cell` is gone.
VK_List* continuation(VK_List* cell) {
    return cell->next ? cell->next : cell->prev;
}

} // namespace

extern "C" {

VK_List* VK_list_append(VK_List** head, void* data) {
    if (!head || !data)
        return nullptr;
    VK_List* cell = newCell(data);
    VK_ll_append(head, cell);
    return cell;
}

VK_List* VK_list_prepend(VK_List** head, void* data) {
    if (!head || !data)
        return nullptr;
    VK_List* cell = newCell(data);
    VK_ll_prepend(head, cell);
    return cell;
}

VK_List* VK_list_insert(VK_List** head, void* before, void* data) {
    if (!head || !data)
        return nullptr;
    VK_List* cell = newCell(data);
    VK_ll_insert(head, before, cell);
    return cell;
}

VK_List* VK_list_insert_sorted(VK_List** head, void* data, VK_ll_comparator compare) {
    if (!head || !data || !compare)
        return nullptr;
    VK_List* cell = newCell(data);
    VK_ll_insert_sorted(head, cell, compare);
    return cell;
}

VK_List* VK_list_find(VK_List* list, void* data) {
    for (VK_List* cell = list; cell; cell = cell->next)
        if (cell->data == data)
            return cell;
    return nullptr;
}

VK_List* VK_list_compar(VK_List* list, void* key, VK_list_match match) {
    if (!key || !match)
        return nullptr;
    for (VK_List* cell = list; cell; cell = cell->next)
        if (match(cell->data, key))
            return cell;
    return nullptr;
}

VK_List* VK_list_remove(VK_List** head, VK_List* cell) {
    if (!head || !*head || !cell)
        return nullptr;
    VK_List* next = continuation(cell);
    VK_ll_remove(head, cell);
    return next;
}

VK_List* VK_list_delete(VK_List** head, VK_List* cell) {
    if (!head || !*head || !cell)
        return nullptr;
    VK_List* next = VK_list_remove(head, cell);
    std::free(cell);
    return next;
}

void VK_list_delete_all(VK_List** head) {
    if (!head)
        return;
    while (*head)
        VK_list_delete(head, *head);
}

void VK_list_remove_all(VK_List** head) {
    if (!head)
        return;
    while (*head)
        VK_list_remove(head, *head);
}

void VK_list_delete_empty(VK_List** head) {
    if (!head)
        return;
    VK_List* cell = *head;
    while (cell) {
        VK_List* next = cell->next;
        if (!cell->data)
            VK_list_delete(head, cell);
        cell = next;
    }
}

} // extern "C"
