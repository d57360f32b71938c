// Tquaternion: a general quaternion w + xi + yj + zk, of any length, for the algebra that unit
// rotations do not cover: sums and differences, scaling, the exponential and logarithm used to
// blend and differentiate rotations. It converts to a TunitQuaternion by normalising and back
// by copying the components.
#ifndef OBRIX_GEOMETRY_TQUATERNION_H
#define OBRIX_GEOMETRY_TQUATERNION_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/TunitQuaternion.h"

/// A quaternion with public components w (the scalar part), x, y, z, stored contiguously. A
/// plain, trivially copyable value class. Nothing is reported: inverting or normalising the
/// zero quaternion yields IEEE infinities or NaNs, as T4dDblMatrix::invertIt does for a
/// singular matrix.
class OBRIX_API Tquaternion {
public:
    double w = 0.0; ///< the scalar part
    double x = 0.0; ///< the vector part
    /// The vector part's y.
    double y = 0.0;
    /// The vector part's z.
    double z = 0.0;

    /// The zero quaternion (0, 0, 0, 0); the additive identity, not a rotation.
    constexpr Tquaternion() noexcept = default;
    /// The components as given.
    constexpr Tquaternion(double w_, double x_, double y_, double z_) noexcept
        : w(w_), x(x_), y(y_), z(z_) {}
    /// The real quaternion (s, 0, 0, 0).
    constexpr explicit Tquaternion(double s) noexcept : w(s) {}
    /// The rotation's four components, copied as they are (no normalisation).
    constexpr Tquaternion(const TunitQuaternion& q) noexcept : w(q.w), x(q.x), y(q.y), z(q.z) {}

    /// The rotation this quaternion describes: the components divided by the length, so any
    /// non-zero multiple of a rotation gives that rotation. A quaternion of length at most
    /// 1e-9 gives the identity, as TunitQuaternion::normalizeIt does.
    TunitQuaternion unit() const noexcept;

    /// Componentwise sum.
    constexpr Tquaternion operator+(const Tquaternion& q) const noexcept {
        return Tquaternion(w + q.w, x + q.x, y + q.y, z + q.z);
    }
    /// Componentwise difference.
    constexpr Tquaternion operator-(const Tquaternion& q) const noexcept {
        return Tquaternion(w - q.w, x - q.x, y - q.y, z - q.z);
    }
    /// Negation of all four components (the same rotation when read as one).
    constexpr Tquaternion operator-() const noexcept { return Tquaternion(-w, -x, -y, -z); }
    /// The Hamilton product *this·q, rounded exactly as TunitQuaternion's product (see
    /// qvObrixBase::detail::hamiltonProduct); not commutative.
    constexpr Tquaternion operator*(const Tquaternion& q) const noexcept {
        Tquaternion r;
        qvObrixBase::detail::hamiltonProduct(*this, q, r);
        return r;
    }
    /// Every component times s.
    constexpr Tquaternion operator*(double s) const noexcept {
        return Tquaternion(w * s, x * s, y * s, z * s);
    }
    /// Every component divided by s; s = 0 gives infinities or NaNs.
    constexpr Tquaternion operator/(double s) const noexcept { return *this * (1.0 / s); }

    ///@{
    /// In-place forms of +, -, the Hamilton product (*this = *this·q) and scaling. Each
    /// returns *this.
    constexpr Tquaternion& operator+=(const Tquaternion& q) noexcept { return *this = *this + q; }
    constexpr Tquaternion& operator-=(const Tquaternion& q) noexcept { return *this = *this - q; }
    constexpr Tquaternion& operator*=(const Tquaternion& q) noexcept { return *this = *this * q; }
    constexpr Tquaternion& operator*=(double s) noexcept { return *this = *this * s; }
    ///@}

    /// The conjugate (w, -x, -y, -z).
    constexpr Tquaternion conjugate() const noexcept { return Tquaternion(w, -x, -y, -z); }
    /// Conjugates in place. Returns *this.
    constexpr Tquaternion& conjugateIt() noexcept { return *this = conjugate(); }

    /// The squared length w² + x² + y² + z², without the root: like T4dDblVector::norm,
    /// norm is not length.
    constexpr double norm() const noexcept { return w * w + x * x + y * y + z * z; }
    /// The length, the square root of norm().
    double length() const noexcept;
    /// The four-dimensional dot product w·q.w + x·q.x + y·q.y + z·q.z.
    constexpr double dotProduct(const Tquaternion& q) const noexcept {
        return w * q.w + x * q.x + y * q.y + z * q.z;
    }

    /// The multiplicative inverse conjugate / norm, so that q·q.inverse() = 1. The zero
    /// quaternion gives infinities or NaNs.
    constexpr Tquaternion inverse() const noexcept { return conjugate() / norm(); }
    /// Inverts in place, as inverse. Returns *this.
    constexpr Tquaternion& invertIt() noexcept { return *this = inverse(); }

    /// Divides by the length. The zero quaternion gives NaNs. Returns *this.
    Tquaternion& normalizeIt() noexcept;
    /// The normalised copy; see normalizeIt.
    Tquaternion normal() const noexcept { return Tquaternion(*this).normalizeIt(); }

    /// The exponential e^w (cos |v|, sin |v| · v / |v|) with v = (x, y, z). A pure quaternion
    /// (0, θ·axis) exponentiates to the rotation by 2θ about the axis. Exact for v = 0.
    Tquaternion exp() const noexcept;
    /// Replaces this by its exponential. Returns *this.
    Tquaternion& expIt() noexcept { return *this = exp(); }
    /// The principal logarithm (ln |q|, atan2(|v|, w) · v / |v|), whose vector part has a
    /// length in [0, π], so that exp(log q) = q. A negative real quaternion (v = 0, w < 0)
    /// has no single logarithm; it gets the vector part (π, 0, 0). The zero quaternion gives
    /// a scalar part of -infinity.
    Tquaternion log() const noexcept;
    /// Replaces this by its logarithm. Returns *this.
    Tquaternion& logIt() noexcept { return *this = log(); }

    /// 1 when all four components are exactly equal.
    constexpr int operator==(const Tquaternion& q) const noexcept {
        return w == q.w && x == q.x && y == q.y && z == q.z;
    }
    /// The negation of ==.
    constexpr int operator!=(const Tquaternion& q) const noexcept { return !(*this == q); }
    /// 1 when every component differs from its partner by at most tol (inclusive). Unlike
    /// TunitQuaternion::equivalent, q and -q are different quaternions here.
    int equivalent(const Tquaternion& q, double tol) const noexcept;
};

/// s·q, the same as q·s.
constexpr Tquaternion operator*(double s, const Tquaternion& q) noexcept {
    return q * s;
}

#endif
