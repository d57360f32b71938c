#include "ObrixBase/geometry/Tscale.h"

#include <gtest/gtest.h>

TEST(Tscale, ZeroGuardReplacesFactorsNearZeroByAPositiveMinimum) {
    const Tscale s(0, 2, -0.00005);
    EXPECT_EQ(s.x(), 0.0001);
    EXPECT_EQ(s.y(), 2.0);
    EXPECT_EQ(s.z(), 0.0001);
    EXPECT_EQ(Tscale(-3, 1, -0.0001).x(), -3.0);
    EXPECT_EQ(Tscale(-3, 1, -0.0001).z(), -0.0001); // the interval is open
    EXPECT_EQ(Tscale().set(1e-9).y(), 0.0001);
    EXPECT_EQ(Tscale().set(5, 0, 7).y(), 0.0001);

    const Tscale inv = Tscale(0, 1, 4).inverse();
    EXPECT_EQ(inv.x(), 10000.0);
    EXPECT_EQ(inv.z(), 0.25);
    Tscale big(20000, 1, 1);
    EXPECT_EQ(big.invertIt().x(), 0.0001); // 1/20000 is guarded again

    const T4dDblMatrix m = Tscale(2, 0, -1);
    EXPECT_EQ(m, T4dDblMatrix(2, 0, 0, 0, 0, 0.0001, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1));
    EXPECT_EQ(T4dDblMatrix(Tscale::identity), T4dDblMatrix::identity);
}

TEST(Tscale, EquivalenceGuardsTheToleranceToo) {
    const Tscale a(1, 1, 1);
    EXPECT_TRUE(a.equivalent(Tscale(1, 1.00005, 1), 0.0));
    EXPECT_FALSE(a.equivalent(Tscale(1, 1.0002, 1), 0.0));
    EXPECT_TRUE(a.equivalent(Tscale(1.5, 1, 1), 0.5));
    EXPECT_FALSE(a.equivalent(a, -1.0));
    EXPECT_TRUE(a.equivalent(a, -0.00005));

    EXPECT_TRUE(Tscale(2, 2, 2 + 1e-10).proportionalScale());
    EXPECT_FALSE(Tscale(2, 2, 2.001).proportionalScale());
    EXPECT_FALSE(Tscale(-2, 2, 2).proportionalScale());
}
