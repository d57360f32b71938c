#include "ObrixBase/debugdraw/ObrixDebugDrawFrame.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "Base/qvOS/OSError.h"
#include "ObrixBase/math/DoubleGenMat.h"

namespace {

using Kind = ObrixDebugDrawFrame::Kind;
constexpr auto red = ObrixDebugDrawColours::red;

TEST(ObrixDebugDrawFrame, RefusesWhatWouldMakeAnInvalidFileAndKeepsTheFrameUnchanged) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double tri[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const std::uint32_t good[] = {0, 1, 2};
    const std::uint32_t past[] = {0, 1, 3};
    const double zeroNormals[] = {0, 0, 1, 0, 0, 0, 0, 0, 1};
    const double bad[] = {0, 0, 0, nan, 0, 0};
    DoubleGenMat twoColumns(3, 2, 0.0);
    ObrixDebugDrawFrame frame;
    ObrixDebugDrawPen pen(frame, "here.cpp", 7);
    ASSERT_TRUE(pen.mesh("ok", tri, 3, good, 1, red).isOk());

    const qvUtil::Error refused[] = {
        pen.mesh("m", tri, 3, past, 1, red, "index past the end"),
        pen.mesh("m", tri, 3, good, 0, red, "no triangles"),
        pen.mesh("m", tri, 3, good, 1, red, "zero normal", zeroNormals),
        pen.points("p", bad, 2, red, "nan"),
        pen.points("p", nullptr, 5, red, "null"),
        pen.points("p", twoColumns, red, "two columns"),
        pen.polyline("l", tri, 1, red, "one point"),
        pen.curve(
            "c", [](double t) { return T3dDblPoint(t, 0, 0); }, 0, 1, 1, red, "one sample"),
        pen.curve("c", {}, 0, 1, 5, red, "no curve"),
    };
    for (const qvUtil::Error& e : refused) {
        EXPECT_EQ(e.code(), qvOS::OSError::InvalidArgument) << e.message();
        EXPECT_NE(e.message().find("(here.cpp:7)"), std::string::npos) << e.message();
    }
    EXPECT_EQ(refused[0].message(),
              "debug drawing: mesh \"index past the end\" (here.cpp:7) has a triangle index "
              "past its vertices");
    EXPECT_EQ(frame.items().size(), 1u);
    EXPECT_EQ(frame.layers(), std::vector<std::string>{"ok"});

    // A mesh whose normal list does not match its positions is refused as well.
    ObrixDebugDrawMesh mesh;
    mesh.positions = {T3dDblPoint(0, 0, 0), T3dDblPoint(1, 0, 0), T3dDblPoint(0, 1, 0)};
    mesh.triangles = {{0, 1, 2}};
    mesh.normals = {T4dDblVector(0, 0, 1)};
    EXPECT_EQ(pen.mesh("m", mesh, red).code(), qvOS::OSError::InvalidArgument);
    EXPECT_EQ(frame.items().size(), 1u);
}

TEST(ObrixDebugDrawFrame, LayersKeepFirstUseOrderAndItemsRecordTheirSource) {
    ObrixDebugDrawFrame frame("step");
    const T3dDblPoint p[] = {T3dDblPoint(1, 2, 3), T3dDblPoint(4, 5, 6)};
    ObrixDebugDrawPen(frame, "a.cpp", 1).points("b-layer", p, red, "first");
    ObrixDebugDrawPen(frame, "a.cpp", 2).polyline(nullptr, p, red, "second");
    ObrixDebugDrawPen(frame, "a.cpp", 3).label("b-layer", p[1], "here");
    EXPECT_EQ(frame.layers(), (std::vector<std::string>{"b-layer", "default"}));
    ASSERT_EQ(frame.items().size(), 3u);
    EXPECT_EQ(frame.items()[1].layer, 1u);
    EXPECT_EQ(frame.items()[2].layer, 0u);
    EXPECT_EQ(frame.items()[2].line, 3);

    // The origin is the centre of the bounds until one is set; clear forgets both.
    T3dDblPoint o = frame.origin();
    EXPECT_EQ(o, T3dDblPoint(2.5, 3.5, 4.5));
    frame.setOrigin(T3dDblPoint(10, 0, 0));
    EXPECT_EQ(frame.origin(), T3dDblPoint(10, 0, 0));
    frame.clear();
    EXPECT_TRUE(frame.empty());
    EXPECT_EQ(frame.origin(), T3dDblPoint());
    EXPECT_EQ(frame.name(), "step");
}

TEST(ObrixDebugDrawFrame, TransformMovesPointsAndKeepsNormalsPerpendicularUnderScaling) {
    // Scale x by 4 and translate: a surface normal (1, 1, 0) of the plane x + y = c must become
    // the normal of the scaled plane, (1, 4, 0) normalised, not (4, 1, 0).
    T4dDblMatrix m;
    m(0, 0) = 4;
    m(3, 0) = 100;
    m(3, 1) = -50;
    const double xyz[] = {1, 0, 0, 0, 1, 0, 1, 0, 1};
    const double normals[] = {1, 1, 0, 1, 1, 0, 1, 1, 0};
    const std::uint32_t tri[] = {0, 1, 2};
    ObrixDebugDrawFrame frame;
    ASSERT_TRUE(ObrixDebugDrawPen(frame, "", 0)
                    .transform(m)
                    .mesh("s", xyz, 3, tri, 1, red, "", normals)
                    .isOk());
    const auto& item = frame.items()[0];
    EXPECT_EQ(item.xyz[0], 104.0);
    EXPECT_EQ(item.xyz[1], -50.0);
    EXPECT_EQ(item.xyz[3], 100.0);
    EXPECT_EQ(item.xyz[4], -49.0);
    const double len = std::sqrt(17.0);
    EXPECT_NEAR(item.normals[0], 1 / len, 1e-6);
    EXPECT_NEAR(item.normals[1], 4 / len, 1e-6);
    EXPECT_NEAR(item.normals[2], 0, 1e-6);

    // A mirror keeps the normal on the same side of the surface.
    T4dDblMatrix mirror;
    mirror(2, 2) = -1;
    const double flat[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const double up[] = {0, 0, 1, 0, 0, 1, 0, 0, 1};
    ObrixDebugDrawPen(frame, "", 0).transform(mirror).mesh("s", flat, 3, tri, 1, red, "", up);
    EXPECT_EQ(frame.items()[1].normals[2], -1.0f);
}

TEST(ObrixDebugDrawFrame, CurveSamplesSpanBothEndsExactly) {
    ObrixDebugDrawFrame frame;
    const double t0 = 0.1, t1 = 0.7;
    ASSERT_TRUE(ObrixDebugDrawPen(frame, "", 0)
                    .curve(
                        "c", [](double t) { return T3dDblPoint(t, t * t, 0); }, t0, t1, 7, red)
                    .isOk());
    const auto& xyz = frame.items()[0].xyz;
    ASSERT_EQ(xyz.size(), 21u);
    EXPECT_EQ(xyz[0], t0);
    EXPECT_EQ(xyz[18], t1);
    EXPECT_EQ(frame.items()[0].kind, Kind::Polyline);

    // Points from an n x 3 matrix are its rows.
    DoubleGenMat rows(2, 3);
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 3; ++j)
            rows(i, j) = 10 * i + j;
    ObrixDebugDrawPen(frame, "", 0).points("p", rows, red);
    EXPECT_EQ(frame.items()[1].xyz, (std::vector<double>{0, 1, 2, 10, 11, 12}));
}

} // namespace
