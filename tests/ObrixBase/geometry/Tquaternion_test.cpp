#include "ObrixBase/geometry/Tquaternion.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

#include "ObrixBase/geometry/T4dDblVector.h"
#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

namespace {

using obrix::test::GeometryRandom;

// The identities every quaternion class must keep, whatever its length rules.
template <class Q>
class QuaternionIdentities : public ::testing::Test {
protected:
    static Q random(GeometryRandom& rnd) {
        if constexpr (std::is_same_v<Q, TunitQuaternion>)
            return TunitQuaternion(rnd.uniform(-7, 7), rnd.unitVector());
        else
            return Tquaternion(rnd.uniform(-3, 3), rnd.uniform(-3, 3), rnd.uniform(-3, 3),
                               rnd.uniform(-3, 3));
    }
};
using QuaternionTypes = ::testing::Types<Tquaternion, TunitQuaternion>;
TYPED_TEST_SUITE(QuaternionIdentities, QuaternionTypes);

TYPED_TEST(QuaternionIdentities, ProductWithTheInverseIsOneAndProductsAssociate) {
    GeometryRandom rnd;
    for (int n = 0; n < 200; ++n) {
        const TypeParam a = this->random(rnd), b = this->random(rnd), c = this->random(rnd);
        const Tquaternion one = Tquaternion(a * a.inverse());
        EXPECT_TRUE(one.equivalent(Tquaternion(1.0), 1e-14)) << n;
        EXPECT_TRUE(Tquaternion((a * b) * c).equivalent(Tquaternion(a * (b * c)), 1e-12));
        // The inverse of a product reverses the order.
        EXPECT_TRUE(Tquaternion((a * b).inverse())
                        .equivalent(Tquaternion(b.inverse() * a.inverse()), 1e-12));
    }
}

} // namespace

TEST(Tquaternion, ExpAndLogAreInverseAcrossTheWholeRange) {
    GeometryRandom rnd;
    for (int n = 0; n < 300; ++n) {
        const Tquaternion q(rnd.uniform(-5, 5), rnd.uniform(-5, 5), rnd.uniform(-5, 5),
                            rnd.uniform(-5, 5));
        EXPECT_TRUE(q.log().exp().equivalent(q, 1e-12 * q.length())) << n;
        // The principal log keeps its vector part within [0, pi].
        const Tquaternion l = q.log();
        EXPECT_LE(std::sqrt(l.x * l.x + l.y * l.y + l.z * l.z), std::numbers::pi + 1e-15);
    }
    // Tiny vector parts, where sin(v)/v would lose its digits, and the real axis.
    for (const Tquaternion q : {Tquaternion(2, 1e-9, 0, 0), Tquaternion(0.5, 0, -3e-6, 1e-7),
                                Tquaternion(3.0), Tquaternion(-2.0)})
        EXPECT_TRUE(q.log().exp().equivalent(q, 1e-15)) << q.w;
    EXPECT_EQ(Tquaternion(-1.0).log(), Tquaternion(0, std::numbers::pi, 0, 0));
    // A pure quaternion (0, theta axis) exponentiates to the rotation by 2 theta.
    const T4dDblVector axis(0, 0.6, 0.8);
    EXPECT_TRUE(Tquaternion(0, 0, 0.6 * 0.7, 0.8 * 0.7)
                    .exp()
                    .equivalent(Tquaternion(TunitQuaternion(1.4, axis)), 1e-15));
}

TEST(Tquaternion, ConvertsToAndFromRotations) {
    const TunitQuaternion r(1.1, T4dDblVector(1, 2, 3));
    const Tquaternion q = r;
    EXPECT_EQ(q, Tquaternion(r.w, r.x, r.y, r.z));
    // Any positive multiple of a rotation is that rotation; a negative one is too.
    EXPECT_TRUE((q * 7.5).unit().equivalent(r, 1e-15));
    EXPECT_TRUE((q * -0.1).unit().equivalent(r, 1e-15));
    EXPECT_EQ(Tquaternion().unit(), TunitQuaternion());
    // Norm is the square of the length, as for vectors.
    EXPECT_EQ(Tquaternion(1, 2, 2, 4).norm(), 25.0);
    EXPECT_EQ(Tquaternion(1, 2, 2, 4).length(), 5.0);
    // The zero quaternion has no inverse: non-finite, and nothing reported.
    EXPECT_FALSE(std::isfinite(Tquaternion().inverse().w));
    // Conjugation is not negation; equivalence does not identify q with -q here.
    EXPECT_FALSE(q.equivalent(-q, 0.1));
    EXPECT_TRUE(r.equivalent(TunitQuaternion(-r.w, -r.x, -r.y, -r.z), 0.0));
}

TEST(Tquaternion, VectorAndConstantProductsRoundAlike) {
    // The product runs in two-lane vector arithmetic at run time and in scalar code when
    // evaluated as a constant; both must give the same bits, signed zeros included.
    constexpr Tquaternion a(0.1, -0.7, 0.3, 1e-3), b(-2.5, 0.0, 1.1, -0.3);
    constexpr Tquaternion atCompileTime = a * b;
    volatile double w = a.w; // keeps the run-time product from being folded
    const Tquaternion atRunTime = Tquaternion(w, a.x, a.y, a.z) * b;
    EXPECT_EQ(std::memcmp(&atCompileTime, &atRunTime, sizeof atRunTime), 0);
    const Tquaternion zeros = Tquaternion(-0.0, 0.0, 0.0, 0.0) * Tquaternion(1.0);
    EXPECT_TRUE(std::signbit(zeros.w) && !std::signbit(zeros.x));
}
