// Packed triangular matrices of doubles. DoubleLowerTriMat keeps (i, j), j <= i, at
// i(i+1)/2 + j; DoubleUpperTriMat keeps (i, j), i <= j, at j(j+1)/2 + i. The packed vectors of a
// lower triangle and of its transpose are identical, so transpose() only re-labels the shared
// storage. The empty triangle reads as 0 through RODoubleRef and cannot be written.
#ifndef OBRIX_MATH_DOUBLETRIMAT_H
#define OBRIX_MATH_DOUBLETRIMAT_H

#include <cstddef>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleSymMat.h"

/// A reference to a stored element or to the constant zero of the empty triangle. Writing
/// through a reference to the constant changes nothing; reading it gives 0.
class OBRIX_API RODoubleRef {
public:
    /// A reference to `element`, or to the constant zero when `element` is null.
    explicit RODoubleRef(double* element) noexcept : element_(element) {}
    RODoubleRef(const RODoubleRef&) noexcept = default;
    /// Stores x in a stored element; ignored for the constant zero.
    RODoubleRef& operator=(double x) noexcept {
        if (element_ != nullptr)
            *element_ = x;
        return *this;
    }
    RODoubleRef& operator=(const RODoubleRef& other) noexcept {
        return *this = static_cast<double>(other);
    }
    operator double() const noexcept { return element_ != nullptr ? *element_ : 0.0; }
    /// True when this refers to the constant zero of the empty triangle.
    bool isConstantZero() const noexcept { return element_ == nullptr; }

private:
    double* element_;
};

/// Lower-triangular packed matrix.
class OBRIX_API DoubleLowerTriMat : public DoublePackedMat {
public:
    DoubleLowerTriMat() noexcept = default;
    /// Order n, uninitialised (0x400D unless n == m).
    DoubleLowerTriMat(unsigned n, unsigned m);
    /// Order n, every stored element `value`.
    DoubleLowerTriMat(unsigned n, unsigned m, double value);
    /// Over the packed elements of `data` (shared).
    DoubleLowerTriMat(const DoubleVec& data, unsigned n, unsigned m);
    DoubleLowerTriMat(const DoubleLowerTriMat& other) noexcept = default;
    ~DoubleLowerTriMat() = default;
    DoubleLowerTriMat& operator=(const DoubleLowerTriMat& other);
    DoubleLowerTriMat& operator=(double value) {
        vec_ = value;
        return *this;
    }
    DoubleLowerTriMat& reference(const DoubleLowerTriMat& other) noexcept;
    DoubleLowerTriMat copy() const;
    DoubleLowerTriMat deepCopy() const { return copy(); }
    void resize(unsigned n, unsigned m) { resizePacked(n, m); }
    void reshape(unsigned n, unsigned m) { reshapePacked(n, m); }

    /// Position of (i, j), j <= i, in the packed vector.
    static std::ptrdiff_t index(int i, int j) noexcept {
        return static_cast<std::ptrdiff_t>(i) * (i + 1) / 2 + j;
    }
    /// Unchecked; the upper triangle gives the constant zero.
    RODoubleRef operator()(int i, int j) noexcept {
        return RODoubleRef(j <= i ? &vec_(static_cast<int>(index(i, j))) : nullptr);
    }
    double operator()(int i, int j) const noexcept {
        return j <= i ? vec_(static_cast<int>(index(i, j))) : 0.0;
    }
    RODoubleRef bcref(int i, int j) {
        boundsCheck(i, j);
        return (*this)(i, j);
    }
    double bcval(int i, int j) const {
        boundsCheck(i, j);
        return (*this)(i, j);
    }
    /// Raises 0x4009 (i, j, "DoubleLowerTriMat") for i < j and stores nothing there.
    double bcset(int i, int j, double x);
    double set(int i, int j, double x) noexcept {
        (*this)(i, j) = x;
        return x;
    }
    /// The order-k leading block, sharing the storage (0x4018 unless 0 <= k <= n).
    DoubleLowerTriMat leadingSubmatrix(int k) const;
    /// f applied to every stored element, as a new matrix.
    DoubleLowerTriMat apply(double (*f)(double)) const {
        return DoubleLowerTriMat(vec_.apply(f), n_, n_);
    }

