// The trace log on the modelling thread's hot path: a line with tracing off (the call alone,
// and guarded by enabled()), a 60-character line with tracing on, and beside it the floor (the
// same snprintf into a stack buffer) and the usual way of writing such a line (localtime on
// every line, then fprintf to a buffered stdio stream). Every allocation of the process is
// counted, through a replaced operator new and, on glibc, replaced malloc family functions,
// and reported per line; a traced line that allocates fails its benchmark.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <new>
#include <string>

#include <benchmark/benchmark.h>

#include "ObrixBase/ObrixBase.h"

namespace {

std::atomic<unsigned long long> allocations{0};

} // namespace

// ---- counting allocations ----

void* operator new(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

#if defined(__GLIBC__)
// glibc lets a program replace its malloc family; the library's own calls and those inside the
// C library (vsnprintf, localtime) then come here too. The counter is only read between runs.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}
void* calloc(std::size_t n, std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(n, size);
}
void* realloc(void* p, std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(p, size);
}
void free(void* p) {
    __libc_free(p);
}
}
#endif

namespace {

// 60 characters of message, formatted from arguments as a real trace call would be.
constexpr const char* Format = "picked curve %d of %d at u=%.4f after %s";
constexpr const char* Reason = "double click on it";

std::string ringDirectory() {
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / "obrix-bench-trace";
    std::filesystem::create_directories(dir);
    return dir.string();
}

// Call right after the timed loop: setting a counter allocates.
unsigned long long reportAllocations(benchmark::State& state, unsigned long long before) {
    const unsigned long long made = allocations.load() - before;
    state.counters["allocs_per_line"] =
        double(made) / double(state.iterations() ? state.iterations() : 1);
    return made;
}

void BM_TraceDisabled(benchmark::State& state) {
    VeskoTrace::finalize();
    int i = 0;
    for (auto _ : state)
        VeskoTrace::trace1(VeskoTrace::Picking, Format, ++i, 200, 0.25, Reason);
}
BENCHMARK(BM_TraceDisabled);

void BM_TraceDisabledGuarded(benchmark::State& state) {
    VeskoTrace::finalize();
    int i = 0;
    for (auto _ : state) {
        // The level is read afresh at every call site, as between the calls of real code.
        benchmark::ClobberMemory();
        if (VeskoTrace::enabled(1))
            VeskoTrace::trace1(VeskoTrace::Picking, Format, ++i, 200, 0.25, Reason);
    }
    benchmark::DoNotOptimize(i);
}
BENCHMARK(BM_TraceDisabledGuarded);

void BM_TraceEnabled(benchmark::State& state) {
    const std::string dir = ringDirectory();
    if (!VeskoTrace::initialize(dir.c_str(), 1 << 20, 1)) {
        state.SkipWithError("no ring");
        return;
    }
    const std::string ring = VeskoTrace::ringFile();
    int i = 0;
    VeskoTrace::trace1(VeskoTrace::Picking, Format, 100, 200, 0.25, Reason); // stamp made
    const unsigned long long before = allocations.load();
    for (auto _ : state)
        VeskoTrace::trace1(VeskoTrace::Picking, Format, ++i % 900 + 100, 200, 0.25, Reason);
    if (reportAllocations(state, before) != 0)
        state.SkipWithError("a traced line allocated");
    VeskoTrace::finalize();
    std::filesystem::remove(ring);
}
BENCHMARK(BM_TraceEnabled);

// The floor: formatting the same message into a stack buffer.
void BM_PeerSnprintfOnly(benchmark::State& state) {
    char line[256];
    int i = 0;
    const unsigned long long before = allocations.load();
    for (auto _ : state) {
        std::snprintf(line, sizeof line, Format, ++i % 900 + 100, 200, 0.25, Reason);
        benchmark::DoNotOptimize(line);
    }
    reportAllocations(state, before);
}
BENCHMARK(BM_PeerSnprintfOnly);

// The usual log line: local time taken and printed for every line, then a buffered fprintf.
void BM_PeerLocaltimeFprintf(benchmark::State& state) {
    const std::filesystem::path path = std::filesystem::path(ringDirectory()) / "stdio.log";
    std::FILE* file = std::fopen(path.string().c_str(), "w");
    if (!file) {
        state.SkipWithError("no log file");
        return;
    }
    int i = 0;
    const unsigned long long before = allocations.load();
    for (auto _ : state) {
        const std::time_t now = std::time(nullptr);
        const std::tm* t = std::localtime(&now);
        std::fprintf(file, "%d/%02d/%02d %02d:%02d:%02d <%s> ", t->tm_year + 1900, t->tm_mon + 1,
                     t->tm_mday, t->tm_hour, t->tm_min, t->tm_sec, "Picking");
        std::fprintf(file, Format, ++i % 900 + 100, 200, 0.25, Reason);
        std::fputc('\n', file);
        if (i % 4096 == 0)
            std::rewind(file); // keeps the file small; costs a flush now and then
    }
    reportAllocations(state, before);
    std::fclose(file);
    std::filesystem::remove(path);
}
BENCHMARK(BM_PeerLocaltimeFprintf);

} // namespace
