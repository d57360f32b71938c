#include "ObrixBase/anim/an_anim_list.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/memory/ma_memory_manager.h"
#include "ObrixBase/util/aa_debug.h"
#include "ObrixBase/util/vk_list.h"
#include "tests/support/ContainerVerifiers.h"

namespace {

long freeItem(void** slot, void*) {
    auto* item = static_cast<AN_Animtron_s*>(*slot);
    return AN_item_free(&item, nullptr);
}

size_t liveBlocks() {
    MA_Stats stats;
    MA_get_stats(&stats);
    return stats.live_blocks;
}

// What AN_print_item writes through the debug printer, captured from standard output.
std::string printed(AN_Animtron_s* item, long* result) {
    AA_set_print_out(AA_OUTPUT_STDOUT, nullptr);
    testing::internal::CaptureStdout();
    *result = AN_print_item(item, nullptr);
    std::fflush(stdout);
    AA_set_print_out(AA_OUTPUT_STDERR, nullptr);
    return testing::internal::GetCapturedStdout();
}

} // namespace

TEST(AnItemList, KeepsOneItemPerDataPointerInEveryStructureKind) {
    int data[3] = {};
    const size_t before = liveBlocks();
    for (int kind = 1; kind <= 4; ++kind) {
        SCOPED_TRACE(kind);
        int status = -1;
        DS_Structure* list = DS_create_type(kind, &status, __LINE__, __FILE__);
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(AN_add_to_item_list(5, &data[0], list, &status), 1);
        EXPECT_EQ(AN_add_to_item_list(6, &data[1], list, &status), 1);
        EXPECT_EQ(AN_add_to_item_list(7, &data[0], list, &status), 0); // silent refusal
        EXPECT_EQ(status, 0);
        EXPECT_EQ(list->methods->enumerate(list, nullptr), 2);
        AN_Animtron_s* found = AN_is_item_in_item_list(&data[1], list, &status);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->type, 6);
        EXPECT_EQ(AN_is_item_in_item_list(&data[2], list, &status), nullptr);
        EXPECT_EQ(status, 0);

        EXPECT_EQ(AN_remove_from_item_list(&data[0], list, &status), 1);
        EXPECT_EQ(AN_remove_from_item_list(&data[0], list, &status), 0);
        EXPECT_EQ(status, VK_ITEM_NOT_FOUND);
        EXPECT_EQ(AN_add_to_item_list(1, nullptr, list, &status), 0);
        EXPECT_EQ(status, VK_ARGUMENT_ERROR);
        EXPECT_EQ(AN_is_item_in_item_list(&data[0], nullptr, &status), nullptr);
        EXPECT_EQ(status, VK_ARGUMENT_ERROR);
        DS_destructor(&list, freeItem, nullptr, &status);
    }
    EXPECT_EQ(liveBlocks(), before);
}

TEST(AnItemList, PrintsAnIndentedBlockThroughTheDebugPrinter) {
    const size_t before = liveBlocks();
    int d = 0;
    AN_Animtron_s* item = AN_item_create_type(42, &d, __LINE__, __FILE__, nullptr);
    auto low = [](const void* p) { return static_cast<unsigned>(reinterpret_cast<uintptr_t>(p)); };
    char expected[256];
    std::snprintf(expected, sizeof expected,
                  "   Item: %#x\n   {\n      Type: 42\n      Data: %#x\n      Next: 0\n   }\n",
                  low(item), low(&d));
    AA_set_indent(1);
    long result = 0;
    EXPECT_EQ(printed(item, &result), expected);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(printed(nullptr, &result), "   Item: NULL\n");
    EXPECT_EQ(result, 0);
    AA_set_indent(0);
    item->next = AN_item_create_type(42, &d, __LINE__, __FILE__, nullptr);
    EXPECT_EQ(AN_ds_item_equal(item, item->next), 1);
    EXPECT_EQ(AN_item_list_free(&item, nullptr), 1); // frees the chain along next
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(liveBlocks(), before);
}

TEST(AnItemList, SortingByItemCanDropRepeatedItems) {
    const size_t before = liveBlocks();
    auto at = [](std::uintptr_t address) { return reinterpret_cast<void*>(address); };
    An_Item_list_s* head = nullptr;
    for (std::uintptr_t item : {10, 20, 10, 30}) // prepended: the list reads 30, 10, 20, 10
        EXPECT_EQ(An_add_to_item_list(static_cast<int>(item), at(item), at(item + 1), &head), 1);
    EXPECT_EQ(An_addUnique_to_item_list(0, at(30), at(31), &head), 1); // already there
    EXPECT_EQ(VK_ll_length(head), 4);
    EXPECT_EQ(An_addUnique_to_item_list(0, at(30), at(99), &head), 1); // other data: added
    EXPECT_EQ(VK_ll_length(head), 5);
    EXPECT_EQ(An_add_to_item_list(0, nullptr, nullptr, &head), 0);

    EXPECT_EQ(An_sort_item_list(&head, 1), 1);
    std::vector<void*> nodes;
    ASSERT_EQ(obrix::test::checkListLinks(head, &nodes), "");
    std::vector<std::uintptr_t> items;
    for (void* n : nodes)
        items.push_back(reinterpret_cast<std::uintptr_t>(static_cast<An_Item_list_s*>(n)->item));
    EXPECT_EQ(items, (std::vector<std::uintptr_t>{10, 20, 30}));
    EXPECT_EQ(head->type, 10); // each record moves with its item
    EXPECT_EQ(An_sort_item_list(nullptr, 0), 0);

    An_Item_list_s x{nullptr, nullptr, 0, at(5), nullptr}, y{nullptr, nullptr, 0, at(5), at(1)};
    EXPECT_EQ(An_compareItemList(&x, &y), 1); // a null data sorts last
    EXPECT_EQ(An_compareItemList(&y, &x), -1);
    EXPECT_EQ(An_compareItemList(nullptr, &x), 1);
    EXPECT_EQ(An_compareItemList(nullptr, nullptr), 0);
    An_free_item_list(&head);
    EXPECT_EQ(head, nullptr);
    EXPECT_EQ(liveBlocks(), before);
}

TEST(AnItemList, NodesAreCHeapBlocksThatCellListRoutinesMayDelete) {
    const size_t before = liveBlocks();
    int a = 0, b = 0, c = 0;
    An_Item_list_s* head = nullptr;
    for (int* item : {&a, &b, &c})
        ASSERT_EQ(An_add_to_item_list(1, item, nullptr, &head), 1);
    auto** cells = reinterpret_cast<VK_List**>(&head);
    VK_list_delete_all(cells); // free() on each node: no header may sit in front of it
    EXPECT_EQ(head, nullptr);
    // Blocks released behind the allocator's back stay counted; nothing goes negative.
    EXPECT_EQ(liveBlocks(), before + 3);
}
