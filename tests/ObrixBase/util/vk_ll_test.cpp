#include "ObrixBase/util/vk_ll.h"

#include <cmath>
#include <cstdlib>
#include <iterator>
#include <list>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ContainerVerifiers.h"

namespace {

struct Node {
    Node* prev;
    Node* next;
    double key;
    int tag;
};

Node* newNode(double key, int tag = 0) {
    auto* node = static_cast<Node*>(std::malloc(sizeof(Node)));
    *node = Node{nullptr, nullptr, key, tag};
    return node;
}

void freeAll(Node* head) {
    while (head) {
        Node* next = head->next;
        std::free(head);
        head = next;
    }
}

int byKey(void* a, void* b) {
    const double x = static_cast<Node*>(a)->key, y = static_cast<Node*>(b)->key;
    return x < y ? -1 : x > y ? 1 : 0;
}

std::vector<int> tags(Node* head) {
    std::vector<void*> nodes;
    EXPECT_EQ(obrix::test::checkListLinks(head, &nodes), "");
    std::vector<int> out;
    for (void* n : nodes)
        out.push_back(static_cast<Node*>(n)->tag);
    return out;
}

} // namespace

TEST(VkLinkedList, RandomEditsKeepTheLinksAndTheOrderOfAModel) {
    std::mt19937 rng(7);
    std::vector<Node> pool(64);
    std::vector<Node*> spares, model;
    for (Node& n : pool)
        spares.push_back(&n);
    Node* head = nullptr;
    for (int step = 0; step < 5000; ++step) {
        const unsigned op = rng() % 4;
        const size_t at = model.empty() ? 0 : rng() % model.size();
        Node* spare = spares.empty() ? nullptr : spares.back();
        if (op < 3 && spare) {
            spares.pop_back();
            if (op == 0)
                VK_ll_append(&head, spare);
            else if (op == 1)
                VK_ll_prepend(&head, spare);
            else
                VK_ll_insert(&head, model.empty() ? nullptr : model[at], spare);
            model.insert(op == 0 || model.empty() ? model.end()
                         : op == 1                ? model.begin()
                                                  : model.begin() + static_cast<long>(at),
                         spare);
        } else if (!model.empty()) {
            Node* old = model[at];
            if (spare && rng() % 2) {
                spares.pop_back();
                VK_ll_replace(&head, old, spare);
                model[at] = spare;
            } else {
                VK_ll_remove(&head, old);
                model.erase(model.begin() + static_cast<long>(at));
            }
            ASSERT_TRUE(!old->prev && !old->next);
            spares.push_back(old);
        }
        std::vector<void*> nodes;
        ASSERT_EQ(obrix::test::checkListLinks(head, &nodes), "") << "step " << step;
        ASSERT_EQ(nodes, std::vector<void*>(model.begin(), model.end())) << "step " << step;
        if (!model.empty()) {
            const size_t q = rng() % model.size();
            ASSERT_EQ(VK_ll_find_item_number(head, model[q]), static_cast<int>(q));
            ASSERT_EQ(VK_ll_nth(head, static_cast<int>(q)), model[q]);
            ASSERT_EQ(VK_ll_first(model[q]), head);
            ASSERT_EQ(VK_ll_last(head), model.back());
        }
    }
}

TEST(VkLinkedList, SortedMergeKeepsTheCompanionInStepAndEqualKeysNewestFirst) {
    // Inserting 2, 1, 2 gives 1, 2 (second), 2 (first); the companion follows position by
    // position.
    Node *head = nullptr, *head2 = nullptr;
    const double keys[] = {2, 1, 2};
    for (int i = 0; i < 3; ++i)
        VK_ll_insert_sorted2(&head, newNode(keys[i], i), &head2, newNode(0, i), byKey);
    EXPECT_EQ(tags(head), (std::vector<int>{1, 2, 0}));
    EXPECT_EQ(tags(head2), (std::vector<int>{1, 2, 0}));

    // A random chain merged in stays sorted, newest first within each key, and the companion
    // mirrors every move.
    std::mt19937 rng(3);
    Node *chain = nullptr, *chain2 = nullptr;
    for (int i = 0; i < 300; ++i) {
        VK_ll_append(&chain, newNode(static_cast<double>(rng() % 20), 100 + i));
        VK_ll_append(&chain2, newNode(0, 100 + i));
    }
    VK_ll_merge_sorted(&head, chain, &head2, chain2, byKey);
    const std::vector<int> merged = tags(head);
    EXPECT_EQ(merged, tags(head2));
    ASSERT_EQ(merged.size(), 303u);
    for (Node* n = head; n->next; n = n->next)
        EXPECT_TRUE(n->key < n->next->key || (n->key == n->next->key && n->tag > n->next->tag));
    freeAll(head);
    freeAll(head2);
}

