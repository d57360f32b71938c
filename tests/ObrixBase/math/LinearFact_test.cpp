// DoubleGenFact and DoubleSymFact: results through the classes, singularity shown in the
// flags and reported only by solve and inverse, and every check's message.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "ObrixBase/math/DoubleGenFact.h"
#include "ObrixBase/math/DoubleSymFact.h"
#include "tests/support/MathErrorCapture.h"
#include "tests/support/NumericTestData.h"
#include "tests/support/ReportCapture.h"

using obrix::test::MathErrorCapture;
using obrix::test::maxAbs;
using obrix::test::randomMatrix;

namespace {

// A random matrix with 2 added on the diagonal: comfortably non-singular.
DoubleGenMat randomGen(std::mt19937& rng, unsigned n) {
    DoubleGenMat a = randomMatrix(rng, n, n);
    for (int i = 0; i < static_cast<int>(n); ++i)
        a(i, i) += 2.0;
    return a;
}

} // namespace

TEST(DoubleGenFact, SolvesInvertsAndGivesTheDeterminant) {
    std::mt19937 rng(61);
    DoubleGenMat a = randomGen(rng, 6);
    DoubleVec b(6, 1.0, 0.5);
    DoubleGenFact f(a);
    EXPECT_TRUE(f.good());
    EXPECT_GT(f.condition(), 0.0);
    EXPECT_LT(maxAbs(product(a, f.solve(b)) - b), 1e-13);
    DoubleGenMat inv = f.inverse();
    DoubleGenMat id = product(a, inv);
    for (int i = 0; i < 6; ++i)
        for (int j = 0; j < 6; ++j)
            EXPECT_NEAR(id(i, j), i == j ? 1.0 : 0.0, 1e-13);
    double d[4] = {2, 1, 3, 4}; // det = 2*4 - 3*1
    EXPECT_NEAR(DoubleGenFact(DoubleGenMat(d, 2, 2)).determinant(), 5.0, 1e-14);
    // The factorisation keeps its own copy: changing the input afterwards changes nothing.
    DoubleVec before = f.solve(b);
    a(0, 0) = 1e6;
    EXPECT_EQ(maxAbs(f.solve(b) - before), 0.0);
}

TEST(DoubleGenFact, SingularityShowsInTheFlagsAndOnlySolveReportsIt) {
    double s[4] = {1, 2, 2, 4};
    MathErrorCapture capture;
    DoubleGenFact plain(DoubleGenMat(s, 2, 2), 0);
    DoubleGenFact estimated(DoubleGenMat(s, 2, 2), 1);
    EXPECT_TRUE(capture.errors().empty());
    EXPECT_EQ(plain.rcond(), 0.0);
    EXPECT_EQ(estimated.rcond(), 0.0);
    EXPECT_EQ(plain.fail(), 1);
    EXPECT_EQ(plain.isSingular(), 1);
    EXPECT_EQ(plain.determinant(), 0.0);
    plain.solve(DoubleVec(2, 1.0));
    plain.inverse();
    EXPECT_EQ(capture.messages(),
              (std::vector<std::string>{
                  "Can't solve system of equations, matrix not successfully factorized",
                  "Can't solve system of equations, matrix not successfully factorized"}));
}

TEST(DoubleGenFact, ChecksReportTheirCatalogueMessages) {
    MathErrorCapture capture;
    DoubleGenFact empty;
    EXPECT_EQ(empty.fail(), 1);
    EXPECT_EQ(empty.determinant(), 0.0);
    DoubleGenFact wide(DoubleGenMat(2, 3, 1.0));
    EXPECT_EQ(wide.fail(), 1);
    std::mt19937 rng(62);
    DoubleGenFact noEstimate(randomGen(rng, 3), 0);
    EXPECT_EQ(noEstimate.rcond(), -1.0);
    EXPECT_EQ(noEstimate.fail(), 0);
    EXPECT_EQ(noEstimate.condition(), -1.0);
    EXPECT_EQ(noEstimate.solve(DoubleVec(4, 1.0)).length(), 0u);
    EXPECT_EQ(capture.messages(), (std::vector<std::string>{
                                      "Can't factorize, 2x3 matrix not square",
                                      "Condition number not calculated",
                                      "b vector length wrong (4!=3)",
                                  }));
    EXPECT_EQ(capture.codes(), (std::vector<std::uint16_t>{0x500D, 0x5001, 0x5002}));
}

TEST(DoubleGenFact, DefaultHandlerOnlyPrintsTheMissingConditionAndAbortsOnSolve) {
    std::mt19937 rng(63);
    DoubleGenFact f(randomGen(rng, 3), 0);
    {
        obrix::test::ReportCapture reports;
        EXPECT_EQ(f.condition(), -1.0);
        EXPECT_EQ(reports.joined(),
                  "** Condition number not calculated.\n** Processing continues.\n");
    }
    double s[4] = {0, 0, 0, 0};
    DoubleGenFact singular(DoubleGenMat(s, 2, 2), 0);
    EXPECT_DEATH(singular.solve(DoubleVec(2, 1.0)), "not successfully factorized");
}

TEST(DoubleSymFact, SolvesIndefiniteSystemsAndInvertsToAPackedMatrix) {
    // [[0, 1, 2], [1, 0, 3], [2, 3, 0]]: indefinite with a zero diagonal.
    DoubleSymMat a(3, 3, 0.0);
    a(0, 1) = 1;
    a(0, 2) = 2;
    a(1, 2) = 3;
    DoubleSymFact f(a);
    EXPECT_TRUE(f.good());
    EXPECT_NEAR(f.determinant(), 12.0, 1e-13);
    DoubleVec b(3, 1.0, 1.0);
    DoubleVec x = f.solve(b);
    DoubleGenMat full(a);
    EXPECT_LT(maxAbs(product(full, x) - b), 1e-14);
    DoubleSymMat inv = f.inverse();
    DoubleGenMat id = product(full, DoubleGenMat(inv));
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(id(i, j), i == j ? 1.0 : 0.0, 1e-14);
    MathErrorCapture capture;
    DoubleSymFact singular(DoubleSymMat(2, 2, 1.0), 0);
    EXPECT_EQ(singular.fail(), 1);
    EXPECT_EQ(singular.rcond(), 0.0);
}
