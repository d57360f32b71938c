// DoubleSVDecomp: shapes chosen by the job digits, reconstruction, results handed out
// staying intact, and failures shown in the flags.
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "ObrixBase/math/DoubleSVDecomp.h"

TEST(DoubleSVDecomp, JobDigitsChooseTheVectorShapes) {
    double v[6] = {1, 2, 3, 4, 5, 7};
    DoubleGenMat a(v, 3, 2);
    DoubleSVDecomp sv(a);
    EXPECT_EQ(sv.leftVecs().rows(), 3u);
    EXPECT_EQ(sv.leftVecs().cols(), 3u);
    EXPECT_EQ(sv.rightVecs().cols(), 2u);
    EXPECT_EQ(sv.singularValues().length(), 2u);
    EXPECT_EQ(sv.numSVsFound(), 2);
    // U S V' = A.
    DoubleGenMat u = sv.leftVecs(), w = sv.rightVecs();
    DoubleVec s = sv.singularValues();
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 2; ++j)
            EXPECT_NEAR(u(i, 0) * s(0) * w(j, 0) + u(i, 1) * s(1) * w(j, 1), a(i, j), 1e-13);

    EXPECT_EQ(sv.computeAllLeftVecs(0), 1);
    sv.factor(a);
    EXPECT_EQ(sv.leftVecs().cols(), 2u);
    // The matrix handed out before keeps its contents.
    EXPECT_EQ(u.cols(), 3u);
    EXPECT_NEAR(std::fabs(u(0, 0)), std::fabs(sv.leftVecs()(0, 0)), 1e-14);

    EXPECT_EQ(sv.computeLeftVecs(0), 1);
    EXPECT_EQ(sv.computeRightVecs(0), 1);
    EXPECT_EQ(sv.job(), 0);
    sv.factor(DoubleGenMat(4, 4, 1.0));
    EXPECT_EQ(sv.leftVecs().rows(), 3u);
    EXPECT_EQ(sv.rightVecs().rows(), 2u);
    EXPECT_NEAR(sv.singularValues()(0), 4.0, 1e-14);
    EXPECT_EQ(sv.computeLeftVecs(1), 0);
    EXPECT_EQ(sv.job(), 10);
}

TEST(DoubleSVDecomp, EmptyAndNonFiniteInputFail) {
    DoubleSVDecomp empty(DoubleGenMat(0, 0));
    EXPECT_EQ(empty.singularValues().length(), 0u);
    EXPECT_EQ(empty.fail(), 1);
    DoubleSVDecomp noCols(DoubleGenMat(3, 0));
    EXPECT_EQ(noCols.fail(), 1);
    DoubleGenMat a(3, 3, 1.0);
    a(1, 1) = std::numeric_limits<double>::quiet_NaN();
    DoubleSVDecomp bad(a);
    EXPECT_EQ(bad.fail(), 1);
    EXPECT_LT(bad.numSVsFound(), 3);
}

TEST(DoubleSVDecomp, ASuccessfulFactorisationLeavesEZeroForEveryShape) {
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    const unsigned shapes[][2] = {{3, 10}, {3, 4}, {3, 5}, {10, 3}, {4, 4}, {1, 6}};
    for (const auto& shape : shapes) {
        DoubleGenMat a(shape[0], shape[1]);
        for (unsigned j = 0; j < shape[1]; ++j)
            for (unsigned i = 0; i < shape[0]; ++i)
                a(static_cast<int>(i), static_cast<int>(j)) = entry(gen);
        DoubleSVDecomp sv(a);
        ASSERT_EQ(sv.good(), 1);
        DoubleVec e = sv.eValues();
        ASSERT_EQ(e.length(), shape[1]);
        for (unsigned j = 0; j < e.length(); ++j)
            EXPECT_EQ(e(static_cast<int>(j)), 0.0) << shape[0] << "x" << shape[1] << " e" << j;
    }
}
