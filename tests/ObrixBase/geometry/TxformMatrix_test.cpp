#include "ObrixBase/geometry/TxformMatrix.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "ObrixBase/geometry/TgenXformMatrix.h"
#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

namespace {

using obrix::test::GeometryRandom;
constexpr double kPi = std::numbers::pi;

T3dDblPoint apply(const TxformMatrix& t, const T3dDblPoint& p) {
    return t.transformPoint(p);
}
T3dDblPoint apply(const TgenXformMatrix& t, const T3dDblPoint& p) {
    return t.transformPoint(p);
}

// What both transform classes share, run over each.
template <class X>
class TransformOps : public ::testing::Test {};
using TransformTypes = ::testing::Types<TxformMatrix, TgenXformMatrix>;
TYPED_TEST_SUITE(TransformOps, TransformTypes);

TYPED_TEST(TransformOps, StepsApplyInTheOrderTheyAreWritten) {
    // Move, then turn a quarter about z: (1, 0, 0) goes to (2, 0, 0), then to (0, 2, 0).
    TypeParam t;
    t.translateIt(T4dDblVector(1, 0, 0)).rotateItZ(kPi / 2);
    EXPECT_TRUE(apply(t, T3dDblPoint(1, 0, 0)).equivalent(T3dDblPoint(0, 2, 0), 1e-15));
    // Each axis turns counter-clockwise looking down it, as T4dDblMatrix::setToAxisRotate.
    GeometryRandom rnd;
    const double a = rnd.uniform(-4, 4);
    const T4dDblVector axes[3] = {T4dDblVector(1, 0, 0), T4dDblVector(0, 1, 0),
                                  T4dDblVector(0, 0, 1)};
    const TypeParam byAxis[3] = {TypeParam().rotateX(a), TypeParam().rotateY(a),
                                 TypeParam().rotateZ(a)};
    for (int i = 0; i < 3; ++i) {
        T4dDblMatrix r;
        r.setToAxisRotate(axes[i], a);
        EXPECT_TRUE(byAxis[i].matrix().equivalent(r, 1e-15)) << i;
        // Any axis length works, and the copy form leaves the original alone.
        EXPECT_TRUE(TypeParam().rotate(axes[i] * 5.0, a).equivalent(byAxis[i], 1e-15));
    }
    EXPECT_EQ(TypeParam().rotate(T4dDblVector(), 1.0), TypeParam());
    // Composition: a then b.
    const TypeParam s = TypeParam(Tscale(2, 3, 4)), m = TypeParam(T4dDblVector(1, 1, 1));
    EXPECT_TRUE(apply(s * m, T3dDblPoint(1, 1, 1)).equivalent(T3dDblPoint(3, 4, 5), 0.0));
    EXPECT_TRUE(apply(m * s, T3dDblPoint(1, 1, 1)).equivalent(T3dDblPoint(4, 6, 8), 0.0));
    EXPECT_TRUE(apply(TypeParam(m).premultBy(s), T3dDblPoint(1, 1, 1))
                    .equivalent(T3dDblPoint(3, 4, 5), 0.0));
}

TYPED_TEST(TransformOps, AxesAlignmentAndDecompositionAgree) {
    GeometryRandom rnd;
    for (int n = 0; n < 100; ++n) {
        const T4dDblVector v = rnd.vector();
        const TypeParam to = TypeParam().setToAlignWithZ(v);
        const TypeParam back = TypeParam().setToAlignFromZ(v);
        T4dDblVector turned = v * to.matrix();
        EXPECT_TRUE(turned.equivalent(T4dDblVector(0, 0, v.length()), 1e-13)) << n;
        EXPECT_TRUE((to * back).equivalent(TypeParam(), 1e-15));
        EXPECT_NEAR(to.matrix().det3x3(), 1.0, 1e-14); // a rotation, never a mirror
        // A placement decomposes into the scale, rotation and translation it was built from.
        const Tscale s(rnd.uniform(0.5, 3), rnd.uniform(0.5, 3), rnd.uniform(0.5, 3));
        const TunitQuaternion q(rnd.uniform(-3, 3), rnd.unitVector());
        TypeParam placed(s);
        placed.rotateIt(q).translateIt(v);
        EXPECT_TRUE(placed.scaleFactors().equivalent(s, 1e-12));
        EXPECT_TRUE(placed.rotation().equivalent(q, 1e-12));
        EXPECT_TRUE(placed.translation().equivalent(v, 1e-12));
    }
    // Directions along -z and +z, and the zero vector.
    const T4dDblVector down(0, 0, -2);
    EXPECT_TRUE((down * TypeParam().setToAlignWithZ(down).matrix())
                    .equivalent(T4dDblVector(0, 0, 2), 1e-15));
    EXPECT_TRUE((T4dDblVector(1e-9, 0, -1) *
                 TypeParam().setToAlignWithZ(T4dDblVector(1e-9, 0, -1)).matrix())
                    .equivalent(T4dDblVector(0, 0, 1), 1e-15));
    EXPECT_EQ(TypeParam().setToAlignWithZ(T4dDblVector(0, 0, 3)), TypeParam());
    EXPECT_EQ(TypeParam().setToAlignWithZ(T4dDblVector()), TypeParam());
    // A frame takes local coordinates to the parent's.
    const TypeParam f = TypeParam().setToAxes(T4dDblVector(0, 1, 0), T4dDblVector(-1, 0, 0),
                                              T4dDblVector(0, 0, 1), T3dDblPoint(5, 0, 0));
    EXPECT_EQ(apply(f, T3dDblPoint(1, 2, 3)), T3dDblPoint(3, 1, 3));
    // The array forms agree with the one-point forms and never translate directions.
    double xyz[6] = {1, 2, 3, -4, 5, 6};
    f.transformVectors(xyz, 2);
    EXPECT_EQ(T4dDblVector(xyz[3], xyz[4], xyz[5]), T4dDblVector(-5, -4, 6));
}

} // namespace

