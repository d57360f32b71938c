// TxformMatrix: an affine transform (turn, scale, shear, translate; never a projection) built
// up step by step, with its inverse cached. It is the transform to use for placing objects and
// for moving many points back and forth between frames; TgenXformMatrix is its projective
// counterpart.
#ifndef OBRIX_GEOMETRY_TXFORMMATRIX_H
#define OBRIX_GEOMETRY_TXFORMMATRIX_H

#include <cstddef>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Tscale.h"
#include "ObrixBase/geometry/TunitQuaternion.h"
#include "ObrixBase/geometry/TxformOps.h"

class TgenXformMatrix;

/// An affine 4x4 transform in the row-vector convention whose column 3 is always
/// (0, 0, 0, 1): whatever sets the matrix, that column is reset, so a projective part given to
/// it is dropped. The inverse is computed in closed form (the 3x3 block's adjugate) on first
/// use and kept until the transform changes. A plain, trivially copyable value class; the
/// cache makes const reads write, so one object must not be read from two threads at once.
/// Nothing is reported: a singular 3x3 block inverts to infinities or NaNs.
class OBRIX_API TxformMatrix : public TxformOps<TxformMatrix> {
public:
    /// The identity.
    constexpr TxformMatrix() noexcept = default;
    /// The affine part of m: column 3 becomes (0, 0, 0, 1).
    explicit TxformMatrix(const T4dDblMatrix& m) noexcept : m_(m) { commit(); }
    /// The translation by v.
    TxformMatrix(const T4dDblVector& v) noexcept : m_(v) {}
    /// The scale s about the origin.
    TxformMatrix(const Tscale& s) noexcept : m_(s) {}
    /// The rotation q.
    TxformMatrix(const TunitQuaternion& q) noexcept : m_(q.matrix()) {}
    /// The affine part of a general transform: its column 3 is dropped.
    explicit TxformMatrix(const TgenXformMatrix& t) noexcept;

    ///@{
    /// Replace the transform, as the constructors do. Each returns *this.
    TxformMatrix& operator=(const T4dDblMatrix& m) noexcept { return *this = TxformMatrix(m); }
    TxformMatrix& operator=(const T4dDblVector& v) noexcept { return *this = TxformMatrix(v); }
    TxformMatrix& operator=(const Tscale& s) noexcept { return *this = TxformMatrix(s); }
    TxformMatrix& operator=(const TunitQuaternion& q) noexcept { return *this = TxformMatrix(q); }
    ///@}

    /// The matrix.
    constexpr const T4dDblMatrix& matrix() const noexcept { return m_; }
    /// The matrix, for every use a T4dDblMatrix has (products with points and vectors).
    constexpr operator const T4dDblMatrix&() const noexcept { return m_; }

    /// The inverse matrix, from the cache when the transform has not changed since it was
    /// last computed.
    const T4dDblMatrix& inverseMatrix() const noexcept;
    /// The inverse transform, with this transform as its cached inverse.
    TxformMatrix inverse() const noexcept;
    /// Inverts in place by swapping in the cached inverse (computed first when stale); the old
    /// matrix becomes the cache, so inverting twice costs one inversion. Returns *this.
    TxformMatrix& invertIt() noexcept;

    /// The affine image p·M of one point.
    constexpr T3dDblPoint transformPoint(const T3dDblPoint& p) const noexcept { return p * m_; }
    /// The affine images of n points of three doubles each (x, y, z, x, y, z, ...); in may
    /// equal out (the arrays must otherwise not overlap).
    void transformPoints(const double* in, double* out, std::size_t n) const noexcept;
    /// Transforms n points of three doubles each in place.
    void transformPoints(double* xyz, std::size_t n) const noexcept {
        transformPoints(xyz, xyz, n);
    }
    /// The images of n points under the inverse transform (back into the local frame), through
    /// the cached inverse; in may equal out.
    void inverseTransformPoints(const double* in, double* out, std::size_t n) const noexcept;

private:
    friend class TxformOps<TxformMatrix>;
    T4dDblMatrix& edit() noexcept { return m_; }
    /// Restores column 3 and drops the cached inverse.
    void commit() noexcept {
        m_(0, 3) = m_(1, 3) = m_(2, 3) = 0.0;
        m_(3, 3) = 1.0;
        inverseValid_ = false;
    }

    T4dDblMatrix m_;
    mutable T4dDblMatrix inverse_;
    mutable bool inverseValid_ = true; // the identity is its own inverse
};

#endif
