// Strided vectors of doubles, ints and signed chars (DoubleVec, IntVec, SCharVec) and their
// index-list views (DoubleVecPick, IntVecPick, SCharVecPick). A vector is a view: a block, a
// pointer to element 0, a length and a stride. Copies, slices and picks share the block;
// assignment copies elements (it never rebinds; use reference() for that). Failed checks are
// reported through the numeric error handler (MathError.h), never thrown.
#ifndef OBRIX_MATH_DOUBLEVEC_H
#define OBRIX_MATH_DOUBLEVEC_H

#include <cstddef>
#include <iosfwd>
#include <type_traits>

#include "ObrixBase/ObrixBuildOptions.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/MathError.h"
#include "ObrixBase/math/RWBlock.h"

template <class T>
class NumVec;
template <class T>
class NumVecPick;

/// Vector of doubles.
using DoubleVec = NumVec<double>;
/// Vector of ints.
using IntVec = NumVec<int>;
/// Vector of signed chars (printed and read as numbers).
using SCharVec = NumVec<signed char>;
/// Index-list view of a DoubleVec.
using DoubleVecPick = NumVecPick<double>;
/// Index-list view of an IntVec.
using IntVecPick = NumVecPick<int>;
/// Index-list view of an SCharVec.
using SCharVecPick = NumVecPick<signed char>;

namespace obrix {
/// The element type of the members that only DoubleVec (and DoubleGenMat) have.
template <class U>
concept DoubleOnly = std::is_same_v<U, double>;

/// The class names that numeric messages print for each element type.
template <class T>
struct NumericNames;
/// The names for double elements.
template <>
struct NumericNames<double> {
    ///@{
    /// The vector, its pick, the matrix and the matrix pick, as messages name them.
    static constexpr const char* vec = "DoubleVec";
    static constexpr const char* pick = "DoubleVecPick";
    static constexpr const char* mat = "DoubleGenMat";
    static constexpr const char* matPick = "DoubleGenMatPick";
    ///@}
};
/// The names for int elements.
template <>
struct NumericNames<int> {
    ///@{
    /// The vector, its pick, the matrix and the matrix pick, as messages name them.
    static constexpr const char* vec = "IntVec";
    static constexpr const char* pick = "IntVecPick";
    static constexpr const char* mat = "IntGenMat";
    static constexpr const char* matPick = "IntGenMatPick";
    ///@}
};
/// The names for signed char elements (there is no signed char matrix; the names keep the
/// messages uniform).
template <>
struct NumericNames<signed char> {
    ///@{
    /// The vector, its pick, the matrix and the matrix pick, as messages name them.
    static constexpr const char* vec = "SCharVec";
    static constexpr const char* pick = "SCharVecPick";
    static constexpr const char* mat = "SCharGenMat";
    static constexpr const char* matPick = "SCharGenMatPick";
    ///@}
};
} // namespace obrix

/// A strided view of elements of type T in a shared RWBlock. Element i is at
/// data()[i * stride()]. Instantiated for double, int and signed char only.
template <class T>
class OBRIX_API NumVec {
public:
    /// The element type.
    using value_type = T;
    /// Unary element function of DoubleVec::apply.
    using ElementFunction = T (*)(T);

    /// Length 0 with its own zero-length block, stride 1.
    NumVec();
    /// `n` uninitialised elements.
    explicit NumVec(unsigned n);
    /// `n` elements equal to `value`.
    NumVec(unsigned n, T value);
    /// A ramp: element 0 is `start`, each further element the previous plus `increment`.
    NumVec(unsigned n, T start, T increment);
    /// `n` elements copied from contiguous `values` (not owned, not kept).
    NumVec(const T* values, unsigned n);
    /// Shallow: shares `other`'s block, data pointer, length and stride.
    NumVec(const NumVec& other) noexcept;
    /// Gathers the picked elements into a new contiguous vector.
    NumVec(const NumVecPick<T>& pick);
    /// Unchecked slice of `source`: element i is source(start + i * stride). slice() checks.
    NumVec(const NumVec& source, int start, unsigned n, int stride) noexcept;
    /// Wraps `block` without taking a reference: the new view owns the caller's reference.
    NumVec(RWBlock* block, T* data, unsigned n, int stride) noexcept;
    /// Releases this view's reference (inline: every temporary result ends here).
    ~NumVec() { RWBlock::release(block_); }

    /// Copies elements (lengthCheck first); overlapping sources are copied out first.
    NumVec& operator=(const NumVec& other);
    /// Gathers the picked elements (lengthCheck first).
    NumVec& operator=(const NumVecPick<T>& pick);
    /// Sets every element of the view.
    NumVec& operator=(T value);
    /// Rebinds this view to `other`'s storage (the only way to share an existing vector).
    NumVec& reference(const NumVec& other) noexcept;
    /// A new contiguous vector with its own block.
    NumVec copy() const;
    /// Same as copy().
    NumVec deepCopy() const { return copy(); }
    /// Makes the storage exclusive and contiguous (stride 1); no-op when it already is.
    void deepenShallowCopy();
    /// Length `n` over a new uninitialised block when n differs; contents are not kept.
    void reshape(unsigned n);
    /// Length `n` over a new block keeping the first min(old, n) elements; new ones are 0.
    void resize(unsigned n);

