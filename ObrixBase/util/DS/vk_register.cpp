// Registration tables over kind-2 structures of VK_Registration_s records.
#include "ObrixBase/util/DS/vk_register.h"

#include <cstdlib>

#include "ObrixBase/util/aa_debug.h"

namespace {

// The first visible member whose record satisfies `pred`, or null. Registration tables are
// short and unordered by identifier, so every lookup is a walk from the head.
template <class Pred>
void* findRecordNode(DS_Structure* table, Pred pred) {
    if (!table || !table->methods)
        return nullptr;
    DS_Jump_table_s* m = table->methods;
    int local = 0;
    for (void* node = m->head(table, &local); node; node = m->next(table, node, &local)) {
        auto* record = static_cast<VK_Registration_s*>(m->get_data(node, &local));
        if (record && pred(*record))
            return node;
    }
    return nullptr;
}

long freeRecord(void** slot, void*) {
    return DS_memory_free(slot);
}

VK_Registration_s* recordAt(DS_Structure* table, void* node) {
    int local = 0;
    return node ? static_cast<VK_Registration_s*>(table->methods->get_data(node, &local)) : nullptr;
}

} // namespace

extern "C" {

long VK_register_item(int id, void* item, DS_Structure** table, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!table) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    if (id < 0 || findRecordNode(*table, [id](const VK_Registration_s& r) { return r.id == id; })) {
        VK_SET_STATUS(status, VK_INVALID_FUNCTION);
        return 0;
    }
    if (!*table) {
        *table = DS_create_type(DS_KIND_SLIST, status, __LINE__, __FILE__);
        if (!*table)
            return 0;
    }
    if (!(*table)->methods) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    auto* record = static_cast<VK_Registration_s*>(std::malloc(sizeof(VK_Registration_s)));
    if (!record) {
        VK_SET_STATUS(status, VK_MEMORY_FAULT);
        return 0;
    }
    record->id = id;
    record->item = item;
    // A record the table refused (its filter, or no memory for a node) is freed instead of
    // leaked. The answer still follows the status rule: without a status pointer the caller
    // has asked not to learn about refusals, and gets 1 as always.
    if (!(*table)->methods->add(*table, record, status))
        std::free(record);
    return !status || *status == VK_NO_ERROR ? 1 : 0;
}

void* VK_get_id_registration(int id, DS_Structure* table, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!table) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return nullptr;
    }
    void* node = findRecordNode(table, [id](const VK_Registration_s& r) { return r.id == id; });
    VK_Registration_s* record = recordAt(table, node);
    return record ? record->item : nullptr;
}

int VK_get_items_registration_id(void* item, DS_Structure* table, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!table) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return -1;
    }
    void* node =
        findRecordNode(table, [item](const VK_Registration_s& r) { return r.item == item; });
    VK_Registration_s* record = recordAt(table, node);
    return record ? record->id : -1;
}

long VK_deregister_item(void* item, DS_Structure* table, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    if (!item) {
        VK_SET_STATUS(status, VK_ARGUMENT_ERROR);
        return 0;
    }
    long removed = 0;
    void* node =
        findRecordNode(table, [item](const VK_Registration_s& r) { return r.item == item; });
    if (node) {
        int local = 0;
        std::free(recordAt(table, node));
        table->methods->set_data(node, nullptr, &local);
        removed = 1;
    }
    // The freed record leaves a null member behind; dropping every null member also tidies
    // any that a caller left through set_data.
    DS_remove_nulls(table, status);
    return removed;
}

long VK_clear_registrations(DS_Structure* table, int* status) {
    VK_SET_STATUS(status, VK_NO_ERROR);
    return DS_empty_list(table, &freeRecord, nullptr, status);
}

} // extern "C"
