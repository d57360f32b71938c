// Packed triangular matrices of doubles. DoubleLowerTriMat keeps (i, j), j <= i, at
// i(i+1)/2 + j; DoubleUpperTriMat keeps (i, j), i <= j, at j(j+1)/2 + i. The packed vectors of a
// lower triangle and of its transpose are identical, so transpose() only re-labels the shared
// storage. The empty triangle reads as 0 through RODoubleRef and cannot be written.
#ifndef OBRIX_MATH_DOUBLETRIMAT_H
#define OBRIX_MATH_DOUBLETRIMAT_H

#include <cstddef>

#include "ObrixBase/ObrixBuildOptions.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleSymMat.h"

/// A reference to a stored element or to the constant zero of the empty triangle. Writing
/// through a reference to the constant changes nothing; reading it gives 0.
class OBRIX_API RODoubleRef {
public:
    /// A reference to `element`, or to the constant zero when `element` is null.
    explicit RODoubleRef(double* element) noexcept : element_(element) {}
    /// Refers to the same element (or the same constant zero).
    RODoubleRef(const RODoubleRef&) noexcept = default;
    /// Stores x in a stored element; ignored for the constant zero.
    RODoubleRef& operator=(double x) noexcept {
        if (element_ != nullptr)
            *element_ = x;
        return *this;
    }
    /// Stores the element `other` reads, not a rebinding: a reference is to one place for good.
    RODoubleRef& operator=(const RODoubleRef& other) noexcept {
        return *this = static_cast<double>(other);
    }
    /// The element's value; 0 for the constant zero.
    operator double() const noexcept { return element_ != nullptr ? *element_ : 0.0; }
    /// True when this refers to the constant zero of the empty triangle.
    bool isConstantZero() const noexcept { return element_ == nullptr; }

private:
    double* element_;
};

namespace obrix::detail {
/// The two triangular classes differ only in which triangle they store: the lower one
/// (`lower`) keeps (i, j), j <= i, row by row; the upper one keeps (i, j), i <= j, column by
/// column. Element access over either triangle is written once here.
template <class Derived, bool lower>
class TriMatMembers : public PackedMatMembers<Derived> {
public:
    /// True when (i, j) lies in the stored triangle.
    static bool stores(int i, int j) noexcept { return lower ? j <= i : i <= j; }
    /// Position of (i, j) of the stored triangle in the packed vector.
    static std::ptrdiff_t index(int i, int j) noexcept {
        return lower ? static_cast<std::ptrdiff_t>(i) * (i + 1) / 2 + j
                     : static_cast<std::ptrdiff_t>(j) * (j + 1) / 2 + i;
    }
    /// Unchecked (checked as bcref in a build with OBRIX_CHECKED_INDEXING); the empty
    /// triangle gives the constant zero.
    RODoubleRef ref(int i, int j) noexcept(!OBRIX_CHECKED_INDEXING) { return (*this)(i, j); }
    ///@{
    /// Unchecked (checked as bcref in a build with OBRIX_CHECKED_INDEXING); the empty
    /// triangle gives the constant zero.
    RODoubleRef operator()(int i, int j) noexcept(!OBRIX_CHECKED_INDEXING) {
        if constexpr (OBRIX_CHECKED_INDEXING)
            this->boundsCheck(i, j);
        return RODoubleRef(stores(i, j) ? &this->stored(index(i, j)) : nullptr);
    }
    /// Unchecked read (checked in the checking build); 0 in the empty triangle.
    double operator()(int i, int j) const noexcept(!OBRIX_CHECKED_INDEXING) {
        if constexpr (OBRIX_CHECKED_INDEXING)
            this->boundsCheck(i, j);
        return stores(i, j) ? this->stored(index(i, j)) : 0.0;
    }
    ///@}
    /// Checked form (`MATX_BOUNDS` (0x4005) with (i, j, n, n)).
    RODoubleRef bcref(int i, int j) {
        if constexpr (!OBRIX_CHECKED_INDEXING) // operator() checks in the checking build
            this->boundsCheck(i, j);
        return (*this)(i, j);
    }
    /// Unchecked (as operator()); a store into the empty triangle is ignored.
    double set(int i, int j, double x) noexcept(!OBRIX_CHECKED_INDEXING) {
        (*this)(i, j) = x;
        return x;
    }

protected:
    using PackedMatMembers<Derived>::PackedMatMembers;

    /// The body of the classes' own bcset(): `MATX_BOUNDS` (0x4005) out of range,
    /// `MATX_CHANGEELEMENT` (0x4009) (i, j, className) in the empty triangle, where nothing is
    /// stored.
    double checkedSet(int i, int j, double x, const char* className) {
        this->boundsCheck(i, j);
        if (!stores(i, j))
            mathErrorRaise(MATX_CHANGEELEMENT, i, j, className);
        else
            this->stored(index(i, j)) = x;
        return x;
    }
};
} // namespace obrix::detail

