// A rows x cols grid of fixed-size tuples of doubles in one DoubleVec: the tuple at (r, c)
// starts at element (r + c * rows) * tupleSize (tuples in column-major order, each contiguous).
// Index checks are hard assertions that print and abort, as for TtupleVector.
#ifndef OBRIX_AUTO_CONTAINERS_TTUPLEMATRIX_H
#define OBRIX_AUTO_CONTAINERS_TTUPLEMATRIX_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/auto/containers/TtupleVector.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"

/// A grid of tuples of `tupleSize()` doubles.
class OBRIX_API TtupleMatrix {
public:
    /// 0 x 0, tuple size 1.
    TtupleMatrix();
    /// Shares `data`, which should hold rows * cols * tupleSize doubles. A tuple size below 1
    /// is taken as 1.
    TtupleMatrix(int tupleSize, int rows, int cols, const DoubleVec& data);
    /// Every coordinate `value`.
    TtupleMatrix(int tupleSize, int rows, int cols, double value);
    /// Shallow.
    TtupleMatrix(const TtupleMatrix& other) = default;
    /// Shallow, like the copy.
    TtupleMatrix& operator=(const TtupleMatrix& other);
    ~TtupleMatrix() = default;

    /// The tuple at (r, c) as a view, unchecked (checked as bcref in a build with
    /// OBRIX_CHECKED_INDEXING).
    DoubleVec operator()(int r, int c);
    /// A copy of the tuple at (r, c), unchecked.
    DoubleVec operator()(int r, int c) const;
    ///@{
    /// Checked forms of operator(): boundsCheck first.
    DoubleVec bcref(int r, int c);
    DoubleVec bcval(int r, int c) const;
    ///@}

    /// Prints "**** Bounds checking ( bad row, r ) in FILE ... LINE 37" (or "bad column",
    /// LINE 41) through rptError and aborts unless (r, c) is in the grid.
    void boundsCheck(int r, int c) const;
    ///@{
    /// Index predicates: 0 <= r < rows(), 0 <= c < cols(), 0 <= k < tupleSize().
    bool correctRow(int r) const { return r >= 0 && r < rows_; }
    bool correctCol(int c) const { return c >= 0 && c < cols_; }
    bool correctTuple(int k) const { return k >= 0 && k < tupleSize_; }
    ///@}

    ///@{
    /// Coordinates per tuple (at least 1) and the grid's shape.
    int tupleSize() const noexcept { return tupleSize_; }
    int rows() const noexcept { return rows_; }
    int cols() const noexcept { return cols_; }
    ///@}

    /// The tuples of row r one after the other (a copy: they are not contiguous).
    DoubleVec row(int r) const;
    /// The tuples of column c one after the other, as a view sharing the storage.
    DoubleVec column(int c) const;
    ///@{
    /// Row r and column c as tuple vectors (a copy and a view, as above).
    TtupleVector rowVector(int r) const;
    TtupleVector columnVector(int c) const;
    ///@}
    /// A new matrix of the listed rows (all columns), in the order listed; checked.
    TtupleMatrix rows(const IntVec& which) const;
    /// A new matrix of the listed columns (all rows), in the order listed; checked.
    TtupleMatrix cols(const IntVec& which) const;

    /// Coordinate k of every tuple as a rows x cols matrix (a copy; zeros when k is not a
    /// coordinate).
    DoubleGenMat component(int k) const;
    /// Writes coordinate k of every tuple from a rows x cols matrix. Returns 1, or 0 and
    /// changes nothing when k is not a coordinate or the shape differs.
    int setComponent(int k, const DoubleGenMat& values);
    /// The Euclidean length of every tuple as a rows x cols matrix.
    DoubleGenMat vecLen() const;

    ///@{
    /// A deep copy; rebinding to `other`'s storage and shape; the element vector (shallow).
    TtupleMatrix copy() const;
    TtupleMatrix& reference(const TtupleMatrix& other);
    void deepenShallowCopy() { data_.deepenShallowCopy(); }
    const DoubleVec& data() const noexcept { return data_; }
    ///@}

private:
    int start(int r, int c) const noexcept { return (r + c * rows_) * tupleSize_; }

    int tupleSize_;
    int rows_;
    int cols_;
    DoubleVec data_;
};

#endif
