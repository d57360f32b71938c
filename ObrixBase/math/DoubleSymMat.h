// Packed square matrices of doubles: the shared core DoublePackedMat and the symmetric
// DoubleSymMat. An order-n packed matrix stores n(n+1)/2 elements in a DoubleVec; the symmetric
// one keeps element (i, j), i <= j, at j(j+1)/2 + i, so (i, j) and (j, i) are one element and
// the leading order-k block is the first k(k+1)/2 elements. Element-wise arithmetic acts on the
// packed vector. The triangular classes are in DoubleTriMat.h.
#ifndef OBRIX_MATH_DOUBLESYMMAT_H
#define OBRIX_MATH_DOUBLESYMMAT_H

#include <cstddef>
#include <iosfwd>
#include <type_traits>

#include "ObrixBase/ObrixBuildOptions.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/VecFunctions.h"

/// What the packed classes share: the packed vector, the order, the checks and resizing.
class OBRIX_API DoublePackedMat {
public:
    /// The order n (the matrices are always n x n).
    unsigned order() const noexcept { return n_; }
    ///@{
    /// Both equal the order.
    unsigned rows() const noexcept { return n_; }
    unsigned cols() const noexcept { return n_; }
    ///@}
    /// The packed elements (shares the storage).
    const DoubleVec& dataVec() const noexcept { return vec_; }
    /// The packed elements for in-place element work. Assign through it; rebinding it with
    /// reference() to a vector of another length breaks the matrix.
    DoubleVec& dataVec() noexcept { return vec_; }
    ///@{
    /// The first packed element.
    double* data() noexcept { return vec_.data(); }
    const double* data() const noexcept { return vec_.data(); }
    ///@}

    /// Sets every stored element to 0.
    void zero() { vec_ = 0.0; }
    /// Makes the storage exclusive and contiguous.
    void deepenShallowCopy() { vec_.deepenShallowCopy(); }
    /// Raises `MATX_BOUNDS` (0x4005) (i, j, n, n) unless both indices are in [0, n).
    void boundsCheck(int i, int j) const;
    /// Raises `MATX_MATSIZE` (0x4004) with both shapes unless the orders are equal.
    void shapeCheck(const DoublePackedMat& other) const;

protected:
    DoublePackedMat() noexcept : vec_(), n_(0) {}
    /// Order n with uninitialised storage; raises `MATX_NSQUARE` (0x400D) (n, m) unless n == m.
    DoublePackedMat(unsigned n, unsigned m);
    /// Shares `data`; raises `MATX_NSQUARE` (0x400D) unless n == m and `MATX_NPOINTS` (0x400A)
    /// (length, n, n, className) unless the length is n(n+1)/2.
    DoublePackedMat(const DoubleVec& data, unsigned n, unsigned m, const char* className);
    /// Shallow: shares the packed storage.
    DoublePackedMat(const DoublePackedMat&) noexcept = default;
    ~DoublePackedMat() = default;
    ///@{
    /// Packed element k, unchecked: element access checks (i, j) itself, so that a returning
    /// handler sees one error, not a second one from the packed vector.
    double& stored(std::ptrdiff_t k) noexcept { return vec_.data()[k * vec_.stride()]; }
    double stored(std::ptrdiff_t k) const noexcept { return vec_.data()[k * vec_.stride()]; }
    ///@}
    /// Element copy after shapeCheck.
    void assign(const DoublePackedMat& other);
    /// Raises `MATX_NSQUARE` (0x400D) (n, m) unless n == m; then order m over the packed vector
    /// resized to m(m+1)/2, keeping the leading elements (the leading submatrix).
    void resizePacked(unsigned n, unsigned m);
    /// The same without keeping anything.
    void reshapePacked(unsigned n, unsigned m);
    /// The view of the first k(k+1)/2 elements; raises `MATX_LEADSUB` (0x4018) (k, n) unless 0 <= k
    /// <= n. A negative k (when the handler returns) gives an empty view.
    DoubleVec leadingElements(int k) const;

