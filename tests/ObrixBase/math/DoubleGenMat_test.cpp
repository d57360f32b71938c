#include "ObrixBase/math/DoubleGenMat.h"

#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "ObrixBase/math/VecFunctions.h"
#include "tests/support/MathErrorCapture.h"
#include "tests/support/NumericTestData.h"

using obrix::test::MathErrorCapture;
using obrix::test::printed;
using obrix::test::randomMatrix;

TEST(DoubleGenMat, RowsColumnsAndDiagonalsAreSharedViews) {
    DoubleGenMat m(3, 4);
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 3; ++i)
            m(i, j) = 10 * i + j;
    EXPECT_EQ(m.data()[3 * 2 + 1], 12.0) << "column-major";
    DoubleVec r = m.row(1);
    EXPECT_EQ(r, DoubleVec(4, 10.0, 1.0));
    EXPECT_EQ(m.diagonal(1), DoubleVec(3, 1.0, 11.0));
    m.col(3) = 0.0;
    EXPECT_EQ(r(3), 0.0);
    EXPECT_EQ(m.diagonal(0).length(), 3u);
    EXPECT_EQ(m.diagonal(-2).length(), 1u);
    EXPECT_EQ(m.diagonal(-2)(0), 20.0);
    DoubleGenMat square(3, 3, 0.0);
    EXPECT_EQ(square.diagonal(1).length(), 2u);
    EXPECT_EQ(square.diagonal(-2).length(), 1u);
    square.diagonal() = 1.0;
    EXPECT_EQ(square(2, 2), 1.0);
    EXPECT_EQ(square(1, 2), 0.0);

    DoubleGenMat shallow(m);
    shallow(0, 0) = -5.0;
    EXPECT_EQ(m(0, 0), -5.0);
    DoubleGenMat deep = m.copy();
    deep(0, 0) = 1.0;
    EXPECT_EQ(m(0, 0), -5.0);
}

TEST(DoubleGenMat, ChecksReportTheirExactMessages) {
    MathErrorCapture capture;
    DoubleGenMat m(2, 3, 0.0);
    m.bcval(2, 0);
    m.bcrow(2);
    m.bccol(-1);
    m.bcdiagonal(3);
    m.bcdiagonal(-2);
    DoubleGenMat(DoubleVec(5, 0.0), 2, 3);
    product(m, DoubleGenMat(2, 3, 0.0));
    product(m, DoubleVec(2, 0.0));
    product(DoubleVec(3, 0.0), m);
    m += DoubleGenMat(3, 2, 0.0);
    IntVec rows(2, 0);
    rows(1) = 2;
    m(rows, IntVec(1, 0));
    EXPECT_EQ(capture.messages(),
              (std::vector<std::string>{
                  "Element (2x0) not in matrix of size (2x3)",
                  "Row (2) not in matrix with 2 rows",
                  "Column (-1) not in matrix with 3 columns",
                  "Diagonal 3 not in DoubleGenMat matrix of size (2x3)",
                  "Diagonal -2 not in DoubleGenMat matrix of size (2x3)",
                  "Wrong number of points (5) for 2x3 DoubleGenMat",
                  "inner product not possible DoubleGenMat matrices (2,3) and (2x3)",
                  "inner product not possible between DoubleGenMat (2x3) and vector (2)",
                  "inner product not possible vector(3) and DoubleGenMat (2x3)",
                  "Matrix sizes don't match (2x3) vs (3x2)",
                  "Matrix pick out of range: index 2 not in 0->1",
              }));
    for (const auto& e : capture.errors())
        EXPECT_EQ(e.tag, MATH_TAG_SHORTHAND);
}

