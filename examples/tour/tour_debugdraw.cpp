// Debug drawing: a saddle surface, the curve where it meets a plane and a few labelled points,
// recorded in two frames and written as glTF files with a viewer page in a temporary folder.
// In an application the same calls stay in the code and cost nothing until drawing is
// switched on (OBRIX_DEBUG_DRAW=<dir> in the environment, or ObrixDebugDrawProtocol::enable).
#include <cmath>
#include <cstdio>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemInfo.h"
#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

namespace {

// z = (x^2 - y^2) / 2 over [-1, 1]^2, as n x n squares.
ObrixDebugDrawMesh saddle(int n) {
    ObrixDebugDrawMesh mesh;
    for (int j = 0; j <= n; ++j)
        for (int i = 0; i <= n; ++i) {
            const double x = -1 + 2.0 * i / n, y = -1 + 2.0 * j / n;
            mesh.positions.emplace_back(x, y, 0.5 * (x * x - y * y));
            mesh.normals.emplace_back(-x, y, 1.0); // the gradient's normal; need not be unit
        }
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const auto a = static_cast<std::uint32_t>(j * (n + 1) + i), b = a + 1,
                       c = a + static_cast<std::uint32_t>(n) + 1, d = c + 1;
            mesh.triangles.push_back({a, b, d});
            mesh.triangles.push_back({a, d, c});
        }
    return mesh;
}

} // namespace

void tourDebugDraw() {
    tourHeading("Debug drawing");
    const qvString::CString dir = qvOS::Filename::join(qvOS::tempDirectory(), "obrix-tour-drawing");
    if (qvUtil::Error e = ObrixDebugDrawProtocol::enable(dir); e.isError()) {
        std::printf("  cannot switch drawing on: %s\n", e.message().c_str());
        return;
    }
    const ObrixDebugDrawMesh surface = saddle(16);
    OBRIX_DEBUG_DRAW.mesh("surfaces", surface, ObrixDebugDrawColours::grey, "saddle");
    ObrixDebugDrawProtocol::endFrame("the surface");

    // The saddle meets the plane z = 0.2 where x^2 - y^2 = 0.4: the hyperbola branch
    // (a cosh t, a sinh t) with a = sqrt(0.4), sampled as a polyline.
    const double a = std::sqrt(0.4);
    OBRIX_DEBUG_DRAW.mesh("surfaces", surface, ObrixDebugDrawColours::grey, "saddle");
    OBRIX_DEBUG_DRAW.curve(
        "curves", [a](double t) { return T3dDblPoint(a * std::cosh(t), a * std::sinh(t), 0.2); },
        -0.9, 0.9, 64, ObrixDebugDrawColours::yellow, "section at z = 0.2");
    const T3dDblPoint ends[] = {T3dDblPoint(a * std::cosh(-0.9), a * std::sinh(-0.9), 0.2),
                                T3dDblPoint(a, 0, 0.2),
                                T3dDblPoint(a * std::cosh(0.9), a * std::sinh(0.9), 0.2)};
    OBRIX_DEBUG_DRAW.points("points", ends, ObrixDebugDrawColours::red, "section points");
    OBRIX_DEBUG_DRAW.label("points", ends[0], "start", ObrixDebugDrawColours::red);
    OBRIX_DEBUG_DRAW.label("points", ends[1], "vertex", ObrixDebugDrawColours::red);
    OBRIX_DEBUG_DRAW.label("points", ends[2], "end", ObrixDebugDrawColours::red);
    if (qvUtil::Error e = ObrixDebugDrawProtocol::endFrame("surface meets z = 0.2"); e.isError())
        std::printf("  drawing failed: %s\n", e.message().c_str());

    const qvString::CString run = ObrixDebugDrawProtocol::directory();
    std::printf("  2 frames drawn; open %s in a browser\n",
                qvOS::Filename::join(run, "viewer.html").c_str());
    ObrixDebugDrawProtocol::disable();
}
