#include "ObrixBase/geometry/Tangle.h"

#include <cmath>

#include <gtest/gtest.h>

namespace {
constexpr double kPi = 3.141592653589793;
}

TEST(Tangle, IntegerMultiplesOf15TakeTheTableWithItsDeliberateSines) {
    for (long d = 0; d < 360; d += 15) {
        Tangle a(d);
        EXPECT_EQ(a.validForms(), Tangle::DegreesValid | Tangle::CosSinValid) << d;
        EXPECT_EQ(a.degrees(), static_cast<double>(d));
        const double r = d * kPi / 180.0;
        EXPECT_NEAR(a.cos(), std::cos(r), 1e-15) << d;
        if (d % 60 != 0 || d % 180 == 0) {
            EXPECT_NEAR(a.sin(), std::sin(r), 1e-15) << d;
        }
    }
    // The sine column keeps +-0.5 at 60, 120, 240 and 300 degrees.
    for (int d : {60, 120, 240, 300})
        EXPECT_EQ(Tangle(d).sin(), d < 180 ? 0.5 : -0.5) << d;
    EXPECT_EQ(Tangle(60.0).sin(), 0.8660254037844386);
    // Right angles are exact, unlike the library's cos(pi/2).
    EXPECT_TRUE(Tangle(90).cos() == 0.0 && Tangle(90).sin() == 1.0 && Tangle(270L).sin() == -1.0);
    EXPECT_EQ(Tangle(45).cos(), 0.7071067811865475);
    EXPECT_EQ(Tangle(30).cos(), 0.8660254037844387); // one unit above the library's root
    EXPECT_EQ(Tangle(90).radians(), 90.0 * kPi / 180.0);
}

TEST(Tangle, IntegerDegreesReduceByTheCRemainderKeepingTheSign) {
    const struct {
        long in;
        double out;
    } cases[] = {{-30, 330}, {-20, -20}, {370, 10}, {-375, 345}, {725, 5}, {-360, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(Tangle(c.in).degrees(), c.out) << c.in;
        EXPECT_EQ(Tangle().degrees(c.in).degrees(), c.out) << c.in;
    }
    EXPECT_EQ(Tangle(720.0).degrees(), 720.0);
    EXPECT_EQ(Tangle(-20).validForms(), Tangle::DegreesValid);
}

TEST(Tangle, LazyFormsConvertInTheStatedOrder) {
    EXPECT_EQ(Tangle().validForms(), 7);

    Tangle half(-1.0, 0.0);
    EXPECT_EQ(half.degrees(), 180.0);
    EXPECT_EQ(half.radians(), kPi);
    EXPECT_EQ(Tangle(0.0, 0.0).degrees(), 0.0);
    EXPECT_EQ(Tangle(0.0, -1.0).radians(), -kPi / 2); // atan2's range, not [0, 2pi)

    Tangle r;
    r.radians(1.0);
    EXPECT_EQ(r.validForms(), Tangle::RadiansValid);
    EXPECT_EQ(r.degrees(), 1.0 * 180.0 / kPi);
    EXPECT_EQ(r.sin(), std::sin(1.0));
    EXPECT_EQ(r.validForms(), 7);

    Tangle d(30.5);
    EXPECT_EQ(d.cos(), std::cos(30.5 * kPi / 180.0));
    EXPECT_EQ(d.validForms(), 7);
}

TEST(Tangle, ClampSnapsOnlyTheCosineAndSine) {
    Tangle right(90.0);
    EXPECT_NEAR(right.cos(), 6.1e-17, 1e-18);
    right.clamp();
    EXPECT_EQ(right.cos(), 0.0);
    EXPECT_EQ(right.sin(), 1.0);

    Tangle nearly(89.9995);
    nearly.clamp();
    EXPECT_EQ(nearly.sin(), 1.0);
    EXPECT_EQ(nearly.degrees(), 89.9995);
    EXPECT_EQ(nearly.cos(), 0.0); // 8.7e-6 lies inside the band

    EXPECT_EQ(Tangle(180.0004).clamp().cos(), -1.0);
    EXPECT_EQ(Tangle(179.0).clamp().cos(), Tangle(179.0).cos()); // outside the band
}
