// TxformOps: the building operations that TxformMatrix (affine, with a cached inverse) and
// TgenXformMatrix (general projective) share: rotations about the coordinate axes and any
// axis, scaling, translation, orientations from three axes and alignment with the z axis.
// Use it through those two classes; the matrix builders in qvObrixBase::xform are public too.
#ifndef OBRIX_GEOMETRY_TXFORMOPS_H
#define OBRIX_GEOMETRY_TXFORMOPS_H

#include <cstddef>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Taxis.h"
#include "ObrixBase/geometry/Tscale.h"
#include "ObrixBase/geometry/TunitQuaternion.h"

namespace qvObrixBase::xform {

/// The row-vector rotation by `angle` radians about a coordinate axis, counter-clockwise when
/// looking down the axis towards the origin (as T4dDblMatrix::setToAxisRotate). The sine and
/// cosine go straight into their places, so the other axis' entries are exact zeros and ones.
OBRIX_API T4dDblMatrix axisRotation(Taxis axis, double angle) noexcept;
/// The rotation by `angle` radians about `axis`, which is normalised first (any length
/// works). An axis shorter than 1e-9 gives the identity.
OBRIX_API T4dDblMatrix rotation(const T4dDblVector& axis, double angle) noexcept;
/// The transform from a local frame to its parent: rows 0, 1 and 2 are the three axes as
/// given (neither normalised nor made orthogonal) and row 3 the origin, so the local point
/// (1, 0, 0) goes to origin + xAxis.
OBRIX_API T4dDblMatrix frame(const T4dDblVector& xAxis, const T4dDblVector& yAxis,
                             const T4dDblVector& zAxis, const T3dDblPoint& origin) noexcept;
/// The smallest rotation that turns the direction of v onto the +z axis (about v × z). A
/// direction along -z turns half a turn about the x axis; a vector shorter than 1e-9 gives the
/// identity. Its transpose turns +z back onto v.
OBRIX_API T4dDblMatrix alignWithZ(const T4dDblVector& v) noexcept;
/// out[i] = in[i]·M over M's 3x3 block for n vectors of three doubles each; in may equal out
/// (the arrays must otherwise not overlap). Never translates.
OBRIX_API void transformVectors(const T4dDblMatrix& m, const double* in, double* out,
                                std::size_t n) noexcept;

} // namespace qvObrixBase::xform

/// The operations both transform classes offer, written once over Derived's matrix. Every
/// "It" operation applies its transform after the one already there (post-multiplication:
/// `t.translateIt(v).rotateItZ(a)` moves a point, then turns it about the origin), and
/// returns the object; the bare stem returns a changed copy. Derived provides `matrix()`, an
/// `edit()` that hands out its matrix for writing and a `commit()` that restores its
/// invariant (and drops caches) after every write.
template <class Derived>
class TxformOps {
public:
    /// Turns by `angle` radians about the x axis through the origin. Returns *this.
    Derived& rotateItX(double angle) noexcept { return apply(axisRotation(XAxis, angle)); }
    /// Turns by `angle` radians about the y axis through the origin. Returns *this.
    Derived& rotateItY(double angle) noexcept { return apply(axisRotation(YAxis, angle)); }
    /// Turns by `angle` radians about the z axis through the origin. Returns *this.
    Derived& rotateItZ(double angle) noexcept { return apply(axisRotation(ZAxis, angle)); }
    /// Turns by `angle` radians about `axis` (any length) through the origin. Returns *this.
    Derived& rotateIt(const T4dDblVector& axis, double angle) noexcept {
        return apply(qvObrixBase::xform::rotation(axis, angle));
    }
    /// Turns by the rotation q. Returns *this.
    Derived& rotateIt(const TunitQuaternion& q) noexcept { return apply(q.matrix()); }
    /// Scales about the origin along the coordinate axes. Returns *this.
    Derived& scaleIt(const Tscale& s) noexcept { return apply(T4dDblMatrix(s)); }
    /// Moves by v. Returns *this.
    Derived& translateIt(const T4dDblVector& v) noexcept { return apply(T4dDblMatrix(v)); }
    /// *this = *this·m: m applies after this transform. Returns *this.
    Derived& postmultBy(const T4dDblMatrix& m) noexcept { return apply(m); }
    /// *this = m·*this: m applies before this transform. Returns *this.
    Derived& premultBy(const T4dDblMatrix& m) noexcept {
        self().edit().premultBy(m);
        return committed();
    }