    /// The packed elements: the lower (or, for DoubleUpperTriMat, upper) triangle in the order
    /// the class's index() gives; length n(n+1)/2.
    DoubleVec vec_;
    /// The order.
    unsigned n_;
};

/// Number of stored elements of an order-n packed matrix.
constexpr unsigned packedLength(unsigned n) noexcept {
    return n * (n + 1) / 2;
}

namespace obrix::detail {
/// The members every packed class has in the same form, written once over the class that
/// derives from it (`Derived`), so that results and arguments keep that class's type.
/// `Derived` provides element access through operator() and a copy() member.
template <class Derived>
class PackedMatMembers : public DoublePackedMat {
public:
    /// Sets every stored element to `value`.
    Derived& operator=(double value) {
        vec_ = value;
        return self();
    }
    /// The same as copy().
    Derived deepCopy() const { return self().copy(); }
    /// Order m keeping the leading submatrix; `MATX_NSQUARE` (0x400D) unless n == m.
    void resize(unsigned n, unsigned m) { resizePacked(n, m); }
    /// Order m over new storage, nothing kept; `MATX_NSQUARE` (0x400D) unless n == m.
    void reshape(unsigned n, unsigned m) { reshapePacked(n, m); }
    /// Checked read (`MATX_BOUNDS` (0x4005) with (i, j, n, n)).
    double bcval(int i, int j) const {
        if constexpr (!OBRIX_CHECKED_INDEXING) // operator() checks in the checking build
            boundsCheck(i, j);
        return self()(i, j);
    }
    /// f applied to every stored element, as a new matrix.
    Derived apply(double (*f)(double)) const { return Derived(vec_.apply(f), n_, n_); }

    /// Equal orders and equal stored elements.
    friend bool operator==(const Derived& a, const Derived& b) {
        return a.order() == b.order() && a.dataVec() == b.dataVec();
    }
    /// Not equal: another order or another stored element.
    friend bool operator!=(const Derived& a, const Derived& b) { return !(a == b); }

protected:
    /// Order 0.
    PackedMatMembers() noexcept = default;
    /// Order n, uninitialised; `MATX_NSQUARE` (0x400D) unless n == m.
    PackedMatMembers(unsigned n, unsigned m) : DoublePackedMat(n, m) {}
    /// Order n, every stored element `value`.
    PackedMatMembers(unsigned n, unsigned m, double value) : DoublePackedMat(n, m) { vec_ = value; }
    /// Over the packed elements of `data` (shared); the checks of DoublePackedMat's.
    PackedMatMembers(const DoubleVec& data, unsigned n, unsigned m, const char* className)
        : DoublePackedMat(data, n, m, className) {}
    /// Shallow.
    PackedMatMembers(const PackedMatMembers&) noexcept = default;
    ~PackedMatMembers() = default;

    /// The body of the classes' own reference(): shares `other`'s storage and order.
    Derived& rebind(const Derived& other) noexcept {
        vec_.reference(other.vec_);
        n_ = other.n_;
        return self();
    }
    /// copy(): a new matrix of the same order over a contiguous copy of the elements.
    Derived packedCopy() const { return Derived(vec_.copy(), n_, n_); }
    /// leadingSubmatrix(k): the order-k leading block over the first k(k+1)/2 elements.
    Derived leadingBlock(int k) const {
        const DoubleVec leading = leadingElements(k);
        const unsigned order = k < 0 ? 0u : static_cast<unsigned>(k);
        return Derived(leading, order, order);
    }

private:
    Derived& self() noexcept { return static_cast<Derived&>(*this); }
    const Derived& self() const noexcept { return static_cast<const Derived&>(*this); }
};
} // namespace obrix::detail

