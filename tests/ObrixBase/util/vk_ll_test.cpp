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

TEST(VkLinkedList, RandomEditsKeepTheLinksAndTheOrderOfAStdList) {
    std::mt19937 rng(7);
    std::vector<Node> pool(64);
    std::vector<Node*> free, model;
    for (int i = 0; i < 64; ++i) {
        pool[i] = Node{nullptr, nullptr, 0, i};
        free.push_back(&pool[i]);
    }
    Node* head = nullptr;
    for (int step = 0; step < 5000; ++step) {
        const int op = static_cast<int>(rng() % 5);
        const size_t at = model.empty() ? 0 : rng() % model.size();
        if (op <= 2 && !free.empty()) {
            Node* node = free.back();
            free.pop_back();
            Node* before = op == 2 && !model.empty() ? model[at] : nullptr;
            if (op == 0) {
                VK_ll_append(&head, node);
                model.push_back(node);
            } else if (op == 1) {
                VK_ll_prepend(&head, node);
                model.insert(model.begin(), node);
            } else {
                VK_ll_insert(&head, before, node);
                model.insert(before ? model.begin() + at : model.end(), node);
            }
        } else if (op == 3 && !model.empty()) {
            VK_ll_remove(&head, model[at]);
            EXPECT_EQ(model[at]->prev, nullptr);
            EXPECT_EQ(model[at]->next, nullptr);
            free.push_back(model[at]);
            model.erase(model.begin() + at);
        } else if (op == 4 && !model.empty() && !free.empty()) {
            Node* replacement = free.back();
            free.pop_back();
            VK_ll_replace(&head, model[at], replacement);
            free.push_back(model[at]);
            model[at] = replacement;
        }
        std::vector<void*> nodes;
        ASSERT_EQ(obrix::test::checkListLinks(head, &nodes), "") << "step " << step;
        ASSERT_EQ(nodes, std::vector<void*>(model.begin(), model.end())) << "step " << step;
        ASSERT_EQ(VK_ll_length(head), static_cast<int>(model.size()));
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
    EXPECT_EQ(VK_ll_find(head, &key4, recording, 0), nullptr);
    EXPECT_EQ(seen.back(), nullptr);
    EXPECT_EQ(VK_ll_find(head, &key3, recording, 0), &n[1]);
    EXPECT_EQ(VK_ll_find(nullptr, &key3, recording, 0), nullptr);
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
    Node n[2] = {{nullptr, nullptr, 1, 1}, {nullptr, nullptr, 2, 2}};
    Node t[2] = {{nullptr, nullptr, 9, 9}, {nullptr, nullptr, 8, 8}};
    Node *head = nullptr, *tail = nullptr;
    VK_ll_append(&head, &n[0]);
    VK_ll_append(&head, &n[1]);
    VK_ll_append(&tail, &t[0]);
    VK_ll_append(&tail, &t[1]);

    auto* copy = static_cast<Node*>(VK_ll_copy_and_append(head, &t[0], sizeof(Node)));
    EXPECT_EQ(tags(copy), (std::vector<int>{1, 2, 9}));
    EXPECT_NE(copy, &n[0]);
    EXPECT_EQ(t[0].next, nullptr);
    EXPECT_EQ(tags(head), (std::vector<int>{1, 2})); // the originals keep their links
    t[0].prev->next = nullptr;
    freeAll(copy);

    EXPECT_EQ(VK_ll_copy_and_append(nullptr, &t[1], 0), nullptr); // the size test comes first
    EXPECT_EQ(VK_ll_copy_and_append(nullptr, &t[1], sizeof(Node)), &t[1]);
    EXPECT_EQ(t[1].prev, nullptr);
    EXPECT_EQ(VK_ll_copy_and_append(nullptr, nullptr, sizeof(Node)), nullptr);
}

TEST(VkLinkedList, EndsAndNullArgumentsGiveTheDocumentedResults) {
    Node n[3] = {{nullptr, nullptr, 1, 0}, {nullptr, nullptr, 2, 1}, {nullptr, nullptr, 3, 2}};
    Node* head = nullptr;
    VK_ll_merge(&head, &n[1]); // an empty list takes the chain as it is
    EXPECT_EQ(head, &n[1]);
    VK_ll_merge(&head, &n[2]);
    Node repl{nullptr, nullptr, 0, 7};
    VK_ll_replace(&head, &n[1], &repl);
    EXPECT_EQ(head, &repl);
    EXPECT_EQ(tags(head), (std::vector<int>{7, 2}));
    EXPECT_EQ(VK_ll_nth(head, 0), head);
    EXPECT_EQ(VK_ll_nth(head, -5), head);
    EXPECT_EQ(VK_ll_nth(head, 2), nullptr);
    EXPECT_EQ(VK_ll_find_item_number(head, &n[0]), -1);
    EXPECT_EQ(VK_ll_present(head, &n[2]), 1);
    EXPECT_EQ(VK_ll_present(head, nullptr), 0);

    EXPECT_EQ(VK_ll_next(nullptr), nullptr);
    EXPECT_EQ(VK_ll_first(nullptr), nullptr);
    EXPECT_EQ(VK_ll_length(nullptr), 0);
    EXPECT_EQ(VK_ll_find_item_number(nullptr, &n[0]), -1);
    VK_ll_append(nullptr, &n[0]);
    VK_ll_insert(&head, &repl, nullptr);
    VK_ll_remove(nullptr, &n[2]);
    VK_ll_insert_sorted(&head, &n[0], nullptr);
    VK_ll_merge_sorted(&head, nullptr, nullptr, nullptr, byKey);
    EXPECT_EQ(VK_ll_remove_match(&head, nullptr), 0);
    EXPECT_EQ(tags(head), (std::vector<int>{7, 2}));
}
