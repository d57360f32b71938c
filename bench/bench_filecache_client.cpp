// One application process of the file cache benchmark: COUNT Acquire/Release pairs on KEY,
// each timed; the latencies (nanoseconds, int64) go to OUTFILE.
//   bench_filecache_client DIR KEY COUNT OUTFILE
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "ObrixBase/filecache/FileCache.h"

int main(int argc, char** argv) {
    if (argc != 5)
        return 2;
    qvObrixBase::FileCache cache;
    if (cache.initialize(argv[1], 0, 0).isError())
        return 4;
    const long count = std::atol(argv[3]);
    std::vector<long long> latencies;
    latencies.reserve(static_cast<std::size_t>(count));
    for (long i = 0; i < count; ++i) {
        const auto start = std::chrono::steady_clock::now();
        auto item = cache.find(argv[2]); // Acquire
        if (!item)
            return 3;
        item.clear(); // Release
        latencies.push_back(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                std::chrono::steady_clock::now() - start)
                                .count());
    }
    std::FILE* out = std::fopen(argv[4], "wb");
    if (!out)
        return 5;
    std::fwrite(latencies.data(), sizeof(long long), latencies.size(), out);
    std::fclose(out);
    return 0;
}
