// DoubleLowerTriMat and DoubleUpperTriMat: the empty triangle is a constant zero that no write
// reaches, the transpose re-labels the same storage, arithmetic acts on stored elements only,
// and products read only the stored triangle.
#include "ObrixBase/math/DoubleTriMat.h"

#include <random>

#include <gtest/gtest.h>

#include "ObrixBase/math/DoubleGenMat.h"
#include "tests/support/MathErrorCapture.h"
#include "tests/support/NumericTestData.h"

using obrix::test::MathErrorCapture;
using obrix::test::printed;
using obrix::test::randomMatrix;

TEST(DoubleTriMat, TheEmptyTriangleStaysZeroAndTheTransposeSharesStorage) {
    DoubleGenMat a(3, 3, 0.0);
    a(0, 1) = 1.0;
    a(1, 0) = 3.0;
    DoubleLowerTriMat l = toLowerTriMat(a);
    EXPECT_EQ(l(1, 0), 3.0);
    EXPECT_EQ(l(0, 1), 0.0);
    EXPECT_EQ(DoubleGenMat(l)(0, 1), 0.0);
    DoubleUpperTriMat u = transpose(l);
    EXPECT_EQ(u(0, 1), 3.0) << "the transpose re-labels the same storage";
    EXPECT_EQ(u.dataVec().block(), l.dataVec().block());

    MathErrorCapture capture;
    l.bcset(0, 1, 9.0);
    EXPECT_EQ(l(0, 1), 0.0);
    l(0, 1) = 7.0; // writes to the constant zero change nothing
    EXPECT_EQ(l.bcval(0, 1), 0.0);
    u.bcset(2, 1, 1.0);
    DoubleLowerTriMat(DoubleVec(5, 0.0), 3, 3);
    DoubleUpperTriMat small(1, 1, 1.0);
    small /= DoubleUpperTriMat(2, 2, 1.0);
    EXPECT_EQ(capture.messages(), (std::vector<std::string>{
                                      "Can't change element (0,1) of DoubleLowerTriMat",
                                      "Can't change element (2,1) of DoubleUpperTriMat",
                                      "Wrong number of points (5) for 3x3 DoubleLowerTriMat",
                                      "Matrix sizes don't match (1x1) vs (2x2)",
                                      // the handler returned, so the element
                                      // operation went on and checked the lengths
                                      "[VNMATCH: DoubleVec]: Vector lengths do not match (1 vs 3)",
                                  }));
    EXPECT_EQ(DoubleGenMat(transpose(u).apply([](double x) { return 2 * x; }))(1, 0), 6.0);
}

TEST(DoubleTriMat, ArithmeticActsOnStoredElementsWithTheScalarOnEitherSide) {
    const double stored[] = {1.0, 2.0, 4.0}; // lower triangle (0,0), (1,0), (1,1)
    DoubleLowerTriMat l(DoubleVec(stored, 3), 2, 2);
    EXPECT_EQ(printed(2.0 - l), "2x2 [\n1 0 \n0 -2 \n]") << "the empty triangle is not stored";
    EXPECT_EQ(printed(8.0 / l), "2x2 [\n8 0 \n4 2 \n]");
    EXPECT_EQ(printed(1.0 + l), printed(l + 1.0));

    DoubleLowerTriMat m = l.copy();
    m *= l; // element-wise, not a matrix product
    m /= DoubleLowerTriMat(3, 3, 2.0).leadingSubmatrix(2);
    m += 1.0;
    m -= 0.5;
    EXPECT_EQ(printed(m), "2x2 [\n1 0 \n2.5 8.5 \n]");

    l.ref(0, 1) = 9.0; // the constant zero of the empty triangle
    l.ref(1, 0) = 3.0;
    EXPECT_EQ(printed(l), "2x2 [\n1 0 \n3 4 \n]");
    EXPECT_EQ(printed(transpose(l)), "2x2 [\n1 3 \n0 4 \n]");
}

TEST(DoubleTriMat, VectorProductsWalkOnlyTheStoredTriangle) {
    std::mt19937 rng(99);
    for (unsigned n : {0u, 1u, 2u, 5u, 9u}) {
        const DoubleGenMat a = randomMatrix(rng, n, n);
        const DoubleVec x = randomMatrix(rng, n, 1).col(0);
        const DoubleLowerTriMat l = toLowerTriMat(a);
        const DoubleUpperTriMat u = toUpperTriMat(a);
        auto near = [n](const DoubleVec& got, const DoubleVec& want) {
            ASSERT_EQ(got.length(), n);
            for (int i = 0; i < static_cast<int>(n); ++i)
                EXPECT_NEAR(got(i), want(i), 1e-13);
        };
        near(product(l, x), product(DoubleGenMat(l), x));
        near(product(x, l), product(x, DoubleGenMat(l)));
        near(product(u, x), product(DoubleGenMat(u), x));
        near(product(x, u), product(x, DoubleGenMat(u)));
    }
}