/// Lower-triangular packed matrix.
class OBRIX_API DoubleLowerTriMat : public obrix::detail::TriMatMembers<DoubleLowerTriMat, true> {
public:
    /// Order 0.
    DoubleLowerTriMat() noexcept = default;
    /// Order n, uninitialised (`MATX_NSQUARE` (0x400D) unless n == m).
    DoubleLowerTriMat(unsigned n, unsigned m);
    /// Order n, every stored element `value`.
    DoubleLowerTriMat(unsigned n, unsigned m, double value);
    /// Over the packed elements of `data` (shared).
    DoubleLowerTriMat(const DoubleVec& data, unsigned n, unsigned m);
    /// Shallow.
    DoubleLowerTriMat(const DoubleLowerTriMat& other) noexcept = default;
    ~DoubleLowerTriMat() = default;
    /// Copies elements (`MATX_MATSIZE` (0x4004) unless the orders match).
    DoubleLowerTriMat& operator=(const DoubleLowerTriMat& other);
    using PackedMatMembers::operator=;
    /// Rebinds to `other`'s storage and order.
    DoubleLowerTriMat& reference(const DoubleLowerTriMat& other) noexcept;
    /// A deep copy with contiguous storage.
    DoubleLowerTriMat copy() const;
    /// Raises `MATX_CHANGEELEMENT` (0x4009) (i, j, "DoubleLowerTriMat") for i < j and stores
    /// nothing there.
    double bcset(int i, int j, double x);
    /// The order-k leading block, sharing the storage (`MATX_LEADSUB` (0x4018) unless 0 <= k <= n).
    DoubleLowerTriMat leadingSubmatrix(int k) const;
};

/// Upper-triangular packed matrix.
class OBRIX_API DoubleUpperTriMat : public obrix::detail::TriMatMembers<DoubleUpperTriMat, false> {
public:
    /// Order 0; the constructors and members work as for DoubleLowerTriMat.
    DoubleUpperTriMat() noexcept = default;
    /// Order n, uninitialised (`MATX_NSQUARE` (0x400D) unless n == m).
    DoubleUpperTriMat(unsigned n, unsigned m);
    /// Order n, every stored element `value`.
    DoubleUpperTriMat(unsigned n, unsigned m, double value);
    /// Over the packed elements of `data` (shared).
    DoubleUpperTriMat(const DoubleVec& data, unsigned n, unsigned m);
    /// Shallow.
    DoubleUpperTriMat(const DoubleUpperTriMat& other) noexcept = default;
    ~DoubleUpperTriMat() = default;
    /// Copies elements (`MATX_MATSIZE` (0x4004) unless the orders match).
    DoubleUpperTriMat& operator=(const DoubleUpperTriMat& other);
    using PackedMatMembers::operator=;
    /// Rebinds to `other`'s storage and order.
    DoubleUpperTriMat& reference(const DoubleUpperTriMat& other) noexcept;
    /// A deep copy with contiguous storage.
    DoubleUpperTriMat copy() const;
    /// Raises `MATX_CHANGEELEMENT` (0x4009) (i, j, "DoubleUpperTriMat") for i > j and stores
    /// nothing there.
    double bcset(int i, int j, double x);
    /// The order-k leading block, sharing the storage (`MATX_LEADSUB` (0x4018) unless 0 <= k <= n).
    DoubleUpperTriMat leadingSubmatrix(int k) const;
};

/// Keeps A(i, j) for j <= i (`MATX_NSQUARE` (0x400D) unless square); the dropped triangle is not
/// checked.
OBRIX_API DoubleLowerTriMat toLowerTriMat(const DoubleGenMat& a);
/// Keeps A(i, j) for i <= j.
OBRIX_API DoubleUpperTriMat toUpperTriMat(const DoubleGenMat& a);
///@{
/// Re-labels the shared packed storage as the other triangle.
OBRIX_API DoubleUpperTriMat transpose(const DoubleLowerTriMat& a);
OBRIX_API DoubleLowerTriMat transpose(const DoubleUpperTriMat& a);
///@}
///@{
/// A x v and v x A over the stored triangle (`MATX_MATVECPROD` (0x4014), `MATX_VECMATPROD` (0x4015)
/// on length).
OBRIX_API DoubleVec product(const DoubleLowerTriMat& a, const DoubleVec& v);
OBRIX_API DoubleVec product(const DoubleVec& v, const DoubleLowerTriMat& a);
OBRIX_API DoubleVec product(const DoubleUpperTriMat& a, const DoubleVec& v);
OBRIX_API DoubleVec product(const DoubleVec& v, const DoubleUpperTriMat& a);
///@}

#endif