    bool operator==(const DoubleLowerTriMat& other) const {
        return n_ == other.n_ && vec_ == other.vec_;
    }
    bool operator!=(const DoubleLowerTriMat& other) const { return !(*this == other); }
};

/// Upper-triangular packed matrix.
class OBRIX_API DoubleUpperTriMat : public DoublePackedMat {
public:
    DoubleUpperTriMat() noexcept = default;
    DoubleUpperTriMat(unsigned n, unsigned m);
    DoubleUpperTriMat(unsigned n, unsigned m, double value);
    DoubleUpperTriMat(const DoubleVec& data, unsigned n, unsigned m);
    DoubleUpperTriMat(const DoubleUpperTriMat& other) noexcept = default;
    ~DoubleUpperTriMat() = default;
    DoubleUpperTriMat& operator=(const DoubleUpperTriMat& other);
    DoubleUpperTriMat& operator=(double value) {
        vec_ = value;
        return *this;
    }
    DoubleUpperTriMat& reference(const DoubleUpperTriMat& other) noexcept;
    DoubleUpperTriMat copy() const;
    DoubleUpperTriMat deepCopy() const { return copy(); }
    void resize(unsigned n, unsigned m) { resizePacked(n, m); }
    void reshape(unsigned n, unsigned m) { reshapePacked(n, m); }

    /// Position of (i, j), i <= j, in the packed vector.
    static std::ptrdiff_t index(int i, int j) noexcept {
        return static_cast<std::ptrdiff_t>(j) * (j + 1) / 2 + i;
    }
    /// Unchecked; the lower triangle gives the constant zero.
    RODoubleRef operator()(int i, int j) noexcept {
        return RODoubleRef(i <= j ? &vec_(static_cast<int>(index(i, j))) : nullptr);
    }
    double operator()(int i, int j) const noexcept {
        return i <= j ? vec_(static_cast<int>(index(i, j))) : 0.0;
    }
    RODoubleRef bcref(int i, int j) {
        boundsCheck(i, j);
        return (*this)(i, j);
    }
    double bcval(int i, int j) const {
        boundsCheck(i, j);
        return (*this)(i, j);
    }
    /// Raises 0x4009 (i, j, "DoubleUpperTriMat") for i > j and stores nothing there.
    double bcset(int i, int j, double x);
    double set(int i, int j, double x) noexcept {
        (*this)(i, j) = x;
        return x;
    }
    DoubleUpperTriMat leadingSubmatrix(int k) const;
    /// f applied to every stored element, as a new matrix.
    DoubleUpperTriMat apply(double (*f)(double)) const {
        return DoubleUpperTriMat(vec_.apply(f), n_, n_);
    }

    bool operator==(const DoubleUpperTriMat& other) const {
        return n_ == other.n_ && vec_ == other.vec_;
    }
    bool operator!=(const DoubleUpperTriMat& other) const { return !(*this == other); }
};

/// Keeps A(i, j) for j <= i (0x400D unless square); the dropped triangle is not checked.
OBRIX_API DoubleLowerTriMat toLowerTriMat(const DoubleGenMat& a);
/// Keeps A(i, j) for i <= j.
OBRIX_API DoubleUpperTriMat toUpperTriMat(const DoubleGenMat& a);
/// Re-labels the shared packed storage as the other triangle.
OBRIX_API DoubleUpperTriMat transpose(const DoubleLowerTriMat& a);
OBRIX_API DoubleLowerTriMat transpose(const DoubleUpperTriMat& a);
/// A x v and v x A over the stored triangle (0x4014, 0x4015 on length).
OBRIX_API DoubleVec product(const DoubleLowerTriMat& a, const DoubleVec& v);
OBRIX_API DoubleVec product(const DoubleVec& v, const DoubleLowerTriMat& a);
OBRIX_API DoubleVec product(const DoubleUpperTriMat& a, const DoubleVec& v);
OBRIX_API DoubleVec product(const DoubleVec& v, const DoubleUpperTriMat& a);

#endif
