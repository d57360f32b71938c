#include "ObrixBase/geometry/TpostXformMatrix.h"

#include <gtest/gtest.h>

#include "ObrixBase/geometry/T3dDblPoint.h"
#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

namespace {

T4dDblPoint image(const T4dDblPoint& p, const T4dDblMatrix& m) {
    return (p * m).cartesian();
}

} // namespace

TEST(TpostXformMatrix, MatrixScalesThenRotatesThenTranslates) {
    TpostXformMatrix x;
    EXPECT_EQ(x.inverse(), T4dDblMatrix::identity);
    x = Tscale(2, 2, 2);
    x = TunitQuaternion(std::numbers::pi / 2, T4dDblVector(0, 0, 1));
    x = T4dDblVector(10, 0, 0);
    EXPECT_TRUE(
        image(T4dDblPoint(1, 0, 0, 1), x.matrix()).equivalent(T4dDblPoint(10, 2, 0, 1), 1e-14));
    EXPECT_TRUE((x.inverse() * x.matrix()).equivalent(T4dDblMatrix::identity, 1e-14));
    // A change after the matrix was read is seen by the next read.
    x += T4dDblVector(0, 0, 1);
    EXPECT_EQ(x.translation(), T4dDblVector(10, 0, 1));
    EXPECT_TRUE(
        image(T4dDblPoint(1, 0, 0, 1), x.matrix()).equivalent(T4dDblPoint(10, 2, 1, 1), 1e-14));
}

TEST(TpostXformMatrix, RotatingAndScalingKeepTheirPivotsInPlace) {
    obrix::test::GeometryRandom rnd;
    for (int n = 0; n < 50; ++n) {
        TpostXformMatrix x;
        x = Tscale(rnd.uniform(0.5, 2), rnd.uniform(0.5, 2), rnd.uniform(0.5, 2));
        x = TunitQuaternion(rnd.uniform(-3, 3), rnd.unitVector());
        x = rnd.vector();
        const T4dDblPoint pivot(rnd.uniform(-5, 5), rnd.uniform(-5, 5), rnd.uniform(-5, 5), 1);
        const T4dDblPoint object(rnd.uniform(-5, 5), rnd.uniform(-5, 5), rnd.uniform(-5, 5), 1);

        // Turning about the pivot: every image swings about the pivot by q.
        const TunitQuaternion q(rnd.uniform(-3, 3), rnd.unitVector());
        T4dDblMatrix before = x.matrix();
        x.setRotatePivotPoint(pivot);
        x += q;
        const T4dDblVector swung = (image(object, before) - pivot) * q.matrix();
        EXPECT_TRUE(image(object, x.matrix()).equivalent(pivot + swung, 1e-12)) << n;

        // Scaling about the pivot works along the object's rotated axes.
        const Tscale s(rnd.uniform(0.5, 2), rnd.uniform(0.5, 2), rnd.uniform(0.5, 2));
        const TunitQuaternion r = x.rotation();
        before = x.matrix();
        x.setScalePivotPoint(pivot);
        x += s;
        const T4dDblMatrix alongAxes = r.inverse().matrix() * T4dDblMatrix(s) * r.matrix();
        const T4dDblVector stretched = (image(object, before) - pivot) * alongAxes;
        EXPECT_TRUE(image(object, x.matrix()).equivalent(pivot + stretched, 1e-12)) << n;
    }

    // With nothing else set, a turn about (1, 0, 0) leaves that point where it is.
    TpostXformMatrix y;
    y.setRotatePivotPoint(T4dDblPoint(1, 0, 0, 1));
    const TunitQuaternion q(0.9, T4dDblVector(1, 2, 3));
    y += q;
    EXPECT_TRUE(
        image(T4dDblPoint(1, 0, 0, 1), y.matrix()).equivalent(T4dDblPoint(1, 0, 0, 1), 1e-15));
    EXPECT_TRUE(y.translation().equivalent(
        T4dDblVector(1, 0, 0) - T4dDblVector(1, 0, 0) * q.matrix(), 1e-15));
}
