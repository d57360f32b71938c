// Column-major general matrices of doubles and ints (DoubleGenMat, IntGenMat) and their
// index-list views. A matrix is a vector (DoubleVec.h) with a shape: element (i, j) is vector
// element rows * j + i. Rows, columns and diagonals are slices sharing the matrix's block;
// copies are shallow; assignment copies elements. Checks report through the numeric error
// handler with catalogue 4 (MathError.h).
#ifndef OBRIX_MATH_DOUBLEGENMAT_H
#define OBRIX_MATH_DOUBLEGENMAT_H

#include <cstddef>
#include <iosfwd>
#include <type_traits>

#include "ObrixBase/ObrixBuildOptions.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleVec.h"

template <class T>
class NumGenMat;
template <class T>
class NumGenMatPick;
class DoubleSymMat;
class DoubleLowerTriMat;
class DoubleUpperTriMat;

/// General column-major matrix of doubles.
using DoubleGenMat = NumGenMat<double>;
/// General column-major matrix of ints.
using IntGenMat = NumGenMat<int>;
/// Index-list view of a DoubleGenMat.
using DoubleGenMatPick = NumGenMatPick<double>;
/// Index-list view of an IntGenMat.
using IntGenMatPick = NumGenMatPick<int>;

/// A rows x columns matrix over a strided vector. Instantiated for double and int.
template <class T>
class OBRIX_API NumGenMat {
public:
    /// The element type.
    using value_type = T;

    /// 0 x 0.
    NumGenMat();
    /// Uninitialised elements.
    NumGenMat(unsigned rows, unsigned cols);
    /// Every element equal to `value`.
    NumGenMat(unsigned rows, unsigned cols, T value);
    /// rows x cols elements copied in column-major order from `values` (not kept).
    NumGenMat(const T* values, unsigned rows, unsigned cols);
    /// Shallow: shares the storage.
    NumGenMat(const NumGenMat& other) noexcept = default;
    /// Shares `data`'s block; raises `MATX_NPOINTS` (0x400A) unless its length is rows * cols.
    NumGenMat(const NumVec<T>& data, unsigned rows, unsigned cols);
    /// Element-wise conversion from an IntGenMat (a new matrix).
    template <class U = T>
    requires obrix::DoubleOnly<U>
    explicit NumGenMat(const NumGenMat<int>& other);
    ///@{
    /// The full matrix of a packed one: both triangles of a symmetric matrix, zeros in the
    /// empty triangle of a triangular one.
    template <class U = T>
    requires obrix::DoubleOnly<U>
    explicit NumGenMat(const DoubleSymMat& m);
    template <class U = T>
    requires obrix::DoubleOnly<U>
    explicit NumGenMat(const DoubleLowerTriMat& m);
    template <class U = T>
    requires obrix::DoubleOnly<U>
    explicit NumGenMat(const DoubleUpperTriMat& m);
    ///@}
    /// Gathers the picked elements into a new matrix.
    NumGenMat(const NumGenMatPick<T>& pick);
    ~NumGenMat() = default;

    /// Copies elements; raises `MATX_MATSIZE` (0x4004) unless the shapes match.
    NumGenMat& operator=(const NumGenMat& other);
    /// Sets every element.
    NumGenMat& operator=(T value);
    /// Rebinds to `other`'s storage and shape.
    NumGenMat& reference(const NumGenMat& other) noexcept;
    /// A new matrix with its own contiguous storage.
    NumGenMat copy() const;
    /// Same as copy().
    NumGenMat deepCopy() const { return copy(); }
    /// Makes the storage exclusive and contiguous.
    void deepenShallowCopy() { vec_.deepenShallowCopy(); }
    /// New uninitialised storage of rows x cols (nothing kept).
    void reshape(unsigned rows, unsigned cols);
    /// New storage of rows x cols keeping the overlapping top-left part, the rest zero.
    void resize(unsigned rows, unsigned cols);
    /// Sets every element to 0.
    void zero() { vec_ = T(0); }

    ///@{
    /// The shape.
    unsigned rows() const noexcept { return nrows_; }
    unsigned cols() const noexcept { return ncols_; }
    ///@}
    /// The elements as one vector in column-major order (shares the storage).
    const NumVec<T>& dataVec() const noexcept { return vec_; }
    /// The element vector's stride (1 unless the matrix was built over a strided vector).
    int stride() const noexcept { return vec_.stride(); }
    ///@{
    /// The element (0, 0), for kernels that take column-major storage with leading dimension
    /// rows() (when stride() is 1).
    T* data() noexcept { return vec_.data(); }
    const T* data() const noexcept { return vec_.data(); }
    ///@}

