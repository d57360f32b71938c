#include "ObrixBase/geometry/T4dDblPoint.h"

#include <cmath>

#include <gtest/gtest.h>

#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

TEST(T4dDblPoint, WeightConversionsSkipUnitWeightAndDivideWithoutGuard) {
    const T4dDblPoint p(2, 4, 6, 2);
    EXPECT_EQ(p.cartesian(), T4dDblPoint(1, 2, 3, 1));
    EXPECT_EQ(p.rational(), T4dDblPoint(1, 2, 3, 2));
    EXPECT_EQ(p.homogenous(), T4dDblPoint(4, 8, 12, 2));
    const T4dDblPoint unit(0.1, -0.0, 1e300, 1.0);
    for (const T4dDblPoint& q : {unit.cartesian(), unit.rational(), unit.homogenous()})
        EXPECT_TRUE(q == unit && std::signbit(q.y));
    const T4dDblPoint atInfinity = T4dDblPoint(1, 2, 3, 0).cartesian();
    EXPECT_TRUE(std::isinf(atInfinity.x) && std::isinf(atInfinity.y) && std::isinf(atInfinity.z));
    EXPECT_EQ(atInfinity.w, 1.0);
    EXPECT_TRUE(std::isnan(T4dDblPoint(0, 0, 0, 0).rational().x));

    // Sums and differences work on the cartesian position; a conversion to a vector does not.
    const T4dDblPoint b(4, 5, 3, 1);
    EXPECT_EQ(b - p, T4dDblVector(3, 3, 0));
    EXPECT_EQ(p + T4dDblVector(1, 1, 1), T4dDblPoint(2, 3, 4, 1));
    EXPECT_EQ(p.distanceTo(b), std::sqrt(18.0));
    EXPECT_EQ(T4dDblVector(p), T4dDblVector(2, 4, 6));
}

TEST(T4dDblPoint, RowAndColumnProductsUseTheWholeMatrix) {
    obrix::test::GeometryRandom rnd;
    const T4dDblMatrix m = rnd.matrix();
    const T4dDblPoint p(1.5, -2, 0.25, 3);
    T4dDblPoint row(0, 0, 0, 0);
    for (short j = 0; j < 4; ++j)
        for (short i = 0; i < 4; ++i)
            row(j) += p(i) * m(i, j);
    EXPECT_TRUE((p * m).equivalent(row, 1e-12));
    EXPECT_EQ(m.transpose() * p, p * m);
    T4dDblPoint q = p;
    EXPECT_EQ(q.premultBy(m).postmultBy(m), m * p * m);
}
