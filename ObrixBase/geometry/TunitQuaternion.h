// TunitQuaternion: a rotation held as a unit quaternion (w, x, y, z), w the scalar part.
// Rotations compose with the Hamilton product, invert by conjugation and convert to and from
// the row-vector rotation matrix of T4dDblMatrix; slerp interpolates between two of them.
#ifndef OBRIX_GEOMETRY_TUNITQUATERNION_H
#define OBRIX_GEOMETRY_TUNITQUATERNION_H

#include <type_traits>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#endif

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"

class T4dDblVector;

namespace qvObrixBase::detail {

/// The Hamilton product a·b of two quaternions with members w, x, y, z, stored into r (which
/// may be a or b). Shared by TunitQuaternion and Tquaternion. Each component is summed over
/// a's components in the order w, x, y, z:
///   w = ((a.w·b.w − a.x·b.x) − a.y·b.y) − a.z·b.z
///   x = ((a.w·b.x + a.x·b.w) + a.y·b.z) − a.z·b.y
///   y = ((a.w·b.y − a.x·b.z) + a.y·b.w) + a.z·b.x
///   z = ((a.w·b.z + a.x·b.y) − a.y·b.x) + a.z·b.w
/// That one order lets (w, x) and (y, z) each go through two-lane vector arithmetic, and the
/// scalar path, taken in constant evaluation and without SSE2, rounds bit for bit the same.
template <class Q>
constexpr void hamiltonProduct(const Q& a, const Q& b, Q& r) noexcept {
#if defined(__SSE2__) || defined(_M_X64)
    if (!std::is_constant_evaluated()) {
        const __m128d bwx = _mm_set_pd(b.x, b.w), byz = _mm_set_pd(b.z, b.y);
        const __m128d bxw = _mm_shuffle_pd(bwx, bwx, 1), bzy = _mm_shuffle_pd(byz, byz, 1);
        const __m128d aw = _mm_set1_pd(a.w), ax = _mm_set1_pd(a.x);
        const __m128d ay = _mm_set1_pd(a.y), az = _mm_set1_pd(a.z);
        // Sign flips by xor: ax·(−bx) is exactly −(ax·bx), so adding it is subtracting.
        const __m128d negLow = _mm_set_pd(0.0, -0.0), negHigh = _mm_set_pd(-0.0, 0.0);
        __m128d wx = _mm_mul_pd(aw, bwx);
        wx = _mm_add_pd(wx, _mm_mul_pd(ax, _mm_xor_pd(bxw, negLow)));
        wx = _mm_add_pd(wx, _mm_mul_pd(ay, _mm_xor_pd(byz, negLow)));
        wx = _mm_sub_pd(wx, _mm_mul_pd(az, bzy));
        __m128d yz = _mm_mul_pd(aw, byz);
        yz = _mm_add_pd(yz, _mm_mul_pd(ax, _mm_xor_pd(bzy, negLow)));
        yz = _mm_add_pd(yz, _mm_mul_pd(ay, _mm_xor_pd(bwx, negHigh)));
        yz = _mm_add_pd(yz, _mm_mul_pd(az, bxw));
        _mm_storel_pd(&r.w, wx);
        _mm_storeh_pd(&r.x, wx);
        _mm_storel_pd(&r.y, yz);
        _mm_storeh_pd(&r.z, yz);
        return;
    }
#endif
    const double w = ((a.w * b.w - a.x * b.x) - a.y * b.y) - a.z * b.z;
    const double x = ((a.w * b.x + a.x * b.w) + a.y * b.z) - a.z * b.y;
    const double y = ((a.w * b.y - a.x * b.z) + a.y * b.w) + a.z * b.x;
    const double z = ((a.w * b.z + a.x * b.y) - a.y * b.x) + a.z * b.w;
    r.w = w;
    r.x = x;
    r.y = y;
    r.z = z;
}

} // namespace qvObrixBase::detail

/// A rotation as a quaternion of unit length. A plain value class with public components in
/// the order w, x, y, z. Products are not renormalised, so long chains of products drift off
/// unit length; call normalizeIt now and then.
class OBRIX_API TunitQuaternion {
public:
    double w = 1.0; ///< the scalar part, cos(angle / 2)
    double x = 0.0; ///< the vector part, sin(angle / 2) times the unit axis
    /// The vector part's y.
    double y = 0.0;
    /// The vector part's z.
    double z = 0.0;

    /// The identity rotation (1, 0, 0, 0).
    constexpr TunitQuaternion() noexcept = default;

    /// The components as given; the caller vouches for unit length.
    constexpr TunitQuaternion(double w_, double x_, double y_, double z_) noexcept
        : w(w_), x(x_), y(y_), z(z_) {}

    /// The rotation of `angle` radians about `axis`; see setToPivotAxis.
    TunitQuaternion(double angle, const T4dDblVector& axis) noexcept {
        setToPivotAxis(angle, axis);
    }