/// Symmetric packed matrix.
class OBRIX_API DoubleSymMat : public obrix::detail::PackedMatMembers<DoubleSymMat> {
public:
    /// Order 0.
    DoubleSymMat() noexcept = default;
    /// Order n, uninitialised (`MATX_NSQUARE` (0x400D) unless n == m).
    DoubleSymMat(unsigned n, unsigned m);
    /// Order n, every element `value`.
    DoubleSymMat(unsigned n, unsigned m, double value);
    /// Over the packed elements of `data` (shared).
    DoubleSymMat(const DoubleVec& data, unsigned n, unsigned m);
    /// Shallow.
    DoubleSymMat(const DoubleSymMat& other) noexcept = default;
    ~DoubleSymMat() = default;
    /// Copies elements (`MATX_MATSIZE` (0x4004) unless the orders match).
    DoubleSymMat& operator=(const DoubleSymMat& other);
    using PackedMatMembers::operator=;
    /// Rebinds to `other`'s storage and order.
    DoubleSymMat& reference(const DoubleSymMat& other) noexcept;
    /// A deep copy with contiguous storage.
    DoubleSymMat copy() const;

    /// Position of (i, j) in the packed vector.
    static std::ptrdiff_t index(int i, int j) noexcept {
        return i <= j ? static_cast<std::ptrdiff_t>(j) * (j + 1) / 2 + i
                      : static_cast<std::ptrdiff_t>(i) * (i + 1) / 2 + j;
    }
    ///@{
    /// Unchecked (checked as bcref in a build with OBRIX_CHECKED_INDEXING); (i, j) and (j, i)
    /// are the same element.
    double& operator()(int i, int j) noexcept(!OBRIX_CHECKED_INDEXING) {
        if constexpr (OBRIX_CHECKED_INDEXING)
            boundsCheck(i, j);
        return stored(index(i, j));
    }
    double operator()(int i, int j) const noexcept(!OBRIX_CHECKED_INDEXING) {
        if constexpr (OBRIX_CHECKED_INDEXING)
            boundsCheck(i, j);
        return stored(index(i, j));
    }
    ///@}
    ///@{
    /// Checked forms (`MATX_BOUNDS` (0x4005) with (i, j, n, n)).
    double& bcref(int i, int j) {
        if constexpr (!OBRIX_CHECKED_INDEXING) // operator() checks in the checking build
            boundsCheck(i, j);
        return (*this)(i, j);
    }
    double bcset(int i, int j, double x) {
        if constexpr (!OBRIX_CHECKED_INDEXING)
            boundsCheck(i, j);
        return (*this)(i, j) = x;
    }
    ///@}
    /// Stores x at (i, j) (and so at (j, i)) through operator() and returns it.
    double set(int i, int j, double x) noexcept(!OBRIX_CHECKED_INDEXING) {
        return (*this)(i, j) = x;
    }
    /// The order-k leading block, sharing the storage (`MATX_LEADSUB` (0x4018) unless 0 <= k <= n).
    DoubleSymMat leadingSubmatrix(int k) const;
};

namespace obrix {
/// The packed matrix classes, for the shared element-wise operators.
template <class M>
concept PackedMatrix = std::is_base_of_v<DoublePackedMat, M> && !std::is_same_v<M, DoublePackedMat>;

/// Enables the operators below for the packed classes only. It is checked as a template
/// parameter, before the operator's signature is formed: some compilers otherwise form
/// `bool operator-(double, const bool&)` while resolving `-` on built-in types, and reject it.
template <class M>
using IfPackedMatrix = std::enable_if_t<PackedMatrix<M>, int>;
} // namespace obrix

