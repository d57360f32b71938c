// Writes one frame with every kind of item (a mesh with normals, a transformed mesh, points from
// a matrix, a polyline, a sampled curve, labels) far from the world origin, through the file
// writer, and prints what was drawn as JSON for check_debugdraw.py to compare the files with.
// Usage: debugdraw_sample <dir> gltf|gltf-separate|glb
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "Base/qvOS/Filename.h"
#include "ObrixBase/ObrixBase.h"

namespace {

// Far from the origin, as a part placed in a large assembly would be: the writer must keep
// the detail by writing relative to the frame's origin.
constexpr double kOffset[3] = {250000.0, -120000.0, 8000.0};

T3dDblPoint at(double x, double y, double z) {
    return T3dDblPoint(x + kOffset[0], y + kOffset[1], z + kOffset[2]);
}

void drawScene(ObrixDebugDrawFrame& frame) {
    // A 10 x 10 grid of squares on the plane z = 0, two triangles each: fills the view.
    ObrixDebugDrawMesh sheet;
    const int n = 10;
    for (int j = 0; j <= n; ++j)
        for (int i = 0; i <= n; ++i) {
            sheet.positions.push_back(at(i * 0.1, j * 0.1, 0.02 * std::sin(i + j)));
            sheet.normals.push_back(T4dDblVector(0, 0, 1));
        }
    for (std::uint32_t j = 0; j < n; ++j)
        for (std::uint32_t i = 0; i < n; ++i) {
            const std::uint32_t a = j * (n + 1) + i, b = a + 1, c = a + n + 1, d = c + 1;
            sheet.triangles.push_back({a, b, d});
            sheet.triangles.push_back({a, d, c});
        }
    ObrixDebugDrawPen(frame, __FILE__, __LINE__)
        .mesh("surfaces", sheet, ObrixDebugDrawColours::red, "sheet");

    // A small tetrahedron, moved up by a transform, from plain arrays.
    const double tet[] = {0, 0, 0, 0.2, 0, 0, 0, 0.2, 0, 0, 0, 0.2};
    const std::uint32_t faces[] = {0, 2, 1, 0, 1, 3, 0, 3, 2, 1, 2, 3};
    T4dDblMatrix lift;
    lift(3, 0) = kOffset[0] + 0.4;
    lift(3, 1) = kOffset[1] + 0.4;
    lift(3, 2) = kOffset[2] + 0.3;
    ObrixDebugDrawPen(frame, __FILE__, __LINE__)
        .transform(lift)
        .mesh("solids", tet, 4, faces, 4, ObrixDebugDrawColours::yellow, "tetrahedron");

    DoubleGenMat hits(3, 3);
    for (int r = 0; r < 3; ++r) {
        const T3dDblPoint p = at(0.2 + 0.3 * r, 0.5, 0.1);
        hits(r, 0) = p.x;
        hits(r, 1) = p.y;
        hits(r, 2) = p.z;
    }
    ObrixDebugDrawPen(frame, __FILE__, __LINE__)
        .points("points", hits, ObrixDebugDrawColours::green, "hits");
    const T3dDblPoint edge[] = {at(0, 0, 0.05), at(1, 0, 0.05), at(1, 1, 0.05), at(0, 1, 0.05),
                                at(0, 0, 0.05)};
    ObrixDebugDrawPen(frame, __FILE__, __LINE__)
        .polyline("curves", edge, ObrixDebugDrawColours::blue, "boundary");
    ObrixDebugDrawPen(frame, __FILE__, __LINE__)
        .curve(
            "curves",
            [](double t) { return at(0.5 + 0.4 * std::cos(t), 0.5 + 0.4 * std::sin(t), 0.15); },
            0.0, 6.283185307179586, 48, ObrixDebugDrawColours::white, "circle");
    ObrixDebugDrawPen(frame, __FILE__, __LINE__)
        .label("labels", at(0.2, 0.5, 0.1), "first hit \xc3\xa9", ObrixDebugDrawColours::green);
    ObrixDebugDrawPen(frame, __FILE__, __LINE__).label("labels", at(0.8, 0.5, 0.1), "last hit");
}

} // namespace

int main(int argc, char** argv) {
    using Format = ObrixDebugDrawFileWriter::Format;
    const std::string format = argc == 3 ? argv[2] : "";
    if (format != "gltf" && format != "gltf-separate" && format != "glb") {
        std::fprintf(stderr, "usage: debugdraw_sample <dir> gltf|gltf-separate|glb\n");
        return 2;
    }
    ObrixDebugDrawFileWriter::Options options;
    options.format = format == "glb"    ? Format::Glb
                     : format == "gltf" ? Format::Gltf
                                        : Format::GltfSeparate;
    ObrixDebugDrawFileWriter writer(argv[1], options);
    ObrixDebugDrawFrame frame("every kind of item");
    drawScene(frame);
    if (qvUtil::Error e = writer.writeFrame(frame, 1); e.isError()) {
        std::fprintf(stderr, "debugdraw_sample: %s\n", e.message().c_str());
        return 1;
    }
    // What was drawn, in model coordinates: the checker compares the files against it.
    const T3dDblPoint o = frame.origin();
    std::printf("{\"file\": \"%s\", \"viewer\": \"%s\", \"origin\": [",
                qvOS::Filename::base(writer.framePath(1)).c_str(),
                qvOS::Filename::base(writer.viewerPath()).c_str());
    std::printf("%.17g,%.17g,%.17g], \"layers\": [", o.x, o.y, o.z);
    for (std::size_t l = 0; l < frame.layers().size(); ++l)
        std::printf("%s\"%s\"", l ? ", " : "", frame.layers()[l].c_str());
    std::printf("], \"items\": [");
    const char* kinds[] = {"mesh", "points", "polyline", "label"};
    for (std::size_t i = 0; i < frame.items().size(); ++i) {
        const auto& item = frame.items()[i];
        std::printf("%s{\"kind\": \"%s\", \"vertices\": %zu, \"indices\": %zu, \"normals\": %s, "
                    "\"xyz\": [",
                    i ? ", " : "", kinds[static_cast<int>(item.kind)], item.vertexCount(),
                    item.triangles.size(), item.normals.empty() ? "false" : "true");
        for (std::size_t k = 0; k < item.xyz.size(); ++k)
            std::printf("%s%.17g", k ? "," : "", item.xyz[k]);
        std::printf("]}");
    }
    std::printf("]}\n");
    return 0;
}
