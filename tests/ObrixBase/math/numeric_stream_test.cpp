// Text output of the sparse matrix: the shape, then only what is stored, in storage order.
#include "ObrixBase/math/TsparseMatrix.h"

#include <iomanip>
#include <sstream>

#include <gtest/gtest.h>

TEST(NumericStream, ASparseMatrixPrintsItsShapeAndStoredEntriesColumnByColumn) {
    DoubleGenMat dense(3, 2, 0.0);
    dense(2, 0) = 1.5;
    dense(0, 1) = -2;
    dense(1, 1) = 1.0 / 3.0;
    std::ostringstream out;
    out << std::setprecision(3) << TsparseMatrix(dense) << ' ' << TsparseMatrix();
    EXPECT_EQ(out.str(), "3x2 sparse [(2, 0) 1.5, (0, 1) -2, (1, 1) 0.333] 0x0 sparse []");
}
