#include "ObrixBase/geometry/TboundingBox.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/geometry/TxformMatrix.h"
#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

namespace {
using obrix::test::GeometryRandom;
}

TEST(TboundingBox, EmptyIsAStateOfItsOwn) {
    const TboundingBox empty;
    EXPECT_TRUE(empty.isEmpty());
    const TboundingBox one = empty.extend(T3dDblPoint(1, 2, 3));
    EXPECT_FALSE(one.isEmpty()); // a single point is a box, of size zero
    EXPECT_EQ(one.min(), T3dDblPoint(1, 2, 3));
    EXPECT_EQ(one.size(), T4dDblVector());
    EXPECT_TRUE(one.contains(T3dDblPoint(1, 2, 3)));
    // Empty boxes contain no point, are contained in every box, and are all equal.
    EXPECT_FALSE(empty.contains(T3dDblPoint()));
    EXPECT_TRUE(one.contains(empty));
    EXPECT_FALSE(empty.contains(one));
    EXPECT_EQ(empty.center(), T3dDblPoint());
    EXPECT_EQ(empty.size(), T4dDblVector());
    EXPECT_EQ(one.extend(empty), one);
    EXPECT_TRUE(empty.transformed(T4dDblMatrix()).isEmpty());
    // Disjoint boxes intersect in the one empty box; touching ones in a flat box.
    const TboundingBox a(T3dDblPoint(0, 0, 0), T3dDblPoint(1, 1, 1));
    const TboundingBox b(T3dDblPoint(2, 0, 0), T3dDblPoint(3, 1, 1));
    const TboundingBox c(T3dDblPoint(1, 0, 0), T3dDblPoint(3, 1, 1));
    EXPECT_EQ(a.intersection(b), empty);
    EXPECT_FALSE(a.intersects(b));
    EXPECT_TRUE(a.intersects(c));
    EXPECT_EQ(a.intersection(c).size(), T4dDblVector(0, 1, 1));
    EXPECT_TRUE(a.intersection(b).extend(T3dDblPoint(9, 9, 9)) ==
                TboundingBox(T3dDblPoint(9, 9, 9), T3dDblPoint(9, 9, 9)));
    // Tolerances: contains grows the box, equivalent compares corners, both inclusive.
    EXPECT_FALSE(a.contains(T3dDblPoint(1.5, 0.5, 0.5)));
    EXPECT_TRUE(a.contains(T3dDblPoint(1.5, 0.5, 0.5), 0.5));
    EXPECT_TRUE(a.equivalent(TboundingBox(T3dDblPoint(0, 0, 0), T3dDblPoint(1, 1, 1.25)), 0.25));
    EXPECT_FALSE(a.equivalent(empty, 1e300));
    // NaN coordinates never enter a box.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(a.extend(T3dDblPoint(nan, nan, nan)), a);
}

TEST(TboundingBox, MatchesANaiveModelAndTransformsToTheBoxOfItsCorners) {
    GeometryRandom rnd;
    for (int round = 0; round < 40; ++round) {
        std::vector<double> xyz;
        TboundingBox one, many;
        double lo[3] = {1e300, 1e300, 1e300}, hi[3] = {-1e300, -1e300, -1e300};
        const int n = 1 + round * 3;
        for (int i = 0; i < n; ++i) {
            const T4dDblVector v = rnd.vector();
            xyz.insert(xyz.end(), {v.x, v.y, v.z});
            one.extendIt(T3dDblPoint(v));
            for (int k = 0; k < 3; ++k) {
                lo[k] = std::min(lo[k], v[k]);
                hi[k] = std::max(hi[k], v[k]);
            }
        }
        many.extendIt(xyz.data(), xyz.size() / 3);
        const TboundingBox model(T3dDblPoint(lo[0], lo[1], lo[2]),
                                 T3dDblPoint(hi[0], hi[1], hi[2]));
        EXPECT_EQ(one, model);
        EXPECT_EQ(many, model);
        EXPECT_TRUE(model.center().equivalent(
            T3dDblPoint(T4dDblVector(model.min()) + model.size() * 0.5), 1e-12));

        TxformMatrix t(Tscale(rnd.uniform(-2, 2), rnd.uniform(-2, 2), rnd.uniform(-2, 2)));
        t.rotateIt(rnd.unitVector(), rnd.uniform(-3, 3)).translateIt(rnd.vector());
        const TboundingBox moved = model.transformed(t);
        TboundingBox corners;
        for (int i = 0; i < 8; ++i)
            corners.extendIt(model.corner(i) * t.matrix());
        EXPECT_TRUE(moved.equivalent(corners, 1e-12)) << round;
        for (int i = 0; i < n; ++i) {
            const T3dDblPoint p = T3dDblPoint(xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]);
            EXPECT_TRUE(moved.contains(p * t.matrix(), 1e-12));
        }
        // Union and intersection against the same boxes built point by point.
        const TboundingBox other =
            TboundingBox(T3dDblPoint(rnd.vector()), T3dDblPoint(rnd.vector()));
        EXPECT_TRUE(model.unite(other).contains(model) && model.unite(other).contains(other));
        const TboundingBox both = model.intersection(other);
        EXPECT_EQ(both.isEmpty(), !model.intersects(other));
        EXPECT_TRUE(both.isEmpty() || (model.contains(both) && other.contains(both)));
    }
}
