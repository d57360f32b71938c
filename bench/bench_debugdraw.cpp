// Debug drawing: the cost of a drawing call while drawing is off (beside a plain branch on a
// local flag, the floor), and the speed of writing a frame of a 10^6-triangle mesh in each
// file form (beside writing the same number of bytes straight to a file, the ceiling), in
// bytes of output per second.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemInfo.h"
#include "Base/qvOS/Uuid.h"
#include "ObrixBase/ObrixBase.h"

namespace {

void BM_DisabledDrawCall(benchmark::State& state) {
    ObrixDebugDrawProtocol::disable();
    const T3dDblPoint p(1, 2, 3);
    for (auto _ : state) {
        OBRIX_DEBUG_DRAW.label("labels", p, "never drawn");
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_DisabledDrawCall);

void BM_PlainBranchPeer(benchmark::State& state) {
    bool on = false;
    benchmark::DoNotOptimize(on);
    int drawn = 0;
    for (auto _ : state) {
        if (on)
            ++drawn;
        benchmark::ClobberMemory();
    }
    benchmark::DoNotOptimize(drawn);
}
BENCHMARK(BM_PlainBranchPeer);

// A wavy grid of n x n squares, two triangles each: 708 x 708 gives 1,002,528 triangles.
const ObrixDebugDrawFrame& millionTriangles() {
    static const ObrixDebugDrawFrame frame = [] {
        const std::uint32_t n = 708;
        std::vector<double> xyz;
        xyz.reserve(std::size_t(n + 1) * (n + 1) * 3);
        for (std::uint32_t j = 0; j <= n; ++j)
            for (std::uint32_t i = 0; i <= n; ++i)
                xyz.insert(xyz.end(),
                           {1e5 + i * 0.01, 2e5 + j * 0.01, 0.1 * ((i * 7 + j * 3) % 11)});
        std::vector<std::uint32_t> tri;
        tri.reserve(std::size_t(n) * n * 6);
        for (std::uint32_t j = 0; j < n; ++j)
            for (std::uint32_t i = 0; i < n; ++i) {
                const std::uint32_t a = j * (n + 1) + i, b = a + 1, c = a + n + 1, d = c + 1;
                tri.insert(tri.end(), {a, b, d, a, d, c});
            }
        ObrixDebugDrawFrame f("a million triangles");
        ObrixDebugDrawPen(f, __FILE__, __LINE__)
            .mesh("surfaces", xyz.data(), xyz.size() / 3, tri.data(), tri.size() / 3,
                  ObrixDebugDrawColours::grey, "grid");
        return f;
    }();
    return frame;
}

std::uintmax_t folderBytes(const std::string& dir) {
    std::uintmax_t total = 0;
    for (const auto& e : std::filesystem::directory_iterator(dir))
        total += e.file_size();
    return total;
}

void writeFrames(benchmark::State& state, ObrixDebugDrawFileWriter::Format format, bool viewer) {
    const ObrixDebugDrawFrame& frame = millionTriangles();
    const std::string dir =
        qvOS::Filename::join(qvOS::tempDirectory(), "obrix-bench-" + qvOS::Uuid().asString());
    ObrixDebugDrawFileWriter writer(dir, {format, viewer});
    // The first frame also writes the viewer page; measure the frames after it.
    if (writer.writeFrame(frame, 1).isError()) {
        state.SkipWithError("cannot write");
        return;
    }
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    unsigned number = 1;
    std::uintmax_t bytes = 0;
    for (auto _ : state) {
        if (writer.writeFrame(frame, ++number).isError()) {
            state.SkipWithError("cannot write");
            break;
        }
        state.PauseTiming();
        bytes += folderBytes(dir);
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.counters["MB_per_frame"] = double(bytes) / state.iterations() / 1e6;
    std::filesystem::remove_all(dir);
}

void BM_WriteGlb(benchmark::State& s) {
    writeFrames(s, ObrixDebugDrawFileWriter::Format::Glb, false);
}
void BM_WriteGltfEmbedded(benchmark::State& s) {
    writeFrames(s, ObrixDebugDrawFileWriter::Format::Gltf, false);
}
void BM_WriteGltfWithViewer(benchmark::State& s) {
    writeFrames(s, ObrixDebugDrawFileWriter::Format::Gltf, true);
}
void BM_WriteObj(benchmark::State& s) {
    writeFrames(s, ObrixDebugDrawFileWriter::Format::Obj, false);
}
BENCHMARK(BM_WriteGlb)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WriteGltfEmbedded)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WriteGltfWithViewer)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WriteObj)->Unit(benchmark::kMillisecond)->UseRealTime();

// The ceiling: the same number of bytes as the .glb, written in one call.
void BM_RawWritePeer(benchmark::State& state) {
    const ObrixDebugDrawFrame& frame = millionTriangles();
    const std::size_t size =
        frame.items()[0].xyz.size() * 4 + frame.items()[0].triangles.size() * 4;
    const std::string bytes(size, 'x');
    const std::string path =
        qvOS::Filename::join(qvOS::tempDirectory(), "obrix-bench-" + qvOS::Uuid().asString());
    for (auto _ : state) {
        std::ofstream(path, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
    std::remove(path.c_str());
}
BENCHMARK(BM_RawWritePeer)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
