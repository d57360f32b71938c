#include "ObrixBase/geometry/Tplane.h"

#include <gtest/gtest.h>

#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

TEST(Tplane, PointAndNormalBuildAUnitNormalAndAlwaysTheDefaultTolerance) {
    const Tplane p(T4dDblPoint(0, 0, 5, 1), T4dDblVector(0, 0, 2), 0.5);
    EXPECT_EQ(p.normal(), T4dDblVector(0, 0, 1));
    EXPECT_EQ(p.offset(), -5.0);
    EXPECT_EQ(p.tolerance(), 1e-9);
    EXPECT_EQ(Tplane(0.5).tolerance(), 0.5);
    EXPECT_EQ(Tplane().normal(), T4dDblVector(0, 0, 1));
    // The point's weight is not divided out; a degenerate normal is kept as given.
    EXPECT_EQ(Tplane(T4dDblPoint(0, 0, 5, 2), T4dDblVector(0, 0, 1)).offset(), -5.0);
    EXPECT_EQ(Tplane(T4dDblPoint(), T4dDblVector(1e-10, 0, 0)).normal(), T4dDblVector(1e-10, 0, 0));
}

TEST(Tplane, IntersectionTellsAheadBehindAndParallel) {
    const Tplane p(T4dDblPoint(0, 0, 5, 1), T4dDblVector(0, 0, 2));
    T4dDblPoint hit;
    EXPECT_EQ(p.intersection(T4dDblPoint(), T4dDblVector(0, 0, 1), hit), Tplane::Ahead);
    EXPECT_EQ(hit, T4dDblPoint(0, 0, 5, 1));
    hit = T4dDblPoint();
    EXPECT_EQ(p.intersection(T4dDblPoint(), T4dDblVector(0, 0, -1), hit), Tplane::Behind);
    EXPECT_EQ(hit, T4dDblPoint(0, 0, 5, 1));
    const T4dDblPoint untouched(9, 9, 9, 9);
    hit = untouched;
    EXPECT_EQ(p.intersection(T4dDblPoint(), T4dDblVector(1, 1, 0.5e-9), hit), Tplane::Parallel);
    EXPECT_EQ(hit, untouched);
    EXPECT_EQ(p.intersection(T4dDblPoint(1, 2, 5, 1), T4dDblVector(1, 0, 1), hit), Tplane::Ahead);
    EXPECT_EQ(hit, T4dDblPoint(1, 2, 5, 1));
    // The ray parameter comes from the start's raw coordinates, the hit from its cartesian
    // position: a start with a weight other than 1 lands off the plane.
    EXPECT_EQ(p.intersection(T4dDblPoint(0, 0, 1, 0.5), T4dDblVector(0, 0, 1), hit), Tplane::Ahead);
    EXPECT_EQ(hit, T4dDblPoint(0, 0, 6, 1));

    // Random planes and rays: the hit lies on the plane and on the ray.
    obrix::test::GeometryRandom rnd;
    for (int n = 0; n < 200; ++n) {
        const Tplane q(T4dDblPoint(rnd.uniform(-5, 5), rnd.uniform(-5, 5), 1, 1), rnd.vector());
        const T4dDblPoint start(rnd.uniform(-5, 5), 0, rnd.uniform(-5, 5), 1);
        const T4dDblVector dir = rnd.vector();
        if (q.intersection(start, dir, hit) == Tplane::Parallel)
            continue;
        EXPECT_NEAR(q.normal().dotProduct(T4dDblVector(hit)) + q.offset(), 0.0, 1e-9);
        const T4dDblVector along = hit - start;
        EXPECT_TRUE(along.parallel(dir, 1e-6));
        EXPECT_EQ(q.intersection(start, dir, hit) == Tplane::Ahead, along.dotProduct(dir) >= 0);
    }
}
