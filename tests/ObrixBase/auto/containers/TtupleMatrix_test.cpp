// TtupleMatrix: tuples in column-major order, columns as views and rows and picks as copies,
// component round trips, and the fixed bounds lines that end the process.
#include "ObrixBase/auto/containers/TtupleMatrix.h"

#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/NumericTestData.h"

using obrix::test::vec;

TEST(TtupleMatrix, TuplesAreColumnMajorAndComponentsRoundTrip) {
    TtupleMatrix grid(2, 2, 3, DoubleVec(12, 0.0, 1.0));
    EXPECT_EQ(grid(1, 0), vec({2, 3}));
    EXPECT_EQ(grid(0, 1), vec({4, 5}));
    EXPECT_EQ(grid.row(1), vec({2, 3, 6, 7, 10, 11}));
    EXPECT_EQ(grid.column(2), vec({8, 9, 10, 11}));
    DoubleGenMat x = grid.component(0);
    EXPECT_EQ(x(1, 2), 10.0);
    x += 100.0;
    EXPECT_EQ(grid.setComponent(0, x), 1);
    EXPECT_EQ(grid(1, 2), vec({110, 11}));
    EXPECT_EQ(grid.setComponent(2, x), 0);
    TtupleMatrix picked = grid.cols(IntVec(2, 2, -2)); // columns 2 and 0
    EXPECT_EQ(picked(0, 1), vec({100, 1}));
    grid.bcref(0, 0)(1) = -1.0;
    EXPECT_EQ(picked(0, 1), vec({100, 1})) << "sub-matrices are copies";
    EXPECT_EQ(grid.rows(IntVec(1, 1)).rowVector(0).points(), 3);
}

TEST(TtupleMatrix, ColumnsShareStorageAndLengthsAndBadComponentsChangeNothing) {
    TtupleMatrix grid(2, 2, 2, DoubleVec(8, 0.0, 1.0));
    grid.column(1)(0) = 3.0; // tuple (0, 1) starts at element 4
    EXPECT_EQ(grid(0, 1), vec({3, 5}));
    grid.columnVector(0)[1](1) = 4.0; // tuple (1, 0)
    EXPECT_EQ(grid(1, 0), vec({2, 4}));
    grid.rowVector(0)[0](0) = 99.0;
    EXPECT_EQ(grid(0, 0), vec({0, 1})) << "rows are copies";
    DoubleGenMat lengths = grid.vecLen();
    EXPECT_EQ(lengths(1, 0), std::sqrt(20.0));
    EXPECT_EQ(lengths(0, 1), std::sqrt(34.0));
    EXPECT_EQ(grid.setComponent(0, DoubleGenMat(3, 2, 1.0)), 0) << "shape differs";
    EXPECT_EQ(grid.setComponent(-1, DoubleGenMat(2, 2, 1.0)), 0);
    EXPECT_EQ(grid(0, 1), vec({3, 5}));
    EXPECT_EQ(grid.component(5), DoubleGenMat(2, 2, 0.0));
    TtupleMatrix deep = grid.copy();
    deep(0, 0)(0) = -1.0;
    EXPECT_EQ(grid(0, 0), vec({0, 1}));
}

TEST(TtupleMatrixDeathTest, BadRowsAndColumnsPrintTheFixedLinesAndAbort) {
    TtupleMatrix grid(2, 2, 3, 0.0);
    EXPECT_DEATH(grid.bcval(2, 0), "\\( bad row, 2 \\) in FILE auto/containers/TtupleMatrix.cpp "
                                   "LINE 37\n");
    EXPECT_DEATH(grid.bcval(0, -1), "\\( bad column, -1 \\) in FILE "
                                    "auto/containers/TtupleMatrix.cpp LINE 41\n");
}
