#include "ObrixBase/debugdraw/ObrixDebugDrawProtocol.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TempDir.h"

// Counts every allocation of this program, so that a test can say "nothing was allocated".
// (On Windows the library's own allocations go through its C++ runtime DLL and are not seen:
// there the check covers only what the caller's side of the macro does.)
namespace {
std::atomic<long> allocations{0};
}
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

namespace {

namespace fs = std::filesystem;
using obrixtest::TempDir;
constexpr auto green = ObrixDebugDrawColours::green;

// Leaves drawing off whatever a test did.
struct DrawingOff : ::testing::Test {
    void TearDown() override { ObrixDebugDrawProtocol::disable(); }
};

std::vector<std::string> listing(const qvString::CString& dir) {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto& e : fs::directory_iterator(TempDir::fsPath(dir), ec))
        names.push_back(e.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

using ObrixDebugDrawOff = DrawingOff;
TEST_F(ObrixDebugDrawOff, AMillionDisabledCallsAllocateNothingWriteNothingAndEvaluateNothing) {
    TempDir dir;
    ASSERT_TRUE(ObrixDebugDrawProtocol::enable(dir.path()).isOk());
    ObrixDebugDrawProtocol::disable();
    ASSERT_FALSE(ObrixDebugDrawProtocol::isOn());
    int evaluated = 0;
    auto costly = [&evaluated] {
        ++evaluated;
        return std::vector<T3dDblPoint>(100);
    };
    const long before = allocations.load();
    for (int i = 0; i < 1000000; ++i) {
        OBRIX_DEBUG_DRAW.points("hits", costly(), green, "never");
        if (i % 2)
            OBRIX_DEBUG_DRAW.label("labels", T3dDblPoint(i, 0, 0), "never");
        else
            OBRIX_DEBUG_DRAW.polyline("curves", costly(), green);
    }
    const bool ended = ObrixDebugDrawProtocol::endFrame("never").isOk();
    const long allocated = allocations.load() - before;
    EXPECT_TRUE(ended);
    EXPECT_EQ(allocated, 0);
    EXPECT_EQ(evaluated, 0);
    EXPECT_TRUE(listing(dir.path()).empty());
    EXPECT_TRUE(ObrixDebugDrawProtocol::currentFrame().empty());
}

// Records what it is sent, as a caller's own protocol would.
struct Recorder : ObrixDebugDrawProtocol {
    std::vector<std::pair<unsigned, std::string>>* seen;
    explicit Recorder(std::vector<std::pair<unsigned, std::string>>* s) : seen(s) {}
    qvUtil::Error writeFrame(const ObrixDebugDrawFrame& frame, unsigned number) override {
        seen->emplace_back(number, frame.name() + ":" + std::to_string(frame.items().size()));
        return {};
    }
};

using ObrixDebugDrawSwitch = DrawingOff;
TEST_F(ObrixDebugDrawSwitch, FramesReachTheInstalledProtocolNumberedInOrder) {
    std::vector<std::pair<unsigned, std::string>> seen;
    ObrixDebugDrawProtocol::install(std::make_unique<Recorder>(&seen));
    ASSERT_TRUE(ObrixDebugDrawProtocol::isOn());
    OBRIX_DEBUG_DRAW.label("l", T3dDblPoint(), "a");
    OBRIX_DEBUG_DRAW.label("l", T3dDblPoint(), "b");
    ObrixDebugDrawProtocol::endFrame("one");
    ObrixDebugDrawProtocol::endFrame("two");
    ObrixDebugDrawFrame own("three");
    OBRIX_DEBUG_DRAW_TO(own).label("l", T3dDblPoint(), "c");
    ObrixDebugDrawProtocol::send(own);
    EXPECT_EQ(seen, (std::vector<std::pair<unsigned, std::string>>{
                        {1, "one:2"}, {2, "two:0"}, {3, "three:1"}}));
    // Installing again starts the numbers afresh and drops the half-drawn frame.
    OBRIX_DEBUG_DRAW.label("l", T3dDblPoint(), "dropped");
    ObrixDebugDrawProtocol::install(std::make_unique<Recorder>(&seen));
    ObrixDebugDrawProtocol::endFrame("again");
    EXPECT_EQ(seen.back(), (std::pair<unsigned, std::string>{1, "again:0"}));
}

TEST_F(ObrixDebugDrawSwitch, EnableMakesTheRunFolderOnlyWhenTheFirstFrameIsWritten) {
    TempDir dir;
    EXPECT_EQ(ObrixDebugDrawProtocol::enable("").code(), qvOS::OSError::InvalidArgument);
    ASSERT_TRUE(ObrixDebugDrawProtocol::enable(dir.path()).isOk());
    EXPECT_TRUE(listing(dir.path()).empty());
    const qvString::CString run = ObrixDebugDrawProtocol::directory();
    EXPECT_EQ(qvOS::Filename::directory(run), dir.path());
    OBRIX_DEBUG_DRAW.points("p", std::vector<T3dDblPoint>{T3dDblPoint(1, 2, 3)}, green);
    ASSERT_TRUE(ObrixDebugDrawProtocol::endFrame("first").isOk());
    ASSERT_TRUE(ObrixDebugDrawProtocol::endFrame("second").isOk());
    EXPECT_EQ(listing(run),
              (std::vector<std::string>{"frame-000001.gltf", "frame-000001.js", "frame-000002.gltf",
                                        "frame-000002.js", "frames.js", "viewer.html"}));
    const std::string list = TempDir::read(qvOS::Filename::join(run, "frames.js"));
    EXPECT_EQ(list, "obrixDebugDrawFrames([\n"
                    "{\"number\":1,\"name\":\"first\",\"file\":\"frame-000001.gltf\","
                    "\"script\":\"frame-000001.js\"},\n"
                    "{\"number\":2,\"name\":\"second\",\"file\":\"frame-000002.gltf\","
                    "\"script\":\"frame-000002.js\"}\n]);\n");
}

TEST(ObrixDebugDrawFileWriter, ObjReadsBackWithTheSameVerticesFarFromTheWorldOrigin) {
    // Points 1e7 from the world origin, a thousandth apart: as absolute floats they would
    // collapse onto each other; relative to the frame's origin they keep their spacing.
    TempDir dir;
    ObrixDebugDrawFrame frame("far");
    std::vector<T3dDblPoint> points;
    for (int i = 0; i < 20; ++i)
        points.emplace_back(1e7 + i * 1e-3, -3e6, 5e6 + i * 2e-3);
    ObrixDebugDrawPen(frame, "f.cpp", 1).points("p", points, green, "row");
    ObrixDebugDrawPen(frame, "f.cpp", 2).polyline("l", points, green, "line");
    const double tri[] = {1e7, -3e6, 5e6, 1e7 + 1, -3e6, 5e6, 1e7, -3e6 + 1, 5e6};
    const std::uint32_t idx[] = {0, 1, 2};
    ObrixDebugDrawPen(frame, "f.cpp", 3).mesh("m", tri, 3, idx, 1, green, "tri");
    ObrixDebugDrawFileWriter writer(dir.path(), {ObrixDebugDrawFileWriter::Format::Obj, false});
    ASSERT_TRUE(writer.writeFrame(frame, 4).isOk());
    EXPECT_EQ(listing(dir.path()),
              (std::vector<std::string>{"frame-000004.mtl", "frame-000004.obj"}));

    std::istringstream obj(TempDir::read(writer.framePath(4)));
    double origin[3] = {0, 0, 0};
    std::vector<double> vertices;
    std::vector<std::string> elements;
    for (std::string line; std::getline(obj, line);) {
        std::istringstream in(line);
        std::string tag;
        in >> tag;
        if (tag == "#" && line.rfind("# origin ", 0) == 0) {
            in >> tag >> origin[0] >> origin[1] >> origin[2];
        } else if (tag == "v") {
            for (int k = 0; k < 3; ++k) {
                double v;
                in >> v;
                vertices.push_back(v + origin[k]);
            }
        } else if (tag == "p" || tag == "l" || tag == "f") {
            elements.push_back(line);
        }
    }
    std::vector<double> expected;
    for (const auto& item : frame.items())
        expected.insert(expected.end(), item.xyz.begin(), item.xyz.end());
    ASSERT_EQ(vertices.size(), expected.size());
    for (std::size_t i = 0; i < vertices.size(); ++i)
        EXPECT_NEAR(vertices[i], expected[i], 1e-4) << "coordinate " << i;
    ASSERT_EQ(elements.size(), 3u);
    EXPECT_EQ(elements[2], "f 41 42 43"); // indices run on across items, from 1
    EXPECT_EQ(elements[1].substr(0, 7), "l 21 22");
}

TEST(ObrixDebugDrawFileWriter, GlbChunksAreAlignedAndAFileInTheWayIsAnError) {
    TempDir dir;
    ObrixDebugDrawFrame frame;
    ObrixDebugDrawPen(frame, "", 0).label("l", T3dDblPoint(1, 2, 3), "x");
    ObrixDebugDrawFileWriter writer(dir.path(), {ObrixDebugDrawFileWriter::Format::Glb, false});
    ASSERT_TRUE(writer.writeFrame(frame, 1).isOk());
    const std::string glb = TempDir::read(writer.framePath(1));
    ASSERT_GE(glb.size(), 28u);
    std::uint32_t header[5];
    std::memcpy(header, glb.data(), sizeof header);
    EXPECT_EQ(std::string(glb, 0, 4), "glTF");
    EXPECT_EQ(header[2], glb.size());
    EXPECT_EQ(header[3] % 4, 0u);
    EXPECT_EQ(std::string(glb, 16, 4), "JSON");
    EXPECT_EQ(std::string(glb, 20 + header[3] + 4, 4), std::string("BIN\0", 4));

    TempDir::write(dir / "blocked", "a file where the folder should go");
    ObrixDebugDrawFileWriter blocked(dir / "blocked", {});
    const qvUtil::Error e = blocked.writeFrame(frame, 1);
    EXPECT_TRUE(e.isError());
    EXPECT_NE(e.message().find("blocked"), std::string::npos) << e.message();
}

} // namespace