    /// The rotation part of a transform M = S·R·T (positive scale S, rotation R, translation
    /// T), as setFromMatrix.
    explicit TunitQuaternion(const T4dDblMatrix& m) noexcept { setFromMatrix(m); }

    /// Sets the rotation of `angle` radians about `axis` (any length): w = cos(angle / 2),
    /// (x, y, z) = sin(angle / 2) times the unit axis. An axis whose squared length is at
    /// most 1e-9 gives the identity. Returns *this.
    TunitQuaternion& setToPivotAxis(double angle, const T4dDblVector& axis) noexcept;

    /// Reads the rotation back: the angle in [0, 2pi] radians and a unit axis. The identity
    /// gives the angle 0 and the axis (0, 0, 1).
    void getPivotAxis(double& angle, T4dDblVector& axis) const noexcept;

    /// Sets the rotation of the upper-left 3x3 block of m. Each of its rows is first divided
    /// by its length, so that the scale of a transform S·R·T with positive factors drops out;
    /// the block must otherwise be a rotation. The result is normalised and has w >= 0.
    /// Returns *this.
    TunitQuaternion& setFromMatrix(const T4dDblMatrix& m) noexcept;

    /// The row-vector rotation matrix, equal to T4dDblMatrix::setToAxisRotate for the same
    /// axis and angle; row 3 and column 3 are those of the identity. The factor 2/|q|^2 keeps
    /// the matrix a rotation even when q has drifted slightly off unit length.
    T4dDblMatrix matrix() const noexcept;
    /// The same as matrix().
    operator T4dDblMatrix() const noexcept { return matrix(); }

    /// The Hamilton product *this·q (not renormalised), summed in the order given at
    /// qvObrixBase::detail::hamiltonProduct. As matrices, (a·b).matrix() equals
    /// b.matrix()·a.matrix(): the rotation b acts first.
    constexpr TunitQuaternion operator*(const TunitQuaternion& q) const noexcept {
        TunitQuaternion r;
        qvObrixBase::detail::hamiltonProduct(*this, q, r);
        return r;
    }
    /// *this = *this·q. Returns *this.
    constexpr TunitQuaternion& operator*=(const TunitQuaternion& q) noexcept {
        return *this = *this * q;
    }

    /// The conjugate (w, -x, -y, -z): the opposite rotation.
    constexpr TunitQuaternion inverse() const noexcept { return TunitQuaternion(w, -x, -y, -z); }
    /// Conjugates in place. Returns *this.
    constexpr TunitQuaternion& invertIt() noexcept { return *this = inverse(); }

    /// The length sqrt(w^2 + x^2 + y^2 + z^2).
    double length() const noexcept;

    /// Divides by the length; a quaternion of length at most 1e-9 becomes the identity.
    /// Returns *this.
    TunitQuaternion& normalizeIt() noexcept;

    /// 1 when all four components are exactly equal.
    constexpr int operator==(const TunitQuaternion& q) const noexcept {
        return w == q.w && x == q.x && y == q.y && z == q.z;
    }
    /// The negation of ==.
    constexpr int operator!=(const TunitQuaternion& q) const noexcept { return !(*this == q); }

    /// 1 when q describes the same rotation within tol: every component of q, or every
    /// component of -q (the same rotation), differs from this one by at most tol (inclusive).
    int equivalent(const TunitQuaternion& q, double tol) const noexcept;

    /// Stores the spherical linear interpolation from a (t = 0) to b (t = 1) along the shorter
    /// arc, at constant angular speed; nearly equal rotations are interpolated linearly and
    /// normalised. t outside [0, 1] extrapolates. Either operand may be *this. Returns *this.
    TunitQuaternion& setToSlerp(const TunitQuaternion& a, const TunitQuaternion& b,
                                double t) noexcept;

    /// The logarithm of the rotation as a vector: half the angle times the unit axis, with a
    /// length in [0, π/2] for q and -q alike (both describe one rotation). The identity gives
    /// the zero vector. setToExp undoes it.
    T4dDblVector log() const noexcept;
    /// Sets the rotation whose logarithm is v: the turn by 2|v| radians about v. A zero
    /// vector gives the identity. Returns *this.
    TunitQuaternion& setToExp(const T4dDblVector& v) noexcept;
    /// The four-dimensional dot product; its magnitude is cos(θ/2) for the angle θ between
    /// the two rotations.
    constexpr double dotProduct(const TunitQuaternion& q) const noexcept {
        return w * q.w + x * q.x + y * q.y + z * q.z;
    }
    /// The angle in [0, π] radians of the smallest rotation that turns this one into q.
    double angleTo(const TunitQuaternion& q) const noexcept;
};

/// The spherical interpolation of TunitQuaternion::setToSlerp, as a new quaternion.
inline TunitQuaternion slerp(const TunitQuaternion& a, const TunitQuaternion& b,
                             double t) noexcept {
    TunitQuaternion r;
    r.setToSlerp(a, b, t);
    return r;
}

#endif
