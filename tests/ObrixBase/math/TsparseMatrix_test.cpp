#include "ObrixBase/math/TsparseMatrix.h"

#include <iomanip>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/support/MathErrorCapture.h"
#include "tests/support/NumericTestData.h"

using obrix::test::vec;
using obrix::test::vecOf;

namespace {

// A column-by-column model: the dense columns that were appended.
void expectMatches(const TsparseMatrix& s, const std::vector<DoubleVec>& model, int rows) {
    ASSERT_EQ(s.cols(), static_cast<int>(model.size()));
    int stored = 0;
    for (int j = 0; j < s.cols(); ++j) {
        EXPECT_EQ(s.beginnings()(j), stored) << "columns stay packed in order";
        stored += s.counts()(j);
        for (int i = 0; i < rows; ++i)
            EXPECT_EQ(s.element(i, j), model[static_cast<std::size_t>(j)](i)) << i << "," << j;
    }
    EXPECT_EQ(s.nonZeros(), stored);
}

} // namespace

TEST(TsparseMatrix, AddColRespectsCapacitiesAndGrowsExactly) {
    TsparseMatrix s(4, 1, 2);
    s.rows() = 4;
    EXPECT_EQ(s.addCol(vec({0, 1e-9, -1e-10, 0}), 0), 0) << "all within 1e-9 of zero";
    EXPECT_EQ(s.addCol(vec({0, 2, 0, 3}), 0), 1);
    EXPECT_EQ(s.addCol(vec({1, 0, 0, 0}), 0), 0) << "no column capacity left";
    EXPECT_EQ(s.cols(), 1);
    EXPECT_EQ(s.addCol(vecOf({0, 3}), vec({5}), 1), 0) << "lengths differ";
    EXPECT_EQ(s.addCol(vecOf({0, 2}), vec({5, 6}), 1), 1);
    EXPECT_EQ(s.maxNumberOfCols(), 2);
    EXPECT_EQ(s.maxNumberOfNonZeros(), 4);
    EXPECT_EQ(s.element(2, 1), 6.0);
    EXPECT_EQ(s.element(-1, 0), 0.0);
    EXPECT_EQ(s.element(1, 5), 0.0);
    EXPECT_EQ(s.setElement(0, 0, 9.0), 0) << "never inserts";
    EXPECT_EQ(s.element(0, 0), 0.0);
    EXPECT_EQ(s.setElement(3, 0, 9.0), 1);
    EXPECT_EQ(s.convert().col(0), vec({0, 2, 0, 9}));
    TsparseMatrix shallow(s);
    shallow.setElement(1, 0, -2.0);
    EXPECT_EQ(s.element(1, 0), -2.0);
    shallow.deepenShallowCopy();
    shallow.setElement(1, 0, 7.0);
    EXPECT_EQ(s.element(1, 0), -2.0);
}

TEST(TsparseMatrix, RemovingAndKeepingColumnsInAnyOrderMatchesAModel) {
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> pick(0, 5);
    std::uniform_real_distribution<double> value(-1, 1);
    const int rows = 6;
    for (int trial = 0; trial < 40; ++trial) {
        TsparseMatrix s(rows, 2, 3);
        s.rows() = rows;
        std::vector<DoubleVec> model;
        for (int c = 0; c < 8; ++c) {
            DoubleVec column(rows, 0.0);
            for (int k = pick(rng); k > 0; --k)
                column(pick(rng)) = value(rng);
            if (s.addCol(column, 1) == 1)
                model.push_back(column);
        }
        expectMatches(s, model, rows);
        IntVec which(3);
        for (int k = 0; k < 3; ++k)
            which(k) = pick(rng);
        std::vector<DoubleVec> expected;
        const bool keep = trial % 2 == 0;
        for (int j = 0; j < static_cast<int>(model.size()); ++j) {
            bool listed = false;
            for (int k = 0; k < 3; ++k)
                listed = listed || which(k) == j;
            if (listed == keep)
                expected.push_back(model[static_cast<std::size_t>(j)]);
        }
        if (keep)
            s.keepCols(which);
        else
            s.removeCols(which);
        expectMatches(s, expected, rows);
        if (!expected.empty()) {
            s.removeCol(0);
            expected.erase(expected.begin());
            expectMatches(s, expected, rows);
        }
    }
}

TEST(TsparseMatrix, RemoveZerosSetAndDenseRoundTrip) {
    DoubleGenMat dense(3, 3, 0.0);
    dense(0, 0) = 1;
    dense(2, 1) = 2;
    dense(1, 2) = 3;
    TsparseMatrix s(dense);
    EXPECT_EQ(s.nonZeros(), 3);
    EXPECT_EQ(s.convert(), dense);
    s.setElement(2, 1, 1e-12);
    s.removeZeros();
    EXPECT_EQ(s.nonZeros(), 2);
    EXPECT_EQ(s.counts()(1), 0);
    EXPECT_EQ(s.beginnings()(2), 1);
    EXPECT_EQ(s.element(1, 2), 3.0);
    s.set(DoubleGenMat(2, 2, 4.0), 1, 1); // rows 1-2, columns 1-2
    dense(2, 1) = 0;
    dense(1, 1) = dense(2, 1) = dense(1, 2) = dense(2, 2) = 4;
    EXPECT_EQ(s.convert(), dense);
    EXPECT_EQ(s.row(1), dense.row(1).copy());
    EXPECT_EQ(product(s, vec({1, 2, 3})), product(dense, vec({1, 2, 3})));
    EXPECT_EQ(product(vec({1, 2, 3}), s), product(vec({1, 2, 3}), dense));
    DoubleVec values;
    IntVec rowIndices;
    s.storedCol(2, values, rowIndices);
    EXPECT_EQ(values.length(), 2u);
    TsparseMatrix twice(s);
    twice.deepenShallowCopy();
    EXPECT_EQ(twice.add(twice, 1), 3);
    EXPECT_EQ(twice.cols(), 6);
    EXPECT_EQ(twice.element(1, 5), 4.0);
}

// The text form: the shape, then only what is stored, in storage order.
TEST(TsparseMatrix, PrintsItsShapeAndStoredEntriesColumnByColumn) {
    DoubleGenMat dense(3, 2, 0.0);
    dense(2, 0) = 1.5;
    dense(0, 1) = -2;
    dense(1, 1) = 1.0 / 3.0;
    std::ostringstream out;
    out << std::setprecision(3) << TsparseMatrix(dense) << ' ' << TsparseMatrix();
    EXPECT_EQ(out.str(), "3x2 sparse [(2, 0) 1.5, (0, 1) -2, (1, 1) 0.333] 0x0 sparse []");
}
