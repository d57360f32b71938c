#include "ObrixBase/util/vk_list.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ContainerVerifiers.h"

namespace {

std::vector<int> items(VK_List* head) {
    EXPECT_EQ(obrix::test::checkListLinks(head), "");
    std::vector<int> out;
    for (VK_List* cell = head; cell; cell = cell->next)
        out.push_back(cell->data ? *static_cast<int*>(cell->data) : -1);
    return out;
}

int cellsByItem(void* a, void* b) {
    return *static_cast<int*>(static_cast<VK_List*>(a)->data) -
           *static_cast<int*>(static_cast<VK_List*>(b)->data);
}

} // namespace

TEST(VkList, CellsHoldItemsInOrderAndNeverANullItem) {
    int v[5] = {0, 1, 2, 3, 4};
    VK_List* head = nullptr;
    EXPECT_EQ(VK_list_append(&head, nullptr), nullptr);
    VK_List* two = VK_list_append(&head, &v[2]);
    VK_list_prepend(&head, &v[0]);
    VK_list_insert(&head, two, &v[1]);
    VK_list_insert(&head, nullptr, &v[4]);
    EXPECT_EQ(items(head), (std::vector<int>{0, 1, 2, 4}));
    auto equalValue = [](void* data, void* key) { return *(int*)data == *(int*)key ? 1 : 0; };
    auto never = [](void*, void*) { return 0; };
    int four = 4;
    EXPECT_EQ(VK_list_compar(head, &four, equalValue)->data, &v[4]);
    EXPECT_EQ(VK_list_compar(head, &four, never), nullptr);

    // Deleting returns the cell to go on with: the successor, or the predecessor at the end.
    EXPECT_EQ(VK_list_delete(&head, two)->data, &v[4]);
    EXPECT_EQ(VK_list_delete(&head, VK_list_find(head, &v[4]))->data, &v[1]);
    VK_List* taken = VK_list_find(head, &v[0]);
    EXPECT_EQ(VK_list_remove(&head, taken)->data, &v[1]);
    EXPECT_EQ(items(head), (std::vector<int>{1}));
    free(taken);
    EXPECT_EQ(VK_list_delete(&head, head), nullptr);
    EXPECT_EQ(head, nullptr);
    EXPECT_EQ(VK_list_delete(&head, two), nullptr); // an empty list changes nothing
}

TEST(VkList, SortedInsertionKeepsEqualItemsNewestFirstAndEmptyCellsCanBeSwept) {
    int v[4] = {5, 3, 5, 4};
    VK_List* head = nullptr;
    for (int& x : v)
        VK_list_insert_sorted(&head, &x, cellsByItem);
    EXPECT_EQ(items(head), (std::vector<int>{3, 4, 5, 5}));
    EXPECT_EQ(head->next->next->data, &v[2]); // the later 5 stands first

    head->data = nullptr;
    head->next->next->next->data = nullptr;
    VK_list_delete_empty(&head);
    EXPECT_EQ(items(head), (std::vector<int>{4, 5}));

    VK_list_delete_all(&head);
    EXPECT_EQ(head, nullptr);
}