    ///@{
    /// The element count, the distance in elements between neighbours, element 0 of this
    /// view (inside the block, not necessarily at its start) and the shared block.
    unsigned length() const noexcept { return length_; }
    int stride() const noexcept { return stride_; }
    T* data() noexcept { return data_; }
    const T* data() const noexcept { return data_; }
    RWBlock* block() const noexcept { return block_; }
    ///@}

    /// Checked element access (boundsCheck).
    T& operator[](int i) {
        boundsCheck(i);
        return data_[static_cast<std::ptrdiff_t>(i) * stride_];
    }
    /// The same for a const view; returns a copy of the element.
    T operator[](int i) const {
        boundsCheck(i);
        return data_[static_cast<std::ptrdiff_t>(i) * stride_];
    }
    ///@{
    /// Element access without a check, the inner-loop accessor; in a build with
    /// OBRIX_CHECKED_INDEXING it checks as operator[] does.
    T& operator()(int i) noexcept(!OBRIX_CHECKED_INDEXING) {
        if constexpr (OBRIX_CHECKED_INDEXING)
            boundsCheck(i);
        return data_[static_cast<std::ptrdiff_t>(i) * stride_];
    }
    T operator()(int i) const noexcept(!OBRIX_CHECKED_INDEXING) {
        if constexpr (OBRIX_CHECKED_INDEXING)
            boundsCheck(i);
        return data_[static_cast<std::ptrdiff_t>(i) * stride_];
    }
    ///@}

    /// A view of `n` elements from `start` by `stride` (negative allowed), sharing the block;
    /// sliceCheck first.
    NumVec slice(int start, unsigned n, int stride = 1) const;
    /// An index-list view over this vector's storage.
    NumVecPick<T> vecPick(const NumVec<int>& indices) const;

    /// Raises INDEX (i, length - 1) unless 0 <= i < length.
    void boundsCheck(int i) const {
        if (i < 0 || static_cast<unsigned>(i) >= length_)
            indexError(i);
    }
    /// Raises VNMATCH (length, n) unless length == n.
    void lengthCheck(unsigned n) const {
        if (length_ != n)
            lengthError(n);
    }
    /// Raises SLICE unless n == 0 or both start and the last index are inside the vector.
    void sliceCheck(int start, unsigned n, int stride) const;
    /// Raises STRIDE unless the stride is 1.
    void strideCheck() const;
    /// Raises ZEROVEC (class name, fn); by default that continues.
    void emptyErr(const char* fn) const;

    /// Equal lengths and equal elements in order.
    bool operator==(const NumVec& other) const;
    /// Not equal: another length or another element somewhere.
    bool operator!=(const NumVec& other) const { return !(*this == other); }
    ///@{
    /// Add or subtract 1 to every element in place.
    NumVec& operator++();
    NumVec& operator--();
    ///@}
    ///@{
    /// In-place element-wise arithmetic through the view's stride (VNMATCH on length).
    NumVec& operator+=(const NumVec& other);
    NumVec& operator-=(const NumVec& other);
    NumVec& operator*=(const NumVec& other);
    NumVec& operator/=(const NumVec& other);
    NumVec& operator+=(T value);
    NumVec& operator-=(T value);
    NumVec& operator*=(T value);
    NumVec& operator/=(T value);
    ///@}

    /// Elements per line when printing (initially 5, one setting per element type); returns
    /// the previous setting.
    static int setFormatting(int perLine);
    /// Writes "[ a b c ]", or one line per group of setFormatting() elements.
    void printOn(std::ostream& out) const;
    /// Reads a bracketed or a bare list of numbers; the length becomes the count read.
    void scanFrom(std::istream& in);

    /// f applied to every element, as a new vector.
    NumVec apply(ElementFunction f) const;

    // Queries of DoubleVec. `tol` is absolute: x is near v when |x - v| <= tol. They are
    // member templates so that the int and signed char vectors never instantiate them.
    /// Sets elements with |x| <= tol to 0, in place.
    template <class U = T>
    requires obrix::DoubleOnly<U>
    void clampZero(double tol);
    /// 1 when every element is near v (an empty vector gives 1), else 0.
    template <class U = T>
    requires obrix::DoubleOnly<U>
    int isEqual(double v, double tol) const;
    /// 1 when every element is near 0 (isEqual with v = 0).
    template <class U = T>
    requires obrix::DoubleOnly<U>
    int isZero(double tol) const { return isEqual<U>(0.0, tol); }
    /// Number of elements near v.
    template <class U = T>
    requires obrix::DoubleOnly<U>
    int countValue(double v, double tol) const;
    /// Number of elements near 0.
    template <class U = T>
    requires obrix::DoubleOnly<U>
    int countZero(double tol) const { return countValue<U>(0.0, tol); }
    /// Ascending indices of the elements near v.
    template <class U = T>
    requires obrix::DoubleOnly<U> NumVec<int> valueIndex(double v, double tol)
    const;
    /// Ascending indices of the elements near 0.
    template <class U = T>
    requires obrix::DoubleOnly<U> NumVec<int> zeroIndex(double tol)
    const { return valueIndex<U>(0.0, tol); }
    /// Ascending indices of the elements not near v.
    template <class U = T>
    requires obrix::DoubleOnly<U> NumVec<int> nonValueIndex(double v, double tol)
    const;
    /// Ascending indices of the elements not near 0.
    template <class U = T>
    requires obrix::DoubleOnly<U> NumVec<int> nonZeroIndex(double tol)
    const { return nonValueIndex<U>(0.0, tol); }
    /// Ascending indices of the elements strictly less than v.
    template <class U = T>
    requires obrix::DoubleOnly<U> NumVec<int> lessIndex(double v)
    const;
    /// Euclidean length.
    template <class U = T>
    requires obrix::DoubleOnly<U>
    double vecLen() const;
    /// Scales to unit length and returns 1 when vecLen() > 0; else unchanged and 0.
    template <class U = T>
    requires obrix::DoubleOnly<U>
    int normalise();

private:
    void indexError(int i) const;
    void lengthError(unsigned n) const;

