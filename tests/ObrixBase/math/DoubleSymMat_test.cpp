// DoubleSymMat: packing from a general matrix, the leading submatrix as a view, the checks'
// exact messages, and products that read only the stored triangle.
#include "ObrixBase/math/DoubleSymMat.h"

#include <random>

#include <gtest/gtest.h>

#include "ObrixBase/math/DoubleGenMat.h"
#include "tests/support/MathErrorCapture.h"
#include "tests/support/NumericTestData.h"

using obrix::test::MathErrorCapture;
using obrix::test::printed;
using obrix::test::randomMatrix;

TEST(DoubleSymMat, PackingAveragesTheTwoTrianglesAndTheLeadingBlockIsAView) {
    DoubleGenMat a(3, 3, 0.0);
    a(0, 1) = 1.0;
    a(1, 0) = 3.0;
    a(2, 2) = 4.0;
    DoubleSymMat s = toSymMat(a);
    EXPECT_EQ(s(0, 1), 2.0);
    EXPECT_EQ(s(1, 0), 2.0);
    EXPECT_EQ(s.dataVec()(DoubleSymMat::index(0, 1)), 2.0);
    EXPECT_EQ(DoubleGenMat(s)(1, 0), 2.0);

    DoubleSymMat lead = s.leadingSubmatrix(2);
    lead(1, 1) = 8.0;
    EXPECT_EQ(s(1, 1), 8.0) << "the leading block is a view";
    s.resize(2, 2);
    EXPECT_EQ(s.order(), 2u);
    EXPECT_EQ(printed(s), "2x2 [\n0 2 \n2 8 \n]");
    EXPECT_EQ(printed(abs(-s)), printed(s)) << "abs is fabs: -0 becomes 0";
}

TEST(DoubleSymMat, ChecksReportTheirExactMessages) {
    DoubleSymMat s(3, 3, 1.0);
    MathErrorCapture capture;
    DoubleSymMat(2, 3);
    s.leadingSubmatrix(4);
    EXPECT_EQ(s.leadingSubmatrix(-1).order(), 0u);
    s.boundsCheck(3, 0);
    EXPECT_EQ(capture.messages(),
              (std::vector<std::string>{
                  "2x3 matrix not square",
                  "cant build order 4 leading submatrix of order 3 matrix",
                  "cant build order 4294967295 leading submatrix of order 3 matrix",
                  "Element (3x0) not in matrix of size (3x3)",
              }));
}

TEST(DoubleSymMat, VectorProductsMatchTheFullMatrix) {
    std::mt19937 rng(99);
    for (unsigned n : {0u, 1u, 2u, 5u, 9u}) {
        const DoubleSymMat s = toSymMat(randomMatrix(rng, n, n));
        const DoubleVec x = randomMatrix(rng, n, 1).col(0);
        const DoubleVec sx = product(s, x), xs = product(x, s);
        const DoubleVec gx = product(DoubleGenMat(s), x);
        ASSERT_EQ(sx.length(), n);
        ASSERT_EQ(xs.length(), n);
        for (int i = 0; i < static_cast<int>(n); ++i) {
            EXPECT_NEAR(sx(i), gx(i), 1e-13);
            EXPECT_NEAR(xs(i), gx(i), 1e-13) << "x'S = (Sx)' for a symmetric S";
        }
    }
}