    /// A copy turned about the x axis (rotateItX).
    Derived rotateX(double angle) const noexcept { return Derived(self()).rotateItX(angle); }
    /// A copy turned about the y axis (rotateItY).
    Derived rotateY(double angle) const noexcept { return Derived(self()).rotateItY(angle); }
    /// A copy turned about the z axis (rotateItZ).
    Derived rotateZ(double angle) const noexcept { return Derived(self()).rotateItZ(angle); }
    /// A copy turned about `axis` (rotateIt).
    Derived rotate(const T4dDblVector& axis, double angle) const noexcept {
        return Derived(self()).rotateIt(axis, angle);
    }
    /// A copy scaled by `s` (scaleIt).
    Derived scale(const Tscale& s) const noexcept { return Derived(self()).scaleIt(s); }
    /// A copy moved by `v` (translateIt).
    Derived translate(const T4dDblVector& v) const noexcept {
        return Derived(self()).translateIt(v);
    }
    /// The composition *this·t: this transform first, then t.
    Derived operator*(const Derived& t) const noexcept {
        return Derived(self()).postmultBy(t.matrix());
    }

    /// Replaces the transform by the frame of three axes and an origin (see
    /// qvObrixBase::xform::frame): it takes local coordinates to the parent's. Returns *this.
    Derived& setToAxes(const T4dDblVector& xAxis, const T4dDblVector& yAxis,
                       const T4dDblVector& zAxis,
                       const T3dDblPoint& origin = T3dDblPoint()) noexcept {
        return replace(qvObrixBase::xform::frame(xAxis, yAxis, zAxis, origin));
    }
    /// Replaces the transform by the smallest rotation that turns v's direction onto +z.
    /// Returns *this.
    Derived& setToAlignWithZ(const T4dDblVector& v) noexcept {
        return replace(qvObrixBase::xform::alignWithZ(v));
    }
    /// Replaces the transform by the rotation that turns +z back onto v's direction, the
    /// inverse of setToAlignWithZ(v). Returns *this.
    Derived& setToAlignFromZ(const T4dDblVector& v) noexcept {
        return replace(qvObrixBase::xform::alignWithZ(v).transposeIt());
    }

    /// Transforms n directions of three doubles each by the 3x3 block, never translating;
    /// in may equal out.
    void transformVectors(const double* in, double* out, std::size_t n) const noexcept {
        qvObrixBase::xform::transformVectors(self().matrix(), in, out, n);
    }
    /// Transforms n directions of three doubles each in place.
    void transformVectors(double* xyz, std::size_t n) const noexcept {
        transformVectors(xyz, xyz, n);
    }

    /// The translation row (3, 0..2).
    T4dDblVector translation() const noexcept {
        T4dDblVector v;
        return v = self().matrix();
    }
    /// The lengths of rows 0, 1 and 2: the factors of a scale S in a transform S·R·T with
    /// positive factors (mirrorings are not told apart), through Tscale's zero guard.
    Tscale scaleFactors() const noexcept {
        const T4dDblMatrix& m = self().matrix();
        const auto row = [&m](short r) { return T4dDblVector(m(r, 0), m(r, 1), m(r, 2)).length(); };
        return Tscale(row(0), row(1), row(2));
    }
    /// The rotation R of a transform S·R·T with positive scale factors.
    TunitQuaternion rotation() const noexcept { return TunitQuaternion(self().matrix()); }

    /// 1 when all sixteen elements are exactly equal.
    int operator==(const Derived& t) const noexcept { return self().matrix() == t.matrix(); }
    /// The negation of ==.
    int operator!=(const Derived& t) const noexcept { return !(*this == t); }
    /// 1 when every element differs by at most tol (inclusive), as T4dDblMatrix::equivalent.
    int equivalent(const Derived& t, double tol) const noexcept {
        return self().matrix().equivalent(t.matrix(), tol);
    }

private:
    static T4dDblMatrix axisRotation(Taxis axis, double angle) noexcept {
        return qvObrixBase::xform::axisRotation(axis, angle);
    }
    Derived& self() noexcept { return static_cast<Derived&>(*this); }
    const Derived& self() const noexcept { return static_cast<const Derived&>(*this); }
    Derived& committed() noexcept {
        self().commit();
        return self();
    }
    Derived& apply(const T4dDblMatrix& m) noexcept {
        self().edit().postmultBy(m);
        return committed();
    }
    Derived& replace(const T4dDblMatrix& m) noexcept {
        self().edit() = m;
        return committed();
    }
};

#endif
