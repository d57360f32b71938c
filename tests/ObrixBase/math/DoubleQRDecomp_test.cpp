// DoubleQRDecomp and DoubleLeastSqQR: least-squares solutions against the normal equations,
// rank and free columns, the apply jobs, and the checks' messages.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "ObrixBase/math/DoubleQRDecomp.h"
#include "tests/support/MathErrorCapture.h"
#include "tests/support/NumericTestData.h"

using obrix::test::MathErrorCapture;
using obrix::test::maxAbs;
using obrix::test::randomMatrix;

TEST(DoubleQRDecomp, LeastSquaresSolutionSatisfiesTheNormalEquations) {
    std::mt19937 rng(81);
    for (int pivot : {0, 1}) {
        DoubleGenMat a = randomMatrix(rng, 9, 4);
        DoubleVec y(9, 0.5, 0.3);
        DoubleQRDecomp qr;
        qr.doPivoting(pivot);
        qr.factor(a);
        EXPECT_EQ(qr.rank(), 4);
        EXPECT_EQ(qr.isSingular(), 0);
        DoubleVec x = qr.solve(y);
        // A'(y - A x) = 0, and the residual and fitted values add up to y.
        DoubleVec r = y - product(a, x);
        EXPECT_LT(maxAbs(product(r, a)), 1e-13);
        EXPECT_LT(maxAbs(qr.computeResidualVec(y) - r), 1e-13);
        EXPECT_LT(maxAbs(qr.computeXb(y) + r - y), 1e-13);
        EXPECT_LT(maxAbs(qr.computeQy(qr.computeQTy(y)) - y), 1e-13);
        EXPECT_TRUE(qr.computeQTy(y, -1) == qr.computeQTy(y, 4));
    }
}

TEST(DoubleLeastSqQR, ZeroAndDependentColumnsAreFreeAndGetZeroCoefficients) {
    std::mt19937 rng(82);
    DoubleGenMat a = randomMatrix(rng, 6, 3);
    for (int i = 0; i < 6; ++i)
        a(i, 1) = 0.0;
    DoubleLeastSqQR ls(a);
    EXPECT_EQ(ls.pivots()(2), 1);
    EXPECT_EQ(ls.rank(), 2);
    EXPECT_EQ(ls.isSingular(), 1);
    EXPECT_EQ(ls.numFreeCols(), 1);
    DoubleVec y(6, 1.0, 1.0);
    DoubleVec x = ls.solve(y);
    EXPECT_EQ(x(1), 0.0);
    EXPECT_LT(maxAbs(product(ls.residual(y), a)), 1e-13);
    // A column that is nearly a multiple of another is free only under a tolerance.
    DoubleGenMat b = randomMatrix(rng, 6, 3);
    for (int i = 0; i < 6; ++i)
        b(i, 2) = 2.0 * b(i, 0) + 1e-12 * i;
    DoubleLeastSqQR near(b);
    EXPECT_EQ(near.numFreeCols(), 0);
    near.setTolerance(1e-9);
    EXPECT_EQ(near.numFreeCols(), 1);
    EXPECT_EQ(near.solve(y)(near.pivots()(2)), 0.0);
    near.factor(b);
    EXPECT_EQ(near.tolerance(), 0.0);
    // Wider than tall: the surplus columns are free before any tolerance.
    DoubleLeastSqQR wide(randomMatrix(rng, 2, 3));
    EXPECT_EQ(wide.numFreeCols(), 1);
    EXPECT_EQ(wide.isUnderDetermined(), 1);
    DoubleVec yw(2, 1.0);
    EXPECT_EQ(wide.solve(yw).length(), 3u);
}

TEST(DoubleQRDecomp, ChecksReportTheirMessages) {
    std::mt19937 rng(83);
    DoubleLeastSqQR qr(randomMatrix(rng, 3, 2));
    MathErrorCapture capture;
    EXPECT_EQ(qr.solve(DoubleVec(4, 1.0)).length(), 0u);
    qr.unpermute(DoubleVec(3, 1.0));
    DoubleLeastSqQR none(DoubleGenMat(3, 0));
    none.solve(DoubleVec(3, 1.0));
    DoubleGenMat zero(3, 2, 0.0);
    DoubleQRDecomp z(zero);
    z.partialSolve(DoubleVec(3, 1.0), 2);
    EXPECT_EQ(capture.messages(),
              (std::vector<std::string>{
                  "b vector length wrong (4!=3)", "vector wrong length to permute (3!=2)",
                  "Can't solve system of equations, matrix not successfully factorized",
                  "Can't solve system of equations, matrix not successfully factorized"}));
}

TEST(DoubleQRDecomp, RefactoringACopyWithoutPivotingLeavesTheOriginalsPivots) {
    std::mt19937 rng(84);
    DoubleGenMat a = randomMatrix(rng, 5, 3);
    for (int i = 0; i < 5; ++i)
        a(i, 0) = 0.0;
    DoubleQRDecomp qr(a);
    IntVec before = qr.pivots().copy();
    ASSERT_EQ(before(2), 0);
    DoubleQRDecomp other(qr);
    other.doPivoting(0);
    other.factor(a);
    EXPECT_TRUE(qr.pivots() == before);
    EXPECT_EQ(other.pivots()(2), 2);
}