TEST(DoubleGenMat, ProductsAreDotsOfRowsAndColumnsOnRandomShapes) {
    std::mt19937 rng(1234);
    std::uniform_int_distribution<unsigned> dim(0, 19);
    for (int trial = 0; trial < 61; ++trial) {
        unsigned m = dim(rng), k = dim(rng), n = dim(rng);
        if (trial == 60) // long inner products: the columns are taken in several cache bands
            m = 3, k = 700, n = 31;
        const DoubleGenMat a = randomMatrix(rng, m, k);
        const DoubleGenMat b = randomMatrix(rng, k, n);
        const DoubleGenMat c = product(a, b);
        const DoubleGenMat ct = transposeProduct(transpose(a), b);
        const DoubleGenMat cb = transProduct(a, transpose(b));
        ASSERT_EQ(c.rows(), m);
        ASSERT_EQ(c.cols(), n);
        for (int i = 0; i < static_cast<int>(m); ++i)
            for (int j = 0; j < static_cast<int>(n); ++j) {
                // Every element is the library's own dot of a row and a column, bit for bit
                // (the dot's own order of additions is checked with the vector functions).
                EXPECT_EQ(c(i, j), dot(a.row(i), b.col(j))) << m << "x" << k << "x" << n;
                EXPECT_EQ(ct(i, j), c(i, j));
                EXPECT_EQ(cb(i, j), c(i, j));
            }
        const DoubleVec x = randomMatrix(rng, k, 1).col(0);
        const DoubleVec ax = product(a, x);
        const DoubleVec xa = product(randomMatrix(rng, 1, m).row(0), a);
        ASSERT_EQ(ax.length(), m);
        ASSERT_EQ(xa.length(), k);
        for (int i = 0; i < static_cast<int>(m); ++i)
            EXPECT_EQ(ax(i), dot(a.row(i), x));
    }
    // A strided left operand (rows of a bigger matrix) gives the same product.
    const DoubleGenMat big = randomMatrix(rng, 8, 8);
    const DoubleGenMat strided(big.row(1), 1, 8);
    EXPECT_EQ(product(strided, big), product(strided.copy(), big));
}

TEST(DoubleGenMat, IntegerProductsAndKronecker) {
    const int av[] = {1, 2, 3, 4}; // [[1 3] [2 4]]
    const IntGenMat a(av, 2, 2);
    EXPECT_EQ(printed(product(a, a)), "2x2 [\n7 15 \n10 22 \n]");
    EXPECT_EQ(printed(kronecker(a, IntGenMat(1, 2, 1))), "2x4 [\n1 1 3 3 \n2 2 4 4 \n]");
}

TEST(DoubleGenMat, ResizeKeepsTheTopLeftAndMalformedTextChangesNothing) {
    const double v[] = {1, 2, 3, 4, 5, 6}; // 2 x 3
    DoubleGenMat m(v, 2, 3);
    m.resize(3, 2);
    EXPECT_EQ(printed(m), "3x2 [\n1 3 \n2 4 \n0 0 \n]");
    for (const char* bad :
         {"2x2 [ 1 2 3 ]", "2 2 [ 1 2 3 4 ]", "4000000000x4000000000 [ 1 ]", "1x1 [ 1 2"}) {
        DoubleGenMat kept(1, 1, 5.0);
        std::istringstream text(bad);
        text >> kept;
        EXPECT_TRUE(text.fail()) << bad;
        EXPECT_EQ(kept, DoubleGenMat(1, 1, 5.0)) << bad;
    }
}

TEST(DoubleGenMatPick, GathersAndScattersThroughRowAndColumnLists) {
    DoubleGenMat m(3, 3);
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i)
            m(i, j) = 10 * i + j;
    IntVec rows(2, 2, -2); // rows 2 and 0
    IntVec cols(2, 1, 1);  // columns 1 and 2
    DoubleGenMat gathered(m(rows, cols));
    EXPECT_EQ(printed(gathered), "2x2 [\n21 22 \n1 2 \n]");
    // Scattering part of the matrix into itself reads every source element first.
    DoubleGenMat topLeft(m.row(0).slice(0, 2), 1, 2); // (0, 0) and (0, 1), a view over row 0
    m(IntVec(1, 0), IntVec(2, 1, 1)) = topLeft;
    EXPECT_EQ(m(0, 1), 0.0);
    EXPECT_EQ(m(0, 2), 1.0);
    m(rows, cols) = -1.0;
    EXPECT_EQ(m(2, 2), -1.0);
    EXPECT_EQ(m(1, 1), 11.0);
}

TEST(DoubleGenMat, StridedStorageBehavesLikeItsCopy) {
    DoubleVec every(12, 0.0, 1.0);
    DoubleGenMat strided(every.slice(0, 6, 2), 2, 3); // 0 2 4 / 6 8 10 column-major
    EXPECT_EQ(strided.stride(), 2);
    EXPECT_EQ(strided(1, 2), 10.0);
    EXPECT_EQ(strided.row(1), DoubleVec(3, 2.0, 4.0));
    EXPECT_EQ(transpose(strided), transpose(strided.copy()));
    EXPECT_EQ(kronecker(strided, DoubleGenMat(1, 1, 2.0)), strided * 2.0);
    strided.resize(2, 4);
    EXPECT_EQ(strided.stride(), 1);
    EXPECT_EQ(strided(1, 2), 10.0);
    EXPECT_EQ(strided(1, 3), 0.0);
    EXPECT_EQ(every(10), 10.0) << "resize leaves the old storage alone";
}
