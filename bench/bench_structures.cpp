// The four structure kinds doing add, find, enumerate and remove at 10, 1 000 and 100 000
// members, beside std::list and std::multiset doing the same work in the same run.
#include <algorithm>
#include <list>
#include <set>
#include <vector>

#include <benchmark/benchmark.h>

#include "ObrixBase/util/DS/ds_structures.h"

namespace {

std::vector<int>& values(size_t n) {
    static std::vector<int> v;
    if (v.size() < n) {
        v.resize(n);
        // A fixed shuffle, so that sorted insertion sees keys in no particular order.
        for (size_t i = 0; i < n; ++i)
            v[i] = int((i * 2654435761u) % n);
    }
    return v;
}

int byValue(void* a, void* b) {
    int x = **static_cast<int**>(a), y = **static_cast<int**>(b);
    return x < y ? -1 : (x > y ? 1 : 0);
}
int matchValue(void* item, void* key) {
    return *static_cast<int*>(item) == *static_cast<int*>(key);
}

DS_Structure* build(int kind, size_t n, DS_Compare_fn comparator) {
    int status = 0;
    DS_Structure* s = DS_create_type(kind, &status, __LINE__, __FILE__);
    s->comparator = comparator;
    std::vector<int>& v = values(n);
    for (size_t i = 0; i < n; ++i)
        s->methods->add(s, &v[i], &status);
    return s;
}

// A full structure to read from. Kind 2 is filled newest first: appending to it walks to the
// end, which would make the set-up itself quadratic.
DS_Structure* filled(int kind, size_t n) {
    return build(kind, n, kind == 2 ? &Ds_filo_comparator : &Ds_fifo_comparator);
}

void destroy(DS_Structure* s) {
    int status = 0;
    DS_destructor(&s, nullptr, nullptr, &status);
}

// ---- the kinds; Args: {kind, members} ----

void BM_DsAddFifo(benchmark::State& state) {
    for (auto _ : state)
        destroy(build(int(state.range(0)), size_t(state.range(1)), &Ds_fifo_comparator));
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

void BM_DsAddSorted(benchmark::State& state) {
    for (auto _ : state)
        destroy(build(int(state.range(0)), size_t(state.range(1)), &byValue));
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

void BM_DsFindMiddle(benchmark::State& state) {
    DS_Structure* s = filled(int(state.range(0)), size_t(state.range(1)));
    int key = values(size_t(state.range(1)))[size_t(state.range(1)) / 2];
    int status = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(s->methods->find(s, &matchValue, &key, &status));
    destroy(s);
}

void BM_DsEnumerateAndIterate(benchmark::State& state) {
    DS_Structure* s = filled(int(state.range(0)), size_t(state.range(1)));
    DS_Jump_table_s* m = s->methods;
    int status = 0;
    for (auto _ : state) {
        long sum = m->enumerate(s, &status);
        for (void* n = m->head(s, &status); n; n = m->next(s, n, &status))
            sum += *static_cast<int*>(m->get_data(n, &status));
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

// Drains a full structure by removing its head item until it is empty.
void BM_DsRemoveAll(benchmark::State& state) {
    int status = 0;
    for (auto _ : state) {
        state.PauseTiming();
        DS_Structure* s = filled(int(state.range(0)), size_t(state.range(1)));
        DS_Jump_table_s* m = s->methods;
        state.ResumeTiming();
        for (void* n = m->head(s, &status); n; n = m->head(s, &status))
            m->remove(s, m->get_data(n, &status), nullptr, nullptr, &status);
        state.PauseTiming();
        destroy(s);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

// ---- the peers; Args: {members} ----

void BM_StdListPushBack(benchmark::State& state) {
    std::vector<int>& v = values(size_t(state.range(0)));
    for (auto _ : state) {
        std::list<int*> l;
        for (size_t i = 0; i < size_t(state.range(0)); ++i)
            l.push_back(&v[i]);
        benchmark::DoNotOptimize(l);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_StdMultisetInsert(benchmark::State& state) {
    std::vector<int>& v = values(size_t(state.range(0)));
    auto less = [](const int* a, const int* b) { return *a < *b; };
    for (auto _ : state) {
        std::multiset<int*, decltype(less)> s(less);
        for (size_t i = 0; i < size_t(state.range(0)); ++i)
            s.insert(&v[i]);
        benchmark::DoNotOptimize(s);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_StdListFindMiddle(benchmark::State& state) {
    std::vector<int>& v = values(size_t(state.range(0)));
    std::list<int*> l;
    for (size_t i = 0; i < size_t(state.range(0)); ++i)
        l.push_back(&v[i]);
    int key = v[size_t(state.range(0)) / 2];
    for (auto _ : state)
        benchmark::DoNotOptimize(
            std::find_if(l.begin(), l.end(), [&](int* p) { return *p == key; }));
}

void BM_StdListSizeAndIterate(benchmark::State& state) {
    std::vector<int>& v = values(size_t(state.range(0)));
    std::list<int*> l;
    for (size_t i = 0; i < size_t(state.range(0)); ++i)
        l.push_back(&v[i]);
    for (auto _ : state) {
        long sum = long(l.size());
        for (int* p : l)
            sum += *p;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_StdListRemoveAll(benchmark::State& state) {
    std::vector<int>& v = values(size_t(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        std::list<int*> l;
        for (size_t i = 0; i < size_t(state.range(0)); ++i)
            l.push_back(&v[i]);
        state.ResumeTiming();
        while (!l.empty())
            l.erase(std::find(l.begin(), l.end(), l.front()));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void kindsAndSizes(benchmark::internal::Benchmark* b) {
    for (int kind : {1, 2, 3, 4})
        for (int n : {10, 1000, 100000})
            b->Args({kind, n});
}
void sizes(benchmark::internal::Benchmark* b) {
    for (int n : {10, 1000, 100000})
        b->Args({n});
}
// Appending walks to the end in kind 2 and sorted insertion scans in the list and array
// kinds, so at 100 000 members those runs take minutes; the tree is measured at every size.
void sortedSizes(benchmark::internal::Benchmark* b) {
    for (int kind : {1, 2, 3, 4})
        for (int n : {10, 1000, 100000})
            if (kind == 3 || n <= 1000)
                b->Args({kind, n});
}
void fifoSizes(benchmark::internal::Benchmark* b) {
    for (int kind : {1, 2, 3, 4})
        for (int n : {10, 1000, 100000})
            if (kind != 2 || n <= 1000)
                b->Args({kind, n});
}

} // namespace

BENCHMARK(BM_DsAddFifo)->Apply(fifoSizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StdListPushBack)->Apply(sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DsAddSorted)->Apply(sortedSizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StdMultisetInsert)->Apply(sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DsFindMiddle)->Apply(kindsAndSizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StdListFindMiddle)->Apply(sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DsEnumerateAndIterate)->Apply(kindsAndSizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StdListSizeAndIterate)->Apply(sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DsRemoveAll)->Apply(kindsAndSizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StdListRemoveAll)->Apply(sizes)->Unit(benchmark::kMicrosecond);
