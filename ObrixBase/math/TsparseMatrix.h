// A column-compressed sparse matrix of doubles built column by column. Columns are appended,
// kept, removed or overwritten as a whole; stored entries can be read and overwritten but
// setElement never inserts. Capacities (maxRows, maxCols, maxNonZeros) are allocated apart from
// the shape so that appending within them never reallocates. Values not stored read as 0.
#ifndef OBRIX_MATH_TSPARSEMATRIX_H
#define OBRIX_MATH_TSPARSEMATRIX_H

#include <iosfwd>
#include <vector>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"

/// Sparse matrix, compressed by column. Column j's entries are positions beginnings()(j) to
/// beginnings()(j) + counts()(j) - 1 of indices() (row numbers) and data() (values).
class OBRIX_API TsparseMatrix {
public:
    /// 0 x 0 with no capacity.
    TsparseMatrix();
    /// 0 x 0 with room for `maxCols` columns and no stored entries (addCol with grow
    /// allocates them).
    TsparseMatrix(int maxRows, int maxCols);
    /// 0 x 0 with room for `maxCols` columns and `maxNonZeros` entries.
    TsparseMatrix(int maxRows, int maxCols, int maxNonZeros);
    /// The entries of `dense` that are not exactly 0, column by column, with the dense
    /// matrix's shape; the capacities are exactly what it needs.
    explicit TsparseMatrix(const DoubleGenMat& dense);
    /// Shallow: shares the four vectors.
    TsparseMatrix(const TsparseMatrix& other) = default;
    /// Shallow, like the copy: this matrix then shares `other`'s vectors.
    TsparseMatrix& operator=(const TsparseMatrix& other);
    ~TsparseMatrix() = default;

    /// Shares `other`'s vectors and takes its shape and capacities.
    TsparseMatrix& reference(const TsparseMatrix& other);
    /// Makes all four vectors private and contiguous.
    void deepenShallowCopy();

    /// Raises the capacities to at least the given ones; they never shrink. Growing maxCols
    /// resizes beginnings and counts (new entries 0).
    void resizeMax(int maxRows, int maxCols);
    /// The same, and growing maxNonZeros resizes indices and data.
    void resizeMax(int maxRows, int maxCols, int maxNonZeros);

    /// The value at (i, j): 0 outside the shape or when not stored; the first stored entry of
    /// row i in column j otherwise. Never raises.
    double element(int i, int j) const;
    /// Same as element(i, j): reading never raises, so the operator needs no checked twin.
    double operator()(int i, int j) const { return element(i, j); }
    /// Overwrites the stored entry (i, j) and returns 1; returns 0 and stores nothing when
    /// (i, j) is outside the shape or not stored.
    int setElement(int i, int j, double x);

    /// Appends the entries of `column` with |x| > 1e-9. Returns 1 when a column was added; 0
    /// for an all-zero column or when it does not fit and `grow` is 0. As with the other
    /// form, the row count is not changed: set rows() for the new entries to be read.
    int addCol(const DoubleVec& column, int grow);
    /// Appends a column of the given rows and values. Returns 0 and changes nothing when
    /// there are no entries, the lengths differ, or it does not fit and `grow` is 0; with
    /// `grow` the capacities are raised to exactly what is needed. The row count is not
    /// changed: set rows() for entries beyond it to be read.
    int addCol(const IntVec& rowIndices, const DoubleVec& values, int grow);
    /// Appends every column of `dense` with addCol (all-zero columns are skipped). Returns
    /// the number of columns added.
    int add(const DoubleGenMat& dense, int grow);
    /// Appends every stored column of `other`. Returns the number of columns added.
    int add(const TsparseMatrix& other, int grow);

    /// Drops column j (nothing for an index outside the shape).
    void removeCol(int j);
    /// Drops the listed columns, given in any order; duplicates and indices outside the
    /// shape are ignored.
    void removeCols(const IntVec& columns);
    /// Keeps only the listed columns, in their present order.
    void keepCols(const IntVec& columns);
    /// Drops stored entries with |x| <= 1e-9, closing the gaps.
    void removeZeros();

    /// Row i as a dense vector of cols() elements.
    DoubleVec row(int i) const;
    /// Column j as a dense vector of rows() elements.
    DoubleVec col(int j) const;
    /// The stored entries of column j: `values` and `rowIndices` are rebound to new vectors.
    void storedCol(int j, DoubleVec& values, IntVec& rowIndices) const;
    /// The dense matrix.
    DoubleGenMat convert() const;
    /// Overwrites the block of `block`'s size at (i, j) with its non-zero entries (the part
    /// inside the shape); grows the entry capacity when needed.
    void set(const DoubleGenMat& block, int i, int j);

    ///@{
    /// The logical shape; the writable forms let callers widen it over entries already stored.
    int rows() const noexcept { return rows_; }
    int& rows() noexcept { return rows_; }
    int cols() const noexcept { return cols_; }
    int& cols() noexcept { return cols_; }
    ///@}
    /// The number of stored entries.
    int nonZeros() const noexcept { return nonZeros_; }
    ///@{
    /// The capacities.
    int maxNumberOfRows() const noexcept { return maxRows_; }
    int maxNumberOfCols() const noexcept { return maxCols_; }
    int maxNumberOfNonZeros() const noexcept { return maxNonZeros_; }
    ///@}
    ///@{
    /// The four storage vectors, as shallow views of the whole capacity.
    const IntVec& beginnings() const noexcept { return beginnings_; }
    const IntVec& counts() const noexcept { return counts_; }
    const IntVec& indices() const noexcept { return indices_; }
    const DoubleVec& data() const noexcept { return data_; }
    ///@}

private:
    // Rewrites the stored columns as the columns listed in `kept` (ascending, in range).
    void compactColumns(const std::vector<int>& kept);

    int rows_;
    int cols_;
    int nonZeros_;
    int maxRows_;
    int maxCols_;
    int maxNonZeros_;
    IntVec beginnings_;
    IntVec counts_;
    IntVec indices_;
    DoubleVec data_;
};

/// S x v (`MATX_MATVECPROD` (0x4014) unless v has cols() elements).
OBRIX_API DoubleVec product(const TsparseMatrix& s, const DoubleVec& v);
/// v x S (`MATX_VECMATPROD` (0x4015) unless v has rows() elements).
OBRIX_API DoubleVec product(const DoubleVec& v, const TsparseMatrix& s);

/// "RxC sparse [(i, j) v, ...]": the shape and the stored entries in storage order (column by
/// column), with the stream's number format; "RxC sparse []" when nothing is stored.
OBRIX_API std::ostream& operator<<(std::ostream& out, const TsparseMatrix& s);

#endif