///@{
/// Element-wise arithmetic of packed matrices of one class: it acts on the packed vectors, so
/// * and / are element-wise, not matrix products. Order mismatches raise `MATX_MATSIZE` (0x4004).
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator+(const M& a, const M& b) {
    a.shapeCheck(b);
    return M(a.dataVec() + b.dataVec(), a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator-(const M& a, const M& b) {
    a.shapeCheck(b);
    return M(a.dataVec() - b.dataVec(), a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator*(const M& a, const M& b) {
    a.shapeCheck(b);
    return M(a.dataVec() * b.dataVec(), a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator/(const M& a, const M& b) {
    a.shapeCheck(b);
    return M(a.dataVec() / b.dataVec(), a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator-(const M& a) {
    return M(-a.dataVec(), a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator+(const M& a, double s) {
    return M(a.dataVec() + s, a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator-(const M& a, double s) {
    return M(a.dataVec() - s, a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator*(const M& a, double s) {
    return M(a.dataVec() * s, a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator*(double s, const M& a) {
    return M(s * a.dataVec(), a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator/(const M& a, double s) {
    ///@}
    return M(a.dataVec() / s, a.order(), a.order());
}
///@{
/// The scalar on the left: s + A, s - A and s / A element by element over the stored elements.
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator+(double s, const M& a) {
    return M(s + a.dataVec(), a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator-(double s, const M& a) {
    return M(s - a.dataVec(), a.order(), a.order());
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M operator/(double s, const M& a) {
    return M(s / a.dataVec(), a.order(), a.order());
}
///@}
///@{
/// In-place element-wise arithmetic over the packed vectors (`MATX_MATSIZE` (0x4004) on order),
/// and ++ / -- of every stored element.
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator+=(M& a, const M& b) {
    a.shapeCheck(b);
    a.dataVec() += b.dataVec();
    return a;
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator-=(M& a, const M& b) {
    a.shapeCheck(b);
    a.dataVec() -= b.dataVec();
    return a;
}
/// In-place element-wise product and quotient of the stored elements (`MATX_MATSIZE` (0x4004) on
/// order), not matrix products.
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator*=(M& a, const M& b) {
    a.shapeCheck(b);
    a.dataVec() *= b.dataVec();
    return a;
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator/=(M& a, const M& b) {
    a.shapeCheck(b);
    a.dataVec() /= b.dataVec();
    return a;
}
/// In-place scalar arithmetic on every stored element; the empty triangle stays zero.
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator+=(M& a, double s) {
    a.dataVec() += s;
    return a;
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator-=(M& a, double s) {
    a.dataVec() -= s;
    return a;
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator*=(M& a, double s) {
    a.dataVec() *= s;
    return a;
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator/=(M& a, double s) {
    a.dataVec() /= s;
    return a;
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator++(M& a) {
    ++a.dataVec();
    return a;
}
template <class M, obrix::IfPackedMatrix<M> = 0>
M& operator--(M& a) {
    --a.dataVec();
    return a;
    ///@}
}
/// Absolute value of every stored element.
template <class M, obrix::IfPackedMatrix<M> = 0>
M abs(const M& a) {
    return M(abs(a.dataVec()), a.order(), a.order());
}
/// Writes the full n x n matrix in the DoubleGenMat text format.
template <class M, obrix::IfPackedMatrix<M> = 0>
std::ostream& operator<<(std::ostream& out, const M& m) {
    DoubleGenMat(m).printOn(out);
    return out;
}

/// (A(i, j) + A(j, i)) / 2 of a square A: the triangles are averaged (`MATX_NSQUARE` (0x400D) if
/// not square).
OBRIX_API DoubleSymMat toSymMat(const DoubleGenMat& a);
///@{
/// A x v and v x A walking the stored elements (`MATX_MATVECPROD` (0x4014), `MATX_VECMATPROD`
/// (0x4015) on length).
OBRIX_API DoubleVec product(const DoubleSymMat& a, const DoubleVec& v);
OBRIX_API DoubleVec product(const DoubleVec& v, const DoubleSymMat& a);
///@}
/// A shallow copy: a symmetric matrix is its own transpose.
OBRIX_API DoubleSymMat transpose(const DoubleSymMat& a);

#endif