TEST(TxformMatrix, StaysAffineAndCachesItsInverse) {
    T4dDblMatrix projective;
    projective(2, 3) = -0.5;
    projective(3, 0) = 7;
    // The affine class drops the projective column; the general one keeps and divides by it.
    const TxformMatrix affine(projective);
    const TgenXformMatrix general(projective);
    EXPECT_EQ(affine.matrix()(2, 3), 0.0);
    EXPECT_FALSE(general.isAffine());
    EXPECT_TRUE(TgenXformMatrix(affine).isAffine());
    EXPECT_EQ(affine.transformPoint(T3dDblPoint(0, 2, 1)), T3dDblPoint(7, 2, 1));
    EXPECT_TRUE(general.transformPoint(T3dDblPoint(0, 2, 1))
                    .equivalent(T3dDblPoint(14, 4, 2), 1e-15)); // weight 1 - 0.5
    EXPECT_EQ(TxformMatrix(general), affine);
    // Any later step keeps the affine column too.
    TxformMatrix t;
    t.postmultBy(projective);
    EXPECT_EQ(t, affine);

    GeometryRandom rnd;
    for (int n = 0; n < 100; ++n) {
        TxformMatrix x(Tscale(rnd.uniform(0.3, 3) * (n % 2 ? -1 : 1), rnd.uniform(0.3, 3), 1));
        x.rotateIt(rnd.unitVector(), rnd.uniform(-3, 3)).translateIt(rnd.vector());
        x.postmultBy(T4dDblMatrix(1, 0.3, 0, 0, 0, 1, 0, 0, 0.2, 0, 1, 0, 0, 0, 0, 1)); // shear
        const T4dDblMatrix& inv = x.inverseMatrix();
        EXPECT_EQ(&inv, &x.inverseMatrix()); // the cache, not a new inversion
        EXPECT_TRUE((x.matrix() * inv).equivalent(T4dDblMatrix::identity, 1e-13)) << n;
        // Inverting twice gives the transform back exactly: the cache swaps in.
        TxformMatrix y = x;
        y.invertIt().invertIt();
        EXPECT_EQ(y, x);
        double pts[6] = {1, 2, 3, 4, 5, 6}, back[6];
        x.transformPoints(pts, back, 2);
        x.inverseTransformPoints(back, back, 2);
        for (int i = 0; i < 6; ++i)
            EXPECT_NEAR(back[i], pts[i], 1e-12);
    }
    // A change after the inverse was read drops the cache.
    TxformMatrix moved;
    (void)moved.inverseMatrix();
    moved.translateIt(T4dDblVector(1, 2, 3));
    EXPECT_EQ(T3dDblPoint(1, 2, 3) * moved.inverseMatrix(), T3dDblPoint(0, 0, 0));
}

TEST(TgenXformMatrix, PerspectiveProjectsOntoThePlaneAndInvertsWhereRegular) {
    TgenXformMatrix p;
    p.setToPerspective(10.0);
    // Seen from (0, 0, 10), a point at z = 5 halfway to the eye doubles its offset.
    EXPECT_TRUE(p.transformPoint(T3dDblPoint(1, 2, 5)).equivalent(T3dDblPoint(2, 4, 0), 1e-15));
    double xyz[3] = {1, 2, 5};
    p.transformPoints(xyz, 1);
    EXPECT_EQ(T3dDblPoint(xyz[0], xyz[1], xyz[2]), p.transformPoint(T3dDblPoint(1, 2, 5)));
    // A regular projective transform inverts through the full 4x4 inverse.
    TgenXformMatrix g(obrix::test::GeometryRandom().matrix());
    const T4dDblPoint h(1, 2, 3, 1);
    const T4dDblPoint back = g.inverse().transformPoint(g.transformPoint(h));
    EXPECT_TRUE(back.equivalent(h, 1e-12));
}
