#include "ObrixBase/auto/containers/TtupleVector.h"

#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/NumericTestData.h"

using obrix::test::vec;

TEST(TtupleVector, PointViewsWriteThroughToEverySharer) {
    const double raw[] = {1, 2, 3, 4, 5, 6};
    TtupleVector points(3, 2, raw);
    TtupleVector shared(points);
    points[1](0) = 40.0;
    EXPECT_EQ(shared(1), vec({40, 5, 6}));
    EXPECT_EQ(TtupleVector(0, 4, 1.0).tupleSize(), 1);
    EXPECT_EQ(TtupleVector(-3, vec({1, 2})).points(), 2);
    EXPECT_EQ(points.component(2), vec({3, 6}));
    EXPECT_EQ(points.vecLen()(0), std::sqrt(14.0));
    EXPECT_EQ(points.components(1, 2).data(), vec({2, 3, 5, 6}));
    TtupleVector last = points.rPoints(1, 1);
    last(0) = 0.0;
    EXPECT_EQ(points(1), vec({40, 5, 6})) << "rPoints copies";
    points.lPoints(0, 0)(0) = 9.0;
    EXPECT_EQ(points(0), vec({9, 9, 9})) << "lPoints views";
    EXPECT_EQ(points.setPoints(0, 0, last), 1);
    EXPECT_EQ(points(0), vec({0, 0, 0}));
    EXPECT_EQ(points.setPoints(1, 2, last), 0) << "range outside";
    const double* rows[] = {raw, raw + 3};
    EXPECT_EQ(TtupleVector(2, 2, rows).data(), vec({1, 2, 4, 5}));
}

TEST(TtupleVectorDeathTest, ABadIndexPrintsTheFixedLineAndAborts) {
    TtupleVector points(3, 2, 0.0);
    EXPECT_DEATH(points[2], "\\*\\*\\*\\* Bounds checking \\( bad index, 2 \\) in FILE "
                            "auto/containers/TtupleVector.cpp LINE 36\n");
}