    ///@{
    /// Element access without a check, the inner-loop accessor; in a build with
    /// OBRIX_CHECKED_INDEXING it checks as bcref does (`MATX_BOUNDS`).
    T& operator()(int i, int j) noexcept(!OBRIX_CHECKED_INDEXING) {
        if constexpr (OBRIX_CHECKED_INDEXING)
            boundsCheck(i, j);
        return vec_.data()[offset(i, j)];
    }
    T operator()(int i, int j) const noexcept(!OBRIX_CHECKED_INDEXING) {
        if constexpr (OBRIX_CHECKED_INDEXING)
            boundsCheck(i, j);
        return vec_.data()[offset(i, j)];
    }
    ///@}
    ///@{
    /// Checked element access (`MATX_BOUNDS` (0x4005)).
    T& bcref(int i, int j) {
        if constexpr (!OBRIX_CHECKED_INDEXING) // operator() checks in the checking build
            boundsCheck(i, j);
        return (*this)(i, j);
    }
    T bcval(int i, int j) const {
        if constexpr (!OBRIX_CHECKED_INDEXING) // operator() checks in the checking build
            boundsCheck(i, j);
        return (*this)(i, j);
    }
    T bcset(int i, int j, T x) {
        if constexpr (!OBRIX_CHECKED_INDEXING) // operator() checks in the checking build
            boundsCheck(i, j);
        return (*this)(i, j) = x;
    }
    ///@}
    /// Stores x at (i, j) through operator() and returns it.
    T set(int i, int j, T x) noexcept(!OBRIX_CHECKED_INDEXING) { return (*this)(i, j) = x; }

    /// Row i as a view (length cols, stride rows).
    NumVec<T> row(int i) const { return NumVec<T>(vec_, i, ncols_, static_cast<int>(nrows_)); }
    /// Column j as a view (length rows, stride 1).
    NumVec<T> col(int j) const { return NumVec<T>(vec_, static_cast<int>(nrows_) * j, nrows_, 1); }
    /// Diagonal k (0 main, k > 0 above, k < 0 below) as a view of stride rows + 1.
    NumVec<T> diagonal(int k = 0) const;
    ///@{
    /// Checked forms: `MATX_ROWBOUNDS` (0x4006), `MATX_COLBOUNDS` (0x4007), `MATX_DIAGBOUNDS`
    /// (0x4008).
    NumVec<T> bcrow(int i) const;
    NumVec<T> bccol(int j) const;
    NumVec<T> bcdiagonal(int k = 0) const;
    ///@}
    /// An index-list view of the rows and columns listed (checked: `MATX_PICKRANGE` (0x4001)).
    NumGenMatPick<T> operator()(const NumVec<int>& rowIndices, const NumVec<int>& colIndices);

    /// Raises `MATX_BOUNDS` (0x4005) (i, j, rows, cols) unless (i, j) lies in the matrix.
    void boundsCheck(int i, int j) const;
    /// Raises `MATX_MATSIZE` (0x4004) with both shapes unless `other` has this one's shape.
    void shapeCheck(const NumGenMat& other) const;

    /// Same shape and equal elements, compared in column-major order.
    bool operator==(const NumGenMat& other) const;
    /// Not equal: another shape or another element somewhere.
    bool operator!=(const NumGenMat& other) const { return !(*this == other); }
    ///@{
    /// Add or subtract 1 to every element in place.
    NumGenMat& operator++();
    NumGenMat& operator--();
    ///@}
    ///@{
    /// In-place element-wise arithmetic (`MATX_MATSIZE` (0x4004) on shape).
    NumGenMat& operator+=(const NumGenMat& other);
    NumGenMat& operator-=(const NumGenMat& other);
    NumGenMat& operator*=(const NumGenMat& other);
    NumGenMat& operator/=(const NumGenMat& other);
    NumGenMat& operator+=(T value);
    NumGenMat& operator-=(T value);
    NumGenMat& operator*=(T value);
    NumGenMat& operator/=(T value);
    ///@}

    /// f applied to every element, as a new matrix.
    NumGenMat apply(T (*f)(T)) const;

    /// Writes "RxC [\n", each row with the stream's field width per element, then "]".
    void printOn(std::ostream& out) const;
    /// Reads what printOn writes and takes the shape read. Malformed input fails the stream
    /// and leaves the matrix unchanged.
    void scanFrom(std::istream& in);

private:
    std::ptrdiff_t offset(int i, int j) const noexcept {
        return (static_cast<std::ptrdiff_t>(nrows_) * j + i) * vec_.stride();
    }

    NumVec<T> vec_;
    unsigned ncols_;
    unsigned nrows_;
};

/// An index-list view: element (r, c) is M(rowIndices(r), colIndices(c)).
template <class T>
class OBRIX_API NumGenMatPick {
public:
    /// Checks every index from last to first (`MATX_PICKRANGE` (0x4001)).
    NumGenMatPick(const NumGenMat<T>& matrix, const NumVec<int>& rowIndices,
                  const NumVec<int>& colIndices);
    /// Shallow: shares the matrix and both index vectors.
    NumGenMatPick(const NumGenMatPick&) = default;
    /// Scatters a matrix of the pick's shape (`MATX_MATSIZE` (0x4004) otherwise).
    NumGenMatPick& operator=(const NumGenMat<T>& values);
    /// Sets every picked element.
    NumGenMatPick& operator=(T value);

