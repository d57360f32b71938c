#include "ObrixBase/geometry/T3dDblPoint.h"

#include <gtest/gtest.h>

#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

TEST(T3dDblPoint, AffineProductTranslatesAndNeverReadsColumn3) {
    T4dDblMatrix m = T4dDblVector(10, 20, 30);
    EXPECT_EQ(T3dDblPoint(1, 2, 3) * m, T3dDblPoint(11, 22, 33));
    m(0, 3) = 5; // a projective column is ignored, nothing is divided
    m(3, 3) = 2;
    EXPECT_EQ(T3dDblPoint(1, 2, 3) * m, T3dDblPoint(11, 22, 33));

    obrix::test::GeometryRandom rnd;
    const T4dDblMatrix r = rnd.matrix();
    const T3dDblPoint p = T3dDblPoint(rnd.vector());
    T3dDblPoint expect(r(3, 0), r(3, 1), r(3, 2));
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i)
            (j == 0 ? expect.x : j == 1 ? expect.y : expect.z) += T4dDblVector(p)[i] * r(i, j);
    EXPECT_TRUE((p * r).equivalent(expect, 1e-12));
    T3dDblPoint q = p;
    EXPECT_EQ(q.postmultBy(r), p * r);
    EXPECT_EQ(q.setToProduct(q, r), p * r * r);
}

TEST(T3dDblPoint, DifferencesAreVectorsAndDistanceIsSquared) {
    const T3dDblPoint a(1, 2, 3), b(4, 6, 3);
    EXPECT_EQ(b - a, T4dDblVector(3, 4, 0));
    EXPECT_EQ(a + (b - a), b);
    EXPECT_EQ(b - T4dDblVector(3, 4, 0), a);
    EXPECT_EQ(a.distance2To(b), 25.0);
    EXPECT_EQ(T3dDblPoint::origin, T3dDblPoint());
}
