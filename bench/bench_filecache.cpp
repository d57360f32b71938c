// The file cache's exchanges against the real qvcached: one Acquire with its reply beside a
// bare loopback echo of the same byte counts over the same socket layer, and eight application
// processes doing Acquire/Release pairs at once (latency percentiles as counters; the pair
// count per process is OBRIX_BENCH_CACHE_PAIRS, default 100000).
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Process.h"
#include "Base/qvOS/Uuid.h"
#include "Base/qvTCP/Socket.h"
#include "ObrixBase/filecache/FileCache.h"
#include "ObrixBase/filecache/FileCacheProtocolClient.h"

namespace fs = std::filesystem;

namespace {

const std::string Key = "benchmark/mesh-0042";

// One cache directory with one entry, served by a qvcached that this process started.
struct Cache {
    fs::path dir = fs::temp_directory_path() / ("obrix-bench-cache-" + qvOS::Uuid().asString());
    qvObrixBase::FileCache cache;
    qv::Reference<qvObrixBase::FileCacheItem> item;
    bool ok = false;
    Cache() {
        if (cache.initialize(dir.string(), 0, 0).isError())
            return;
        const std::string path = cache.generatePath();
        std::ofstream(path, std::ios::binary) << std::string(4096, 'x');
        item = cache.add(Key, path);
        ok = static_cast<bool>(item);
    }
    int port() const {
        std::ifstream in(dir / "lockfile.lck");
        int p = 0;
        in >> p;
        return p;
    }
    ~Cache() {
        item.clear();
        cache = qvObrixBase::FileCache();
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

void BM_CacheAcquire(benchmark::State& state) {
    Cache cache;
    qvTCP::ClientSocket socket(qvTCP::Address::loopback(cache.port()));
    qvObrixBase::FileCacheProtocolClient client;
    if (!cache.ok || socket.connect().isError()) {
        state.SkipWithError("no cache server");
        return;
    }
    client.setSocket(socket);
    client.initialize(cache.dir.string(), 0, 0);
    qvString::CString path;
    std::int64_t time = 0;
    for (auto _ : state) {
        client.acquire(Key, path, time);
        benchmark::DoNotOptimize(path.data());
    }
    state.counters["request_bytes"] = static_cast<double>(4 + 4 + Key.size());
    state.counters["reply_bytes"] = static_cast<double>(4 + path.size() + 8 + 4);
}

// The same byte counts as one Acquire and its reply, echoed by a thread over qvTCP.
void BM_LoopbackEcho(benchmark::State& state) {
    Cache cache; // for the reply's path length only
    const std::size_t requestBytes = 4 + 4 + Key.size();
    const std::size_t replyBytes =
        4 + (cache.dir / qvOS::Uuid().asString()).string().size() + 8 + 4;
    qvTCP::Server server(-1, 1);
    server.setLoopbackOnly();
    server.listen();
    std::thread echo([&] {
        std::unique_ptr<qvTCP::Socket> peer;
        server.accept(10, peer);
        std::string in(requestBytes, '\0'), out(replyBytes, 'r');
        while (peer && peer->read(in.data(), in.size()).isOk() &&
               peer->write(out.data(), out.size()).isOk()) {
        }
    });
    qvTCP::ClientSocket socket(qvTCP::Address::loopback(server.getPort()));
    socket.connect();
    std::string request(requestBytes, 'q'), reply(replyBytes, '\0');
    for (auto _ : state) {
        socket.write(request.data(), request.size());
        socket.read(reply.data(), reply.size());
    }
    socket.close();
    echo.join();
    state.counters["request_bytes"] = static_cast<double>(requestBytes);
    state.counters["reply_bytes"] = static_cast<double>(replyBytes);
}

void BM_EightProcessesAcquireRelease(benchmark::State& state) {
    constexpr int Processes = 8;
    const char* env = std::getenv("OBRIX_BENCH_CACHE_PAIRS");
    const long pairs = env ? std::atol(env) : 100000;
    Cache cache;
    if (!cache.ok) {
        state.SkipWithError("no cache server");
        return;
    }
    const qvString::CString client = qvOS::AppMain::getBinaryPath("bench_filecache_client");
    std::vector<long long> all;
    for (auto _ : state) {
        std::vector<qvOS::ProcessId> pids(Processes);
        for (int i = 0; i < Processes; ++i)
            qvOS::ProcessManager::startAsync(client,
                                             {cache.dir.string(), Key, std::to_string(pairs),
                                              (cache.dir.string() + ".lat" + std::to_string(i))},
                                             "", &pids[i]);
        for (int i = 0; i < Processes; ++i) {
            qvOS::ProcessResult result;
            qvOS::ProcessManager::wait(pids[i], 600, result);
            const std::string file = cache.dir.string() + ".lat" + std::to_string(i);
            std::ifstream in(file, std::ios::binary);
            std::vector<long long> part(static_cast<std::size_t>(pairs));
            in.read(reinterpret_cast<char*>(part.data()),
                    static_cast<std::streamsize>(part.size() * sizeof(long long)));
            part.resize(static_cast<std::size_t>(in.gcount()) / sizeof(long long));
            all.insert(all.end(), part.begin(), part.end());
            std::remove(file.c_str());
        }
    }
    if (all.empty()) {
        state.SkipWithError("the client processes measured nothing");
        return;
    }
    std::sort(all.begin(), all.end());
    auto at = [&](double q) {
        return static_cast<double>(
                   all[static_cast<std::size_t>(q * static_cast<double>(all.size() - 1))]) /
               1000.0;
    };
    state.counters["pairs"] = static_cast<double>(all.size());
    state.counters["p50_us"] = at(0.50);
    state.counters["p99_us"] = at(0.99);
    state.counters["max_us"] = at(1.0);
    state.counters["over_40ms"] = static_cast<double>(
        std::count_if(all.begin(), all.end(), [](long long ns) { return ns >= 40'000'000; }));
}

} // namespace

BENCHMARK(BM_CacheAcquire);
BENCHMARK(BM_LoopbackEcho);
BENCHMARK(BM_EightProcessesAcquireRelease)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
