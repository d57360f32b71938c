// The accounted allocator against the C heap it stands on, and capitalisation throughput.
// Pairs: one allocation and its release per iteration, hot (the same block over and over)
// and with a working set of live blocks, so that the side table's cache misses show.
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "ObrixBase/ObrixBase.h"

namespace {

void BM_MallocFreePair(benchmark::State& state) {
    const auto size = static_cast<size_t>(state.range(0));
    for (auto _ : state) {
        void* p = std::malloc(size);
        benchmark::DoNotOptimize(p);
        std::free(p);
    }
}
BENCHMARK(BM_MallocFreePair)->Arg(32)->Arg(256);

void BM_MaMallocFreePair(benchmark::State& state) {
    const auto size = static_cast<size_t>(state.range(0));
    for (auto _ : state) {
        void* p = MA_malloc(size, __LINE__, __FILE__);
        benchmark::DoNotOptimize(p);
        MA_free(p);
    }
}
BENCHMARK(BM_MaMallocFreePair)->Arg(32)->Arg(256);

// `live` blocks stay allocated; each iteration replaces a random one of them.
template <bool Accounted>
void workingSet(benchmark::State& state) {
    const auto live = static_cast<size_t>(state.range(0));
    std::vector<void*> blocks(live);
    std::minstd_rand random(7);
    auto allocate = [](size_t size) {
        return Accounted ? MA_malloc(size, __LINE__, __FILE__) : std::malloc(size);
    };
    auto release = [](void* p) { Accounted ? MA_free(p) : std::free(p); };
    for (void*& p : blocks)
        p = allocate(16 + random() % 240);
    for (auto _ : state) {
        void*& slot = blocks[random() % live];
        release(slot);
        slot = allocate(16 + random() % 240);
        benchmark::DoNotOptimize(slot);
    }
    for (void* p : blocks)
        release(p);
}
void BM_MallocFreeWorkingSet(benchmark::State& state) {
    workingSet<false>(state);
}
void BM_MaMallocFreeWorkingSet(benchmark::State& state) {
    workingSet<true>(state);
}
BENCHMARK(BM_MallocFreeWorkingSet)->Arg(1000)->Arg(100000);
BENCHMARK(BM_MaMallocFreeWorkingSet)->Arg(1000)->Arg(100000);

// About 1 MB of lower-case prose with titles' small words, hyphens and punctuation.
std::string megabyteOfText() {
    static const char* const words[] = {
        "the",  "shape", "of",     "surface",    "and", "a",   "curve", "state-of-the-art",
        "with", "nurbs", "iPhone", "modelling:", "to",  "end."};
    std::minstd_rand random(11);
    std::string text;
    while (text.size() < (1u << 20)) {
        text += words[random() % std::size(words)];
        text += random() % 12 == 0 ? '\n' : ' ';
    }
    return text;
}

void BM_TitleCaseMegabyte(benchmark::State& state) {
    const std::string text = megabyteOfText();
    for (auto _ : state)
        benchmark::DoNotOptimize(qvObrixBase::titleCase(text));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_TitleCaseMegabyte);

void BM_SentenceCaseMegabyte(benchmark::State& state) {
    const std::string text = megabyteOfText();
    for (auto _ : state)
        benchmark::DoNotOptimize(qvObrixBase::sentenceCase(text));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_SentenceCaseMegabyte);

} // namespace
