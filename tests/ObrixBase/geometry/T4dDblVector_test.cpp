#include "ObrixBase/geometry/T4dDblVector.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/TunitQuaternion.h"
#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

TEST(T4dDblVector, NormIsTheSquaredLengthAndTinyVectorsStayUnnormalised) {
    T4dDblVector v(3, 4, 0);
    EXPECT_EQ(v.norm(), 25.0);
    EXPECT_EQ(v.length(), 5.0);
    EXPECT_TRUE(v.normalizeIt().equivalent(T4dDblVector(0.6, 0.8, 0), 1e-15)); // times 1/len
    EXPECT_EQ(T4dDblVector(1e-10, 0, 0).normalizeIt(), T4dDblVector(1e-10, 0, 0));
    EXPECT_EQ(T4dDblVector(2, 0, 0).normalizeIt(1e-9), T4dDblVector(2, 0, 0));
}

TEST(T4dDblVector, VectorToleranceIsStrictWhilePointToleranceIsInclusive) {
    const T4dDblVector a(1, 0, 0), b(1.5, 0, 0);
    EXPECT_FALSE(a.equivalent(b, 0.5));
    EXPECT_TRUE(a.equivalent(b, 0.5000001));
    EXPECT_TRUE(T3dDblPoint(1, 0, 0).equivalent(T3dDblPoint(1.5, 0, 0), 0.5));
    EXPECT_TRUE(T4dDblPoint(1, 0, 0, 1).equivalent(T4dDblPoint(1, 0, 0, 1.5), 0.5));
    EXPECT_FALSE(
        T4dDblPoint(1, 0, 0, 1).equivalent(T4dDblPoint(2, 0, 0, 2), 0.5)); // raw, not cartesian
    // The 3d point compares squares, the 4d point the distance: a negative tolerance differs.
    EXPECT_TRUE(T3dDblPoint(1, 2, 3).equivalent(T3dDblPoint(1, 2, 3.5), -0.5));
    EXPECT_FALSE(T4dDblPoint(1, 2, 3, 1).equivalent(T4dDblPoint(1, 2, 3, 1), -0.5));
    EXPECT_FALSE(T4dDblVector(0.5, 0, 0).unitLength(0.5));
    EXPECT_TRUE(T4dDblVector(0.6, 0, 0).unitLength(0.5));
    EXPECT_TRUE(T4dDblVector(1, 0, 0).parallel(T4dDblVector(-2, 0, 0), 1e-12));
    EXPECT_FALSE(T4dDblVector(1, 0, 0).parallel(T4dDblVector(1, 0.01, 0), 1e-3));
}

TEST(T4dDblVector, DominantAxisTiesGoToTheLaterAxis) {
    const struct {
        T4dDblVector v;
        Taxis axis;
    } cases[] = {{{-3, 1, 2}, XAxis}, {{1, 1, 0}, YAxis},  {{1, 0, 1}, ZAxis}, {{2, 1, 2}, ZAxis},
                 {{1, 1, 1}, ZAxis},  {{0, -2, 1}, YAxis}, {{0, 0, 0}, ZAxis}, {{2, 1, 3}, ZAxis}};
    for (const auto& c : cases)
        EXPECT_EQ(c.v.dominantAxis(), c.axis) << c.v.x << " " << c.v.y << " " << c.v.z;
}

TEST(T4dDblVector, IndicesPastTheEndAddressTheLastComponent) {
    T4dDblVector v(1, 2, 3);
    T4dDblPoint p;
    EXPECT_TRUE(&v[7] == &v.z && &v(-1) == &v.z && &p(7) == &p.w && &p(2) == &p.z);
}