TEST(VkLinkedList, FindCallsTheComparatorOnceMoreWithNullPastTheEnd) {
    Node n[3] = {{nullptr, nullptr, 1, 0}, {nullptr, nullptr, 3, 1}, {nullptr, nullptr, 5, 2}};
    Node* head = nullptr;
    for (Node& node : n)
        VK_ll_append(&head, &node);
    static std::vector<void*> seen;
    auto recording = [](void* key, void* node) -> int {
        seen.push_back(node);
        return node ? byKey(key, node) : 0; // a 0 for the end must not become a hit
    };
    Node key4{nullptr, nullptr, 4, 0}, key6{nullptr, nullptr, 6, 0}, key3{nullptr, nullptr, 3, 0};
    EXPECT_EQ(VK_ll_find(head, &key4, recording, 1), nullptr);
    EXPECT_EQ(seen, (std::vector<void*>{&n[0], &n[1], &n[2]}));
    seen.clear();
    EXPECT_EQ(VK_ll_find(head, &key6, recording, 1), nullptr);
    EXPECT_EQ(seen, (std::vector<void*>{&n[0], &n[1], &n[2], nullptr}));
    seen.clear();
    EXPECT_EQ(VK_ll_find(head, &key3, recording, 0), &n[1]);
}

TEST(VkLinkedList, DuplicateRemovalComparesWithTheSurvivingNode) {
    Node *head = nullptr, *head2 = nullptr;
    const double keys[] = {1.0, 1.05, 1.08, 2.0};
    for (int i = 0; i < 4; ++i) {
        VK_ll_append(&head, newNode(keys[i], i));
        VK_ll_append(&head2, newNode(0, 10 + i));
    }
    static std::vector<int> compared;
    auto within = [](void* a, void* b, double tolerance) -> int {
        compared.push_back(static_cast<Node*>(a)->tag);
        return std::abs(static_cast<Node*>(a)->key - static_cast<Node*>(b)->key) <= tolerance ? 0
                                                                                              : 1;
    };
    // Every comparison is made against the surviving 1.0 (tag 0), never against a removed node.
    EXPECT_EQ(VK_ll_remove_duplicates(&head, &head2, 0.1, within), 2);
    EXPECT_EQ(compared, (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(tags(head), (std::vector<int>{0, 3}));
    EXPECT_EQ(tags(head2), (std::vector<int>{10, 13}));
    EXPECT_EQ(VK_ll_remove_duplicates(nullptr, nullptr, 0.1, within), 0);

    auto isFirst = [](void* node) { return static_cast<Node*>(node)->tag == 0 ? 0 : 1; };
    EXPECT_EQ(VK_ll_remove_match(&head, isFirst), 1); // 0 from the predicate means "take out"
    EXPECT_EQ(tags(head), (std::vector<int>{3}));
    freeAll(head);
    freeAll(head2);
}

TEST(VkLinkedList, CopyAndAppendCopiesEveryNodeAndCutsOffWhatFollowedTheTail) {
    Node n[4] = {{nullptr, nullptr, 1, 1}, {nullptr, nullptr, 2, 2}, {}, {}};
    n[0].next = &n[1], n[1].prev = &n[0];
    n[2] = {nullptr, &n[3], 9, 9}, n[3] = {&n[2], nullptr, 8, 8};
    auto* copy = static_cast<Node*>(VK_ll_copy_and_append(&n[0], &n[2], sizeof(Node)));
    EXPECT_EQ(tags(copy), (std::vector<int>{1, 2, 9}));
    EXPECT_NE(copy, &n[0]);
    EXPECT_EQ(tags(&n[0]), (std::vector<int>{1, 2})); // the originals keep their links
    n[2].prev->next = nullptr;
    freeAll(copy);
    EXPECT_EQ(VK_ll_copy_and_append(nullptr, &n[3], 0), nullptr); // the size test comes first
    EXPECT_EQ(VK_ll_copy_and_append(nullptr, &n[3], sizeof(Node)), &n[3]);
    EXPECT_EQ(n[3].prev, nullptr);
}

TEST(VkLinkedList, EndsAndNullArgumentsGiveTheDocumentedResults) {
    Node n[3] = {{nullptr, nullptr, 1, 0}, {nullptr, nullptr, 2, 1}, {nullptr, nullptr, 3, 2}};
    Node* head = nullptr;
    VK_ll_merge(&head, &n[1]); // an empty list takes the chain as it is
    VK_ll_merge(&head, &n[2]);
    VK_ll_replace(&head, &n[1], &n[0]); // replacing the first node moves the head
    EXPECT_EQ(tags(head), (std::vector<int>{0, 2}));
    EXPECT_EQ(VK_ll_nth(head, -5), head);
    EXPECT_EQ(VK_ll_nth(head, 2), nullptr);
    EXPECT_EQ(VK_ll_present(head, &n[1]), 0);
    EXPECT_EQ(VK_ll_find_item_number(nullptr, &n[0]), -1);
    VK_ll_append(nullptr, &n[1]);
    VK_ll_insert(&head, &n[0], nullptr);
    VK_ll_insert_sorted(&head, &n[1], nullptr);
    EXPECT_EQ(VK_ll_remove_match(&head, nullptr), 0);
    EXPECT_EQ(tags(head), (std::vector<int>{0, 2}));
}
