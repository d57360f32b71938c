// The file cache's Redis tier against the real qvcached and a redis-server of the benchmark's
// own on loopback: a remote hit of a 1 MB file (fetched, checked, written and indexed, then
// read) beside a local hit of the same file read the same way, and a local hit's Acquire and
// Release with the tier configured beside the same without one.
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>
#include <hiredis/hiredis.h>

#include "ObrixBase/filecache/FileCache.h"
#include "tests/programs/qvcached/QvcachedTestSupport.h"

namespace fs = std::filesystem;
using obrix::test::ScratchDirectory;

namespace {

constexpr std::size_t FileBytes = 1u << 20;
const std::string Key = "benchmark/tessellation-0042";

qvcachedtest::RedisServer& redis() {
    static qvcachedtest::RedisServer server;
    return server;
}

// A cache directory with its own qvcached, naming the shared tier when `remote`.
struct Workstation {
    ScratchDirectory dir;
    qvObrixBase::FileCache cache;
    bool ok = false;
    explicit Workstation(bool remote) {
        if (remote)
            dir.write("remote.conf", "url = redis://127.0.0.1:" + std::to_string(redis().port()) +
                                         "/0\nprefix = bench\n");
        ok = cache.initialize(dir.str(), 0, 0).isOk();
    }
    bool add(const std::string& key, std::size_t bytes) {
        const qvString::CString path = cache.generatePath();
        std::ofstream(path.c_str(), std::ios::binary) << std::string(bytes, 'm');
        return static_cast<bool>(cache.add(key, path));
    }
};

// Waits (at most 10 s) for the write-through of `key`.
bool landed(const std::string& key) {
    const timeval second{1, 0};
    redisContext* c = redisConnectWithTimeout("127.0.0.1", redis().port(), second);
    bool found = false;
    const auto end = qvcachedtest::Clock::now() + std::chrono::seconds(10);
    while (c && !c->err && !found && qvcachedtest::Clock::now() < end) {
        auto* r = static_cast<redisReply*>(redisCommand(c, "EXISTS bench:m:%s", key.c_str()));
        found = r && r->integer == 1;
        freeReplyObject(r);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    redisFree(c);
    return found;
}

std::size_t readWhole(const qvString::CString& path) {
    static std::string buffer(FileBytes, '\0');
    std::ifstream in(path.c_str(), std::ios::binary);
    in.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    return static_cast<std::size_t>(in.gcount());
}

void BM_RemoteHit1MB(benchmark::State& state) {
    if (!redis().running()) {
        state.SkipWithError(redis().reason().c_str());
        return;
    }
    Workstation maker(true), user(true);
    if (!maker.ok || !user.ok || !maker.add(Key, FileBytes) || !landed(Key)) {
        state.SkipWithError("no cache server or no write-through");
        return;
    }
    for (auto _ : state) {
        auto item = user.cache.find(Key);
        if (!item || readWhole(item->path()) != FileBytes) {
            state.SkipWithError("remote miss");
            return;
        }
        state.PauseTiming();
        user.cache.remove(item); // the next round misses locally again
        item.clear();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * FileBytes));
}

void BM_LocalHit1MB(benchmark::State& state) {
    Workstation local(false);
    if (!local.ok || !local.add(Key, FileBytes)) {
        state.SkipWithError("no cache server");
        return;
    }
    for (auto _ : state) {
        auto item = local.cache.find(Key);
        benchmark::DoNotOptimize(readWhole(item->path()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * FileBytes));
}

// Acquire and Release of a local hit; arg 1 = the tier configured (and reachable).
void BM_LocalHitAcquireRelease(benchmark::State& state) {
    const bool remote = state.range(0) != 0;
    if (remote && !redis().running()) {
        state.SkipWithError(redis().reason().c_str());
        return;
    }
    Workstation local(remote);
    if (!local.ok || !local.add(Key, 4096)) {
        state.SkipWithError("no cache server");
        return;
    }
    for (auto _ : state) {
        auto item = local.cache.find(Key);
        benchmark::DoNotOptimize(item.get());
    }
}

} // namespace

BENCHMARK(BM_RemoteHit1MB)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LocalHit1MB)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LocalHitAcquireRelease)
    ->ArgName("tier")
    ->Arg(0)
    ->Arg(1)
    ->Arg(0)
    ->Arg(1)
    ->UseRealTime();