TEST(T4dDblVector, MatrixProductsReadOnlyThe3x3BlockAndAreSafeInPlace) {
    const T4dDblMatrix shift = T4dDblVector(5, 6, 7);
    EXPECT_EQ(T4dDblVector(1, 2, 3) * shift, T4dDblVector(1, 2, 3));
    EXPECT_EQ(T4dDblVector() = shift, T4dDblVector(5, 6, 7));

    obrix::test::GeometryRandom rnd;
    const T4dDblMatrix m = rnd.matrix();
    T4dDblVector v = rnd.vector(), expectRow, expectCol;
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i) {
            expectRow[j] += v[i] * m(i, j);
            expectCol[j] += m(j, i) * v[i];
        }
    EXPECT_TRUE((v * m).equivalent(expectRow, 1e-12));
    EXPECT_TRUE((m * v).equivalent(expectCol, 1e-12));
    EXPECT_EQ(T4dDblVector(v).postmultBy(m), v * m);
    EXPECT_EQ(T4dDblVector(v).premultBy(m), m * v);
}

TEST(T4dDblVector, AxisRotationsAreRightHandedAndExactAtRightAngles) {
    EXPECT_EQ(T4dDblVector(1, 0, 0).rotateItZ(90), T4dDblVector(0, 1, 0));
    EXPECT_EQ(T4dDblVector(0, 1, 0).rotateItX(90), T4dDblVector(0, 0, 1));
    EXPECT_EQ(T4dDblVector(0, 0, 1).rotateItY(90), T4dDblVector(1, 0, 0));
    EXPECT_EQ(T4dDblVector(1, 2, 3) ^ T4dDblVector(4, 5, 6), T4dDblVector(-3, 6, -3));

    // Each axis rotation agrees with the matrix rotation about that axis.
    const Tangle a(0.7, std::sin(std::acos(0.7)));
    const T4dDblVector v(1, -2, 3), axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    const T4dDblVector turned[] = {T4dDblVector(v).rotateItX(a), T4dDblVector(v).rotateItY(a),
                                   T4dDblVector(v).rotateItZ(a)};
    for (int i = 0; i < 3; ++i) {
        T4dDblMatrix r;
        r.setToAxisRotate(axes[i], a.radians());
        EXPECT_TRUE(turned[i].equivalent(v * r, 1e-12)) << i;
    }
}

TEST(T4dDblVector, RotateToTurnsThisDirectionOntoTheTarget) {
    obrix::test::GeometryRandom rnd;
    for (int n = 0; n < 200; ++n) {
        const T4dDblVector from = rnd.vector(), to = rnd.vector();
        const T4dDblVector turned = from * from.rotateTo(to).matrix();
        EXPECT_TRUE(turned.getNormal().equivalent(to.getNormal(), 1e-9));
        EXPECT_NEAR(turned.length(), from.length(), 1e-9);
    }
    double angle;
    T4dDblVector axis;
    T4dDblVector(1, 0, 0).rotateTo(T4dDblVector(-1, 0, 0)).getPivotAxis(angle, axis);
    EXPECT_DOUBLE_EQ(angle, std::numbers::pi);
    EXPECT_TRUE(axis.equivalent(T4dDblVector(0, 1, 0), 1e-15));
    for (const T4dDblVector v : {T4dDblVector(0, 0, 2), T4dDblVector(1, -1, 3)})
        EXPECT_TRUE((v * v.rotateTo(-v).matrix()).equivalent(-v, 1e-12));
    // Opposition is judged by the angle only: (1, 1, 0) against its negation has the cosine
    // -1 + 2^-52, an angle 2e-8 short of pi, and a vanishing cross product, so no turn at all.
    EXPECT_EQ(T4dDblVector(1, 1, 0).rotateTo(T4dDblVector(-1, -1, 0)), TunitQuaternion());

    EXPECT_EQ(T4dDblVector().rotateTo(T4dDblVector(1, 0, 0)), TunitQuaternion());
    // The pivot-axis guard works on the squared cross product, so short perpendicular
    // vectors give no rotation at all.
    EXPECT_EQ(T4dDblVector(1e-3, 0, 0).rotateTo(T4dDblVector(0, 1e-3, 0)), TunitQuaternion());
}
