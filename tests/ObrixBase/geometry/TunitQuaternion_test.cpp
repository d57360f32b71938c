#include "ObrixBase/geometry/TunitQuaternion.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Tscale.h"
#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

namespace {

TunitQuaternion randomRotation(obrix::test::GeometryRandom& rnd) {
    return TunitQuaternion(rnd.uniform(-7.0, 7.0), rnd.unitVector());
}

} // namespace

TEST(TunitQuaternion, MatrixFormIsTheAxisRotationAndComposesInReverse) {
    EXPECT_EQ(TunitQuaternion().matrix(), T4dDblMatrix::identity);
    EXPECT_EQ(TunitQuaternion(1.0, T4dDblVector(1e-5, 0, 0)), TunitQuaternion());

    obrix::test::GeometryRandom rnd;
    for (int n = 0; n < 100; ++n) {
        const double angle = rnd.uniform(-7.0, 7.0);
        const T4dDblVector axis = rnd.unitVector();
        const TunitQuaternion q(angle, axis * 3.0); // the axis length does not matter
        T4dDblMatrix r;
        r.setToAxisRotate(axis, angle);
        EXPECT_TRUE(q.matrix().equivalent(r, 1e-14));
        EXPECT_NEAR(q.length(), 1.0, 1e-15);

        const TunitQuaternion p = randomRotation(rnd);
        EXPECT_TRUE((q * p).matrix().equivalent(p.matrix() * q.matrix(), 1e-14));
        EXPECT_TRUE((q.matrix() * q.inverse().matrix()).equivalent(T4dDblMatrix::identity, 1e-14));
    }
}

TEST(TunitQuaternion, FromMatrixRecoversTheRotationOfAScaledTransform) {
    obrix::test::GeometryRandom rnd;
    for (int n = 0; n < 200; ++n) {
        const TunitQuaternion q = randomRotation(rnd);
        const TunitQuaternion back(q.matrix());
        EXPECT_TRUE(back.equivalent(q, 1e-12)) << n;
        EXPECT_GE(back.w, 0.0);
        T4dDblMatrix placed = Tscale(rnd.uniform(0.1, 5), rnd.uniform(0.1, 5), 2);
        placed *= q.matrix();
        placed *= T4dDblMatrix(rnd.vector());
        EXPECT_TRUE(TunitQuaternion(placed).equivalent(q, 1e-12)) << n;
    }
    // Half turns have w = 0 and exercise the branches led by x, y and z.
    for (const T4dDblVector axis : {T4dDblVector(1, 0, 0), T4dDblVector(0, 1, 0),
                                    T4dDblVector(0, 0, 1), T4dDblVector(1, 1, 1)}) {
        const TunitQuaternion half(std::numbers::pi, axis);
        EXPECT_TRUE(TunitQuaternion(half.matrix()).equivalent(half, 1e-15));
    }
}

TEST(TunitQuaternion, PivotAxisReadsBack) {
    double angle;
    T4dDblVector axis;
    TunitQuaternion(2.5, T4dDblVector(0, 3, 4)).getPivotAxis(angle, axis);
    EXPECT_NEAR(angle, 2.5, 1e-15);
    EXPECT_TRUE(axis.equivalent(T4dDblVector(0, 0.6, 0.8), 1e-15));
    TunitQuaternion().getPivotAxis(angle, axis);
    EXPECT_TRUE(angle == 0.0 && axis == T4dDblVector(0, 0, 1));
    EXPECT_EQ(TunitQuaternion(2, 0, 0, 0).normalizeIt(), TunitQuaternion());
    EXPECT_EQ(TunitQuaternion(0, 0, 0, 1e-10).normalizeIt(), TunitQuaternion());
}

TEST(TunitQuaternion, SlerpTurnsAtConstantSpeedAlongTheShorterArc) {
    const T4dDblVector z(0, 0, 1);
    const TunitQuaternion a(0.2, z), b(1.4, z);
    EXPECT_EQ(slerp(a, b, 0.0), a);
    EXPECT_TRUE(slerp(a, b, 1.0).equivalent(b, 1e-15));
    for (double t : {0.25, 0.5, 0.9, 1.5})
        EXPECT_TRUE(slerp(a, b, t).equivalent(TunitQuaternion(0.2 + 1.2 * t, z), 1e-14)) << t;

    // -b is the same rotation as b; the interpolation must not take the long way round.
    const TunitQuaternion minusB(-b.w, -b.x, -b.y, -b.z);
    EXPECT_TRUE(slerp(a, minusB, 0.5).equivalent(TunitQuaternion(0.8, z), 1e-14));
    // Nearly equal rotations still interpolate to unit quaternions.
    EXPECT_NEAR(slerp(a, TunitQuaternion(0.2 + 1e-9, z), 0.5).length(), 1.0, 1e-15);
    TunitQuaternion self = a;
    EXPECT_TRUE(self.setToSlerp(self, b, 0.5).equivalent(TunitQuaternion(0.8, z), 1e-14));
}

TEST(TunitQuaternion, LogAndExpRoundTripAndMeasureTheAngleBetweenRotations) {
    obrix::test::GeometryRandom rnd;
    for (int n = 0; n < 200; ++n) {
        const double angle = rnd.uniform(0.0, 2.0 * std::numbers::pi);
        const TunitQuaternion q(angle, rnd.unitVector());
        const T4dDblVector l = q.log();
        EXPECT_LE(l.length(), std::numbers::pi / 2 + 1e-15);
        EXPECT_TRUE(TunitQuaternion().setToExp(l).equivalent(q, 1e-14)) << n;
        // q and -q have one logarithm.
        EXPECT_TRUE(TunitQuaternion(-q.w, -q.x, -q.y, -q.z).log().equivalent(l, 1e-15));
        const TunitQuaternion p(rnd.uniform(-3, 3), rnd.unitVector());
        EXPECT_NEAR(p.angleTo(p * q), std::min(angle, 2 * std::numbers::pi - angle), 1e-12);
    }
    EXPECT_EQ(TunitQuaternion().log(), T4dDblVector());
    EXPECT_EQ(TunitQuaternion().setToExp(T4dDblVector()), TunitQuaternion());
    // Nearly equal rotations: atan2 keeps the small angle exact.
    const T4dDblVector z(0, 0, 1);
    EXPECT_NEAR(TunitQuaternion(0.3, z).angleTo(TunitQuaternion(0.3 + 1e-9, z)), 1e-9, 1e-16);
}
