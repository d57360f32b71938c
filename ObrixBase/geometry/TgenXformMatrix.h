// TgenXformMatrix: a general projective 4x4 transform, for perspective views, projections
// onto planes and any transform whose column 3 is not (0, 0, 0, 1). Points go through the
// whole matrix and are divided by their weight; the inverse is recomputed on every request,
// since a projective transform is rarely inverted more than once.
#ifndef OBRIX_GEOMETRY_TGENXFORMMATRIX_H
#define OBRIX_GEOMETRY_TGENXFORMMATRIX_H

#include <cstddef>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Tscale.h"
#include "ObrixBase/geometry/TunitQuaternion.h"
#include "ObrixBase/geometry/TxformMatrix.h"
#include "ObrixBase/geometry/TxformOps.h"

/// Any 4x4 transform in the row-vector convention, kept exactly as built. A plain, trivially
/// copyable value class with no cache. Nothing is reported: a point whose weight comes out 0
/// lands at infinity, and a singular matrix inverts to infinities or NaNs (T4dDblMatrix's
/// inversion).
class OBRIX_API TgenXformMatrix : public TxformOps<TgenXformMatrix> {
public:
    /// The identity.
    constexpr TgenXformMatrix() noexcept = default;
    /// The matrix m, all sixteen elements.
    constexpr TgenXformMatrix(const T4dDblMatrix& m) noexcept : m_(m) {}
    /// The translation by v.
    TgenXformMatrix(const T4dDblVector& v) noexcept : m_(v) {}
    /// The scale s about the origin.
    TgenXformMatrix(const Tscale& s) noexcept : m_(s) {}
    /// The rotation q.
    TgenXformMatrix(const TunitQuaternion& q) noexcept : m_(q.matrix()) {}
    /// The affine transform t; every affine transform is a general one.
    TgenXformMatrix(const TxformMatrix& t) noexcept : m_(t.matrix()) {}

    ///@{
    /// Replace the transform, as the constructors do. Each returns *this.
    TgenXformMatrix& operator=(const T4dDblMatrix& m) noexcept {
        m_ = m;
        return *this;
    }
    TgenXformMatrix& operator=(const T4dDblVector& v) noexcept { return *this = T4dDblMatrix(v); }
    TgenXformMatrix& operator=(const Tscale& s) noexcept { return *this = T4dDblMatrix(s); }
    TgenXformMatrix& operator=(const TunitQuaternion& q) noexcept { return *this = q.matrix(); }
    ///@}

    /// The matrix.
    constexpr const T4dDblMatrix& matrix() const noexcept { return m_; }
    /// The matrix, for every use a T4dDblMatrix has.
    constexpr operator const T4dDblMatrix&() const noexcept { return m_; }

    /// 1 when column 3 is exactly (0, 0, 0, 1), so the transform could be a TxformMatrix.
    constexpr int isAffine() const noexcept {
        return m_(0, 3) == 0.0 && m_(1, 3) == 0.0 && m_(2, 3) == 0.0 && m_(3, 3) == 1.0;
    }

    /// The inverse, computed afresh (Gauss-Jordan, as T4dDblMatrix::invertIt).
    TgenXformMatrix inverse() const noexcept { return TgenXformMatrix(m_.inverse()); }
    /// Inverts in place. Returns *this.
    TgenXformMatrix& invertIt() noexcept {
        m_.invertIt();
        return *this;
    }

    /// Replaces the transform by the central projection from the eye (0, 0, d) onto the plane
    /// z = 0: a point's x and y shrink by d / (d − z) and its z becomes 0. d must not be 0.
    /// Returns *this.
    TgenXformMatrix& setToPerspective(double d) noexcept;

    /// The homogeneous product p·M over the whole matrix.
    T4dDblPoint transformPoint(const T4dDblPoint& p) const noexcept { return p * m_; }
    /// The cartesian image of p: (p, 1)·M divided by its weight.
    T3dDblPoint transformPoint(const T3dDblPoint& p) const noexcept;
    /// The cartesian images of n points of three doubles each, each divided by its weight;
    /// in may equal out (the arrays must otherwise not overlap).
    void transformPoints(const double* in, double* out, std::size_t n) const noexcept;
    /// Transforms n points of three doubles each in place.
    void transformPoints(double* xyz, std::size_t n) const noexcept {
        transformPoints(xyz, xyz, n);
    }

private:
    friend class TxformOps<TgenXformMatrix>;
    T4dDblMatrix& edit() noexcept { return m_; }
    void commit() noexcept {}

    T4dDblMatrix m_;
};

#endif
