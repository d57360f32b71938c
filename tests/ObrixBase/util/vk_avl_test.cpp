#include "ObrixBase/util/vk_avl.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ContainerVerifiers.h"

namespace {

struct Item {
    VK_avl_header avl;
    int key;
};

int byKey(void* a, void* b) {
    const int x = static_cast<Item*>(a)->key, y = static_cast<Item*>(b)->key;
    return x < y ? -1 : x > y ? 1 : 0;
}

Item* asItem(void* node) {
    return static_cast<Item*>(node);
}

std::vector<int> keysInOrder(void* root, bool checkBalances = true) {
    std::vector<void*> nodes;
    EXPECT_EQ(obrix::test::checkAvlTree(root, byKey, &nodes, checkBalances), "");
    std::vector<int> keys;
    for (void* n : nodes)
        keys.push_back(asItem(n)->key);
    return keys;
}

} // namespace

TEST(VkAvlTree, RandomInsertsAndRemovalsKeepOrderAndBalanceAgainstAMultiset) {
    std::mt19937 rng(11);
    std::vector<Item> items(2000);
    for (size_t i = 0; i < items.size(); ++i)
        items[i].key = static_cast<int>(rng() % 300);
    std::multiset<int> model;
    std::vector<Item*> inTree;
    void* root = nullptr;
    for (int step = 0; step < 4000; ++step) {
        if (rng() % 3 != 0 || inTree.empty()) {
            Item* item = &items[rng() % items.size()];
            if (std::find(inTree.begin(), inTree.end(), item) != inTree.end())
                continue; // already linked in
            const int result = VK_avl_insert(&root, item, byKey);
            ASSERT_EQ(result, model.count(item->key) ? 1 : 0);
            if (result == 0) {
                model.insert(item->key);
                inTree.push_back(item);
            }
        } else {
            const size_t at = rng() % inTree.size();
            Item twin{{}, inTree[at]->key}; // equal but not the same node
            ASSERT_EQ(VK_avl_remove(&root, &twin, byKey), 1);
            ASSERT_EQ(VK_avl_remove(&root, inTree[at], byKey), 0);
            model.erase(inTree[at]->key);
            inTree.erase(inTree.begin() + static_cast<long>(at));
        }
        ASSERT_EQ(keysInOrder(root), std::vector<int>(model.begin(), model.end())) << step;
        Item probe{{}, static_cast<int>(rng() % 300)};
        const auto above = model.upper_bound(probe.key);
        const auto below = model.lower_bound(probe.key);
        const bool present = model.count(probe.key) != 0;
        void* found = VK_avl_find(root, &probe, byKey);
        ASSERT_EQ(found != nullptr, present);
        void* next = VK_avl_next(root, &probe, byKey);
        void* prev = VK_avl_prev(root, &probe, byKey);
        ASSERT_EQ(next ? asItem(next)->key : -1, present && above != model.end() ? *above : -1);
        ASSERT_EQ(prev ? asItem(prev)->key : -1,
                  present && below != model.begin() ? *std::prev(below) : -1);
    }
}

TEST(VkAvlTree, RebalancingTakesTheDoubleRotationForALeftChildOfBalanceZero) {
    // 5 with left child 3 (children 2 and 4) and no right child: 3 is level, and the double
    // rotation through 4 is the required answer (a single rotation would lift 3 instead).
    Item n2{{}, 2}, n3{{}, 3}, n4{{}, 4}, n5{{}, 5};
    n3.avl.left = &n2;
    n3.avl.right = &n4;
    n5.avl.left = &n3;
    void* root = &n5;
    VK_avl_balance(&root);
    EXPECT_EQ(root, &n4);
    EXPECT_EQ(n4.avl.left, &n3);
    EXPECT_EQ(n4.avl.right, &n5);
    EXPECT_EQ(n3.avl.left, &n2);
    EXPECT_EQ(n3.avl.right, nullptr);
    EXPECT_EQ(keysInOrder(root), (std::vector<int>{2, 3, 4, 5}));
    EXPECT_EQ(n4.avl.balance, -1);
}

TEST(VkAvlTree, PlainRemovalHangsTheLeftSubtreeUnderTheRightSubtreesSmallest) {
    Item n[7];
    void* root = nullptr;
    for (int key : {4, 2, 6, 1, 3, 5, 7}) {
        n[key - 1].key = key;
        VK_avl_insert(&root, &n[key - 1], byKey);
    }
    Item twin{{}, 6};
    EXPECT_EQ(VK_bt_remove(&root, &twin, byKey), 1);
    EXPECT_EQ(VK_bt_remove(&root, &n[3], byKey), 0);
    EXPECT_EQ(root, &n[5]);          // the right child 6 takes the root's place
    EXPECT_EQ(n[4].avl.left, &n[1]); // 2's subtree hangs under 5
    EXPECT_EQ(n[3].avl.left, &n[1]); // the removed node's links are left as they were
    EXPECT_EQ(keysInOrder(root, false), (std::vector<int>{1, 2, 3, 5, 6, 7}));
    VK_avl_balance(&root);
    EXPECT_EQ(keysInOrder(root), (std::vector<int>{1, 2, 3, 5, 6, 7}));
    EXPECT_EQ(VK_avl_first(root), &n[0]);
    EXPECT_EQ(VK_avl_last(root), &n[6]);
    EXPECT_EQ(VK_avl_insert(&root, nullptr, byKey), -1);
}

TEST(VkAvlTree, WalksVisitInOrderAndPostOrderAndStopAtTheFirstNonZeroResult) {
    Item n[5];
    void* root = nullptr;
    for (int key : {3, 1, 4, 0, 2}) {
        n[key].key = key;
        VK_avl_insert(&root, &n[key], byKey);
    }
    static std::vector<int> seen;
    auto record = [](void* node) {
        seen.push_back(asItem(node)->key);
        return 0;
    };
    EXPECT_EQ(VK_avl_inorder(root, record), 0);
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3, 4}));
    seen.clear();
    EXPECT_EQ(VK_avl_postorder(root, record), 0);
    EXPECT_EQ(seen, (std::vector<int>{0, 2, 1, 4, 3}));

    auto stopAtSecond = [](void*, void* user) {
        auto* count = static_cast<int*>(user);
        return ++*count == 2 ? 5 : 0;
    };
    int count = 0;
    EXPECT_EQ(VK_avl_inorder_user(root, stopAtSecond, &count), 5);
    EXPECT_EQ(count, 2);
    count = 0;
    EXPECT_EQ(VK_avl_postorder_user(root, stopAtSecond, &count), 5);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(VK_avl_inorder(nullptr, record), 0);
    EXPECT_EQ(VK_avl_postorder(root, nullptr), 0);
}