    RWBlock* block_;
    T* data_;
    unsigned length_;
    int stride_;

    static int perLine_;
};

/// An index-list view: element k is vector(indices(k)). Shares the vector's block and the
/// index vector. Every use runs assertElements() first.
template <class T>
class OBRIX_API NumVecPick {
public:
    /// A view of `vector` (shared block) through `indices` (shared); nothing is checked until
    /// the pick is used.
    NumVecPick(const NumVec<T>& vector, const NumVec<int>& indices);
    /// Shallow: shares the viewed vector and the index vector.
    NumVecPick(const NumVecPick& other) = default;

    /// Scatters `values` through the indices (lengthCheck first).
    NumVecPick& operator=(const NumVec<T>& values);
    /// Scatters another pick's elements through the indices.
    NumVecPick& operator=(const NumVecPick& other);
    /// Sets every picked element.
    NumVecPick& operator=(T value);

    /// The number of indices.
    unsigned length() const noexcept { return indices_.length(); }
    ///@{
    /// Unchecked: vector(indices(k)); with OBRIX_CHECKED_INDEXING both steps are checked.
    T& operator()(int k) noexcept(!OBRIX_CHECKED_INDEXING) { return vector_(indices_(k)); }
    T operator()(int k) const noexcept(!OBRIX_CHECKED_INDEXING) { return vector_(indices_(k)); }
    ///@}

    /// Raises INDEX ("...Pick", index, vector length - 1) for the first index outside the
    /// vector.
    void assertElements() const;
    /// Raises VNMATCH (pick length, n) unless they are equal.
    void lengthCheck(unsigned n) const;

    ///@{
    /// The viewed vector and the index vector (both shallow).
    const NumVec<T>& vector() const noexcept { return vector_; }
    const NumVec<int>& indices() const noexcept { return indices_; }
    ///@}

private:
    NumVec<T> vector_;
    NumVec<int> indices_;
};

/// Unary minus.
template <class T>
OBRIX_API NumVec<T> operator-(const NumVec<T>& v);
///@{
/// Element-wise arithmetic of equal-length vectors (VNMATCH otherwise); new contiguous results.
template <class T>
OBRIX_API NumVec<T> operator+(const NumVec<T>& a, const NumVec<T>& b);
template <class T>
OBRIX_API NumVec<T> operator-(const NumVec<T>& a, const NumVec<T>& b);
template <class T>
OBRIX_API NumVec<T> operator*(const NumVec<T>& a, const NumVec<T>& b);
template <class T>
OBRIX_API NumVec<T> operator/(const NumVec<T>& a, const NumVec<T>& b);
///@}
///@{
/// Element-wise arithmetic with a scalar on either side.
template <class T>
OBRIX_API NumVec<T> operator+(const NumVec<T>& a, std::type_identity_t<T> s);
template <class T>
OBRIX_API NumVec<T> operator+(std::type_identity_t<T> s, const NumVec<T>& a);
template <class T>
OBRIX_API NumVec<T> operator-(const NumVec<T>& a, std::type_identity_t<T> s);
template <class T>
OBRIX_API NumVec<T> operator-(std::type_identity_t<T> s, const NumVec<T>& a);
template <class T>
OBRIX_API NumVec<T> operator*(const NumVec<T>& a, std::type_identity_t<T> s);
template <class T>
OBRIX_API NumVec<T> operator*(std::type_identity_t<T> s, const NumVec<T>& a);
template <class T>
OBRIX_API NumVec<T> operator/(const NumVec<T>& a, std::type_identity_t<T> s);
template <class T>
OBRIX_API NumVec<T> operator/(std::type_identity_t<T> s, const NumVec<T>& a);
///@}

/// printOn.
template <class T>
OBRIX_API std::ostream& operator<<(std::ostream& out, const NumVec<T>& v);
/// scanFrom.
template <class T>
OBRIX_API std::istream& operator>>(std::istream& in, NumVec<T>& v);

#endif
