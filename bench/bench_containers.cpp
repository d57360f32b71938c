// The C containers beside their standard and Boost peers, in one run: AVL insertion, lookup
// and removal against std::set and boost::intrusive::avl_set, sorted list insertion against
// std::list, and pool allocation against malloc.
#include <algorithm>
#include <cstdlib>
#include <list>
#include <numeric>
#include <random>
#include <set>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/intrusive/avl_set.hpp>

#include "ObrixBase/util/vk_avl.h"
#include "ObrixBase/util/vk_ll.h"
#include "ObrixBase/util/vk_pool.h"

namespace {

struct TreeNode {
    VK_avl_header avl;
    int key;
};

int byKey(void* a, void* b) {
    const int x = static_cast<TreeNode*>(a)->key, y = static_cast<TreeNode*>(b)->key;
    return x < y ? -1 : x > y ? 1 : 0;
}

struct BoostNode : boost::intrusive::avl_set_base_hook<> {
    int key;
    friend bool operator<(const BoostNode& a, const BoostNode& b) { return a.key < b.key; }
};

std::vector<int> shuffledKeys(int n) {
    std::vector<int> keys(static_cast<size_t>(n));
    std::iota(keys.begin(), keys.end(), 0);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(42));
    return keys;
}

// ---- insertion of n shuffled keys into an empty tree ----

void VkAvlInsert(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    std::vector<TreeNode> nodes(keys.size());
    for (size_t i = 0; i < keys.size(); ++i)
        nodes[i].key = keys[i];
    for (auto _ : state) {
        void* root = nullptr;
        for (TreeNode& n : nodes)
            VK_avl_insert(&root, &n, byKey);
        benchmark::DoNotOptimize(root);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void StdSetInsert(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::set<int> set;
        for (int k : keys)
            set.insert(k);
        benchmark::DoNotOptimize(set);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BoostAvlInsert(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    std::vector<BoostNode> nodes(keys.size());
    for (size_t i = 0; i < keys.size(); ++i)
        nodes[i].key = keys[i];
    for (auto _ : state) {
        boost::intrusive::avl_set<BoostNode> set;
        for (BoostNode& n : nodes)
            set.insert(n);
        benchmark::DoNotOptimize(set);
        set.clear();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- lookup of every key, in shuffled order ----

void VkAvlFind(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    std::vector<TreeNode> nodes(keys.size());
    void* root = nullptr;
    for (size_t i = 0; i < keys.size(); ++i) {
        nodes[i].key = keys[i];
        VK_avl_insert(&root, &nodes[i], byKey);
    }
    for (auto _ : state)
        for (int k : keys) {
            TreeNode key{{}, k};
            benchmark::DoNotOptimize(VK_avl_find(root, &key, byKey));
        }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void StdSetFind(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    const std::set<int> set(keys.begin(), keys.end());
    for (auto _ : state)
        for (int k : keys)
            benchmark::DoNotOptimize(set.find(k));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BoostAvlFind(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    std::vector<BoostNode> nodes(keys.size());
    boost::intrusive::avl_set<BoostNode> set;
    for (size_t i = 0; i < keys.size(); ++i) {
        nodes[i].key = keys[i];
        set.insert(nodes[i]);
    }
    for (auto _ : state)
        for (int k : keys) {
            BoostNode key;
            key.key = k;
            benchmark::DoNotOptimize(set.find(key));
        }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- removal of one node from a tree of n, then its reinsertion to keep the size ----

void VkAvlRemove(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    std::vector<TreeNode> nodes(keys.size());
    void* root = nullptr;
    for (size_t i = 0; i < keys.size(); ++i) {
        nodes[i].key = keys[i];
        VK_avl_insert(&root, &nodes[i], byKey);
    }
    size_t next = 0;
    for (auto _ : state) {
        TreeNode& n = nodes[next++ % nodes.size()];
        VK_avl_remove(&root, &n, byKey);
        VK_avl_insert(&root, &n, byKey);
    }
    state.SetItemsProcessed(state.iterations());
}

void StdSetRemove(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    std::set<int> set(keys.begin(), keys.end());
    size_t next = 0;
    for (auto _ : state) {
        const int k = keys[next++ % keys.size()];
        set.erase(k);
        set.insert(k);
    }
    state.SetItemsProcessed(state.iterations());
}

void BoostAvlRemove(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    std::vector<BoostNode> nodes(keys.size());
    boost::intrusive::avl_set<BoostNode> set;
    for (size_t i = 0; i < keys.size(); ++i) {
        nodes[i].key = keys[i];
        set.insert(nodes[i]);
    }
    size_t next = 0;
    for (auto _ : state) {
        BoostNode& n = nodes[next++ % nodes.size()];
        set.erase(set.iterator_to(n));
        set.insert(n);
    }
    state.SetItemsProcessed(state.iterations());
    set.clear();
}

// ---- sorted insertion of n random keys into a list ----

struct ListNode {
    ListNode* prev;
    ListNode* next;
    int key;
};

int listOrder(void* a, void* b) {
    return static_cast<ListNode*>(a)->key - static_cast<ListNode*>(b)->key;
}

void VkLlInsertSorted(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    std::vector<ListNode> nodes(keys.size());
    for (size_t i = 0; i < keys.size(); ++i)
        nodes[i].key = keys[i];
    for (auto _ : state) {
        ListNode* head = nullptr;
        for (ListNode& n : nodes)
            VK_ll_insert_sorted(&head, &n, listOrder);
        benchmark::DoNotOptimize(head);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void StdListInsertSorted(benchmark::State& state) {
    const auto keys = shuffledKeys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::list<int> list;
        for (int k : keys)
            list.insert(std::find_if(list.begin(), list.end(), [k](int x) { return k <= x; }), k);
        benchmark::DoNotOptimize(list);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// ---- 1000 small pieces, then everything released ----

void VkPoolAlloc(benchmark::State& state) {
    const int size = static_cast<int>(state.range(0));
    for (auto _ : state) {
        VK_Pool* pool = VK_pool_new(64 * 1024);
        for (int i = 0; i < 1000; ++i)
            benchmark::DoNotOptimize(VK_pool_alloc(pool, size));
        VK_pool_free(&pool);
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}

void Malloc(benchmark::State& state) {
    const auto size = static_cast<size_t>(state.range(0));
    std::vector<void*> pieces(1000);
    for (auto _ : state) {
        for (void*& p : pieces) {
            p = std::malloc(size);
            benchmark::DoNotOptimize(p);
        }
        for (void* p : pieces)
            std::free(p);
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}

} // namespace

BENCHMARK(VkAvlInsert)->Arg(1000)->Arg(100000);
BENCHMARK(StdSetInsert)->Arg(1000)->Arg(100000);
BENCHMARK(BoostAvlInsert)->Arg(1000)->Arg(100000);
BENCHMARK(VkAvlFind)->Arg(1000)->Arg(100000);
BENCHMARK(StdSetFind)->Arg(1000)->Arg(100000);
BENCHMARK(BoostAvlFind)->Arg(1000)->Arg(100000);
BENCHMARK(VkAvlRemove)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(StdSetRemove)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BoostAvlRemove)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(VkLlInsertSorted)->Arg(100)->Arg(1000);
BENCHMARK(StdListInsertSorted)->Arg(100)->Arg(1000);
BENCHMARK(VkPoolAlloc)->Arg(32);
BENCHMARK(Malloc)->Arg(32);
