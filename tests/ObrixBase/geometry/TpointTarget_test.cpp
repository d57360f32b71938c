#include "ObrixBase/geometry/TpointTarget.h"

#include <numbers>

#include <gtest/gtest.h>

#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

TEST(TpointTarget, MovingOneEndKeepsTheOther) {
    TpointTarget cam(T3dDblPoint(0, 0, 10), T3dDblPoint(0, 0, 0));
    EXPECT_EQ(cam.distance(), 10.0);
    EXPECT_EQ(cam.direction(), T4dDblVector(0, 0, -1));
    cam.setDistanceKeepingTarget(4);
    EXPECT_EQ(cam.position(), T3dDblPoint(0, 0, 4));
    EXPECT_EQ(cam.target(), T3dDblPoint(0, 0, 0));
    cam.setDistanceKeepingPosition(1);
    EXPECT_EQ(cam.target(), T3dDblPoint(0, 0, 3));
    cam.setDirectionKeepingPosition(T4dDblVector(5, 0, 0));
    EXPECT_TRUE(cam.target().equivalent(T3dDblPoint(1, 0, 4), 1e-15));
    // Coincident ends have no direction and stay where they are.
    TpointTarget same(T3dDblPoint(1, 1, 1), T3dDblPoint(1, 1, 1));
    EXPECT_EQ(same.direction(), T4dDblVector());
    same.setDistanceKeepingTarget(5).setDistanceKeepingPosition(5);
    EXPECT_EQ(same.position(), same.target());
}

TEST(TpointTarget, ViewFrameLooksDownMinusZAndTwistsAboutIt) {
    obrix::test::GeometryRandom rnd;
    for (int n = 0; n < 100; ++n) {
        const TpointTarget cam(T3dDblPoint(rnd.vector()), T3dDblPoint(rnd.vector()),
                               rnd.uniform(-3, 3));
        const TxformMatrix f = cam.viewFrame();
        EXPECT_TRUE(
            f.transformPoint(T3dDblPoint(0, 0, -cam.distance())).equivalent(cam.target(), 1e-12))
            << n;
        EXPECT_NEAR(f.matrix().det3x3(), 1.0, 1e-12); // right-handed, unscaled
        // The twist turns the frame about the line of sight and nothing else.
        const TxformMatrix plain = TpointTarget(cam).setTwist(0).viewFrame();
        EXPECT_TRUE((TxformMatrix().rotateZ(cam.twist()) * plain).equivalent(f, 1e-12));
    }
    // Untwisted, local y is world up as far as the line of sight allows; straight down, the
    // frame still exists.
    const TxformMatrix level = TpointTarget(T3dDblPoint(0, -5, 0), T3dDblPoint()).viewFrame();
    EXPECT_TRUE((T4dDblVector(0, 1, 0) * level.matrix()).equivalent(T4dDblVector(0, 0, 1), 1e-15));
    const TxformMatrix down = TpointTarget(T3dDblPoint(0, 0, 5), T3dDblPoint()).viewFrame();
    EXPECT_NEAR(down.matrix().det3x3(), 1.0, 1e-15);
}
