#include "ObrixBase/anim/an_anim_list.h"

#include <cstdint>
#include <cstdlib>

#include "ObrixBase/memory/ma_memory_manager.h"
#include "ObrixBase/util/aa_debug.h"
#include "ObrixBase/util/vk_list.h"
#include "ObrixBase/util/vk_ll.h"

namespace {

// Pointers are printed as their low 32 bits, the width the item printout has always had.
unsigned low32(const void* pointer) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pointer));
}

// Unsigned address order with null after everything.
int compareAddresses(const void* a, const void* b) {
    if (a == b)
        return 0;
    if (!a)
        return 1;
    if (!b)
        return -1;
    return reinterpret_cast<std::uintptr_t>(a) < reinterpret_cast<std::uintptr_t>(b) ? -1 : 1;
}

// The removal callback of the structure kinds: frees the item held in a member slot.
long freeItemInSlot(void** slot, void*) {
    auto* item = static_cast<AN_Animtron_s*>(*slot);
    const long freed = AN_item_free(&item, nullptr);
    *slot = item;
    return freed;
}

} // namespace

extern "C" {

AN_Animtron_s* AN_item_create_type(int type, void* data, int line, const char* file, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    auto* item = static_cast<AN_Animtron_s*>(MA_malloc(sizeof(AN_Animtron_s), line, file));
    if (!item) {
        VK_SET_STATUS(status, VK_MEMORY_FAULT);
        return nullptr;
    }
    item->type = type;
    item->data = data;
    item->next = nullptr;
    return item;
}

long AN_item_free(AN_Animtron_s** item, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!item) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    MA_free(*item);
    *item = nullptr;
    return 1;
}

long AN_item_list_free(AN_Animtron_s** first, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!first) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    for (AN_Animtron_s* item = *first; item;) {
        AN_Animtron_s* next = item->next;
        MA_free(item);
        item = next;
    }
    *first = nullptr;
    return 1;
}

long AN_ds_item_equal(AN_Animtron_s* a, AN_Animtron_s* b) {
    return a && b && a->type == b->type && a->data == b->data ? 1 : 0;
}

AN_Animtron_s* AN_is_item_in_item_list(void* data, DS_Structure* list, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!data || !list) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return nullptr;
    }
    if (!list->methods)
        return nullptr;
    // A local status lets the walk stop on a failing operation even when the caller passed
    // no status pointer.
    int walkStatus = VK_NO_ERROR;
    const DS_Jump_table_s* methods = list->methods;
    for (void* node = methods->head(list, &walkStatus); node && walkStatus == VK_NO_ERROR;
         node = methods->next(list, node, &walkStatus)) {
        auto* item = static_cast<AN_Animtron_s*>(methods->get_data(node, &walkStatus));
        if (walkStatus != VK_NO_ERROR)
            break;
        if (item && item->data == data)
            return item;
    }
    VK_SET_STATUS(status, walkStatus);
    return nullptr;
}

long AN_add_to_item_list(int type, void* data, DS_Structure* list, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!data || !list || !list->methods) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    int localStatus = VK_NO_ERROR;
    if (AN_is_item_in_item_list(data, list, &localStatus) || localStatus != VK_NO_ERROR) {
        VK_SET_STATUS(status, localStatus);
        return 0;
    }
    AN_Animtron_s* item = AN_item_create_type(type, data, __LINE__, __FILE__, &localStatus);
    if (item && !list->methods->add(list, item, &localStatus))
        AN_item_free(&item, nullptr); // refused by the filter or out of memory: nothing kept
    VK_SET_STATUS(status, localStatus);
    return !status || localStatus == VK_NO_ERROR ? 1 : 0;
}

long AN_remove_from_item_list(void* data, DS_Structure* list, int* status) {
    int localStatus = VK_NO_ERROR;
    AN_Animtron_s* item = AN_is_item_in_item_list(data, list, &localStatus);
    if (item)
        list->methods->remove(list, item, freeItemInSlot, nullptr, &localStatus);
    else if (localStatus == VK_NO_ERROR)
        localStatus = VK_ITEM_NOT_FOUND;
    VK_SET_STATUS(status, localStatus);
    return item && localStatus == VK_NO_ERROR ? 1 : 0;
}