    ///@{
    /// The pick's shape: the lengths of the row and column index vectors.
    unsigned rows() const noexcept { return rows_.length(); }
    unsigned cols() const noexcept { return cols_.length(); }
    ///@}
    ///@{
    /// Unchecked: M(rowIndices(r), colIndices(c)); with OBRIX_CHECKED_INDEXING every step is
    /// checked.
    T& operator()(int r, int c) noexcept(!OBRIX_CHECKED_INDEXING) {
        return matrix_(rows_(r), cols_(c));
    }
    T operator()(int r, int c) const noexcept(!OBRIX_CHECKED_INDEXING) {
        return matrix_(rows_(r), cols_(c));
    }
    ///@}

private:
    NumGenMat<T> matrix_;
    NumVec<int> rows_;
    NumVec<int> cols_;
};

/// Unary minus, as a new matrix.
template <class T>
OBRIX_API NumGenMat<T> operator-(const NumGenMat<T>& m);
///@{
/// Element-wise arithmetic of same-shaped matrices (`MATX_MATSIZE` (0x4004) otherwise).
template <class T>
OBRIX_API NumGenMat<T> operator+(const NumGenMat<T>& a, const NumGenMat<T>& b);
template <class T>
OBRIX_API NumGenMat<T> operator-(const NumGenMat<T>& a, const NumGenMat<T>& b);
template <class T>
OBRIX_API NumGenMat<T> operator*(const NumGenMat<T>& a, const NumGenMat<T>& b);
template <class T>
OBRIX_API NumGenMat<T> operator/(const NumGenMat<T>& a, const NumGenMat<T>& b);
template <class T>
OBRIX_API NumGenMat<T> operator+(const NumGenMat<T>& a, std::type_identity_t<T> s);
template <class T>
OBRIX_API NumGenMat<T> operator+(std::type_identity_t<T> s, const NumGenMat<T>& a);
template <class T>
OBRIX_API NumGenMat<T> operator-(const NumGenMat<T>& a, std::type_identity_t<T> s);
template <class T>
OBRIX_API NumGenMat<T> operator-(std::type_identity_t<T> s, const NumGenMat<T>& a);
template <class T>
OBRIX_API NumGenMat<T> operator*(const NumGenMat<T>& a, std::type_identity_t<T> s);
template <class T>
OBRIX_API NumGenMat<T> operator*(std::type_identity_t<T> s, const NumGenMat<T>& a);
template <class T>
OBRIX_API NumGenMat<T> operator/(const NumGenMat<T>& a, std::type_identity_t<T> s);
template <class T>
OBRIX_API NumGenMat<T> operator/(std::type_identity_t<T> s, const NumGenMat<T>& a);
///@}

/// Absolute values of every element.
template <class T>
OBRIX_API NumGenMat<T> abs(const NumGenMat<T>& m);
/// A x B (`MATX_MATMATPROD` (0x4016) unless A.cols == B.rows): element (i, j) is dot(row i of A,
/// column j of B).
template <class T>
OBRIX_API NumGenMat<T> product(const NumGenMat<T>& a, const NumGenMat<T>& b);
/// A^T x B (`MATX_MATMATPROD` (0x4016) unless A.rows == B.rows).
template <class T>
OBRIX_API NumGenMat<T> transposeProduct(const NumGenMat<T>& a, const NumGenMat<T>& b);
/// A x B^T (`MATX_MATMATPROD` (0x4016) unless A.cols == B.cols).
template <class T>
OBRIX_API NumGenMat<T> transProduct(const NumGenMat<T>& a, const NumGenMat<T>& b);
/// A x v (`MATX_MATVECPROD` (0x4014) unless v has A.cols elements).
template <class T>
OBRIX_API NumVec<T> product(const NumGenMat<T>& a, const NumVec<T>& v);
/// v x A (`MATX_VECMATPROD` (0x4015) unless v has A.rows elements).
template <class T>
OBRIX_API NumVec<T> product(const NumVec<T>& v, const NumGenMat<T>& a);
/// A new cols x rows matrix.
template <class T>
OBRIX_API NumGenMat<T> transpose(const NumGenMat<T>& a);
/// The Kronecker product: block (i, j) is A(i, j) x B.
template <class T>
OBRIX_API NumGenMat<T> kronecker(const NumGenMat<T>& a, const NumGenMat<T>& b);
/// Element-wise truncation toward zero.
OBRIX_API IntGenMat toInt(const DoubleGenMat& m);

/// printOn and scanFrom.
template <class T>
///@{
OBRIX_API std::ostream& operator<<(std::ostream& out, const NumGenMat<T>& m);
template <class T>
OBRIX_API std::istream& operator>>(std::istream& in, NumGenMat<T>& m);
///@}

#endif