long AN_print_item(AN_Animtron_s* item, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    AA_indent();
    if (!item) {
        AA_debug_print("Item: NULL\n");
        return 0;
    }
    AA_debug_print("Item: %#x\n", low32(item));
    AA_indent();
    AA_debug_print("{\n");
    AA_set_indent(-1);
    AA_indent();
    AA_debug_print("Type: %d\n", item->type);
    AA_indent();
    AA_debug_print("Data: %#x\n", low32(item->data));
    AA_indent();
    AA_debug_print("Next: %#x\n", low32(item->next));
    AA_set_indent(-2);
    AA_indent();
    AA_debug_print("}\n");
    return 1;
}

long An_add_to_item_list(int type, void* item, void* data, An_Item_list_s** head) {
    if (!item || !head)
        return 0;
    auto* node =
        static_cast<An_Item_list_s*>(MA_malloc(sizeof(An_Item_list_s), __LINE__, __FILE__));
    if (!node)
        return 0;
    *node = An_Item_list_s{nullptr, nullptr, type, item, data};
    VK_ll_prepend(head, node);
    return 1;
}

long An_addUnique_to_item_list(int type, void* item, void* data, An_Item_list_s** head) {
    if (!item || !head)
        return 0;
    const An_Item_list_s probe{nullptr, nullptr, type, item, data};
    for (An_Item_list_s* node = *head; node; node = node->next)
        if (An_compareItemList(node, &probe) == 0)
            return 1;
    return An_add_to_item_list(type, item, data, head);
}

int An_compareItemList(const void* a, const void* b) {
    if (!a || !b)
        return compareAddresses(a, b);
    const auto* x = static_cast<const An_Item_list_s*>(a);
    const auto* y = static_cast<const An_Item_list_s*>(b);
    if (int order = compareAddresses(x->item, y->item))
        return order;
    return compareAddresses(x->data, y->data);
}

int An_compareItem(const void* a, const void* b) {
    if (!a || !b)
        return compareAddresses(a, b);
    return compareAddresses(static_cast<const An_Item_sort_s*>(a)->item,
                            static_cast<const An_Item_sort_s*>(b)->item);
}

long An_sort_item_list(An_Item_list_s** head, long unique) {
    if (!head || !*head)
        return 0;
    const int count = VK_ll_length(*head);
    auto* records = static_cast<An_Item_sort_s*>(
        MA_malloc(sizeof(An_Item_sort_s) * static_cast<size_t>(count), __LINE__, __FILE__));
    if (!records)
        return 0;
    int n = 0;
    for (An_Item_list_s* node = *head; node; node = node->next)
        records[n++] = An_Item_sort_s{node->type, node->item, node->data};
    std::qsort(records, static_cast<size_t>(count), sizeof(An_Item_sort_s), An_compareItem);

    An_Item_list_s* node = *head;
    An_Item_list_s* written = nullptr;
    for (int i = 0; i < count; ++i) {
        if (unique && written && records[i].item == written->item)
            continue;
        node->type = records[i].type;
        node->item = records[i].item;
        node->data = records[i].data;
        written = node;
        node = node->next;
    }
    MA_free(records);
    // The nodes past the last one written held the skipped duplicates. VK_list_delete hands
    // them to the C runtime's free, which takes accounted blocks; they leave the accounting
    // first so that the live counts stay exact.
    auto** cells = reinterpret_cast<VK_List**>(head);
    while (node) {
        An_Item_list_s* next = node->next;
        MA_forget(node);
        VK_list_delete(cells, reinterpret_cast<VK_List*>(node));
        node = next;
    }
    return 1;
}

void An_free_item_list(An_Item_list_s** head) {
    if (!head)
        return;
    while (An_Item_list_s* node = *head) {
        VK_ll_remove(head, node);
        MA_free(node);
    }
}

} // extern "C"
