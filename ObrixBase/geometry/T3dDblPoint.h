// T3dDblPoint: an affine point with three coordinates. Transforming it by a T4dDblMatrix is the
// affine row-vector product p·M: the 3x3 block turns and scales, row 3 translates, and column 3
// is never read (nothing is divided by a weight). This is the library's fast point transform.
#ifndef OBRIX_GEOMETRY_T3DDBLPOINT_H
#define OBRIX_GEOMETRY_T3DDBLPOINT_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"

/// A 3D point (x, y, z). A plain, trivially copyable value class with public coordinates
/// stored contiguously. No operation reports an error or allocates.
class OBRIX_API T3dDblPoint {
public:
    ///@{
    /// The coordinates, contiguous in this order.
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    ///@}

    /// The origin (0, 0, 0).
    static const T3dDblPoint origin;

    /// The origin.
    constexpr T3dDblPoint() noexcept = default;
    /// The point (x, y, z).
    constexpr T3dDblPoint(double x_, double y_, double z_) noexcept : x(x_), y(y_), z(z_) {}
    /// Copies the coordinates.
    constexpr T3dDblPoint(const T3dDblPoint&) noexcept = default;
    /// The point at the vector's offset from the origin.
    constexpr T3dDblPoint(const T4dDblVector& v) noexcept : x(v.x), y(v.y), z(v.z) {}
    /// Copies the coordinates.
    constexpr T3dDblPoint& operator=(const T3dDblPoint&) noexcept = default;
    /// Copies the vector's x, y, z.
    constexpr T3dDblPoint& operator=(const T4dDblVector& v) noexcept {
        x = v.x;
        y = v.y;
        z = v.z;
        return *this;
    }

    /// 1 when x, y and z are exactly equal.
    constexpr int operator==(const T3dDblPoint& p) const noexcept {
        return x == p.x && y == p.y && z == p.z;
    }
    /// 1 when any coordinate differs (exactly).
    constexpr int operator!=(const T3dDblPoint& p) const noexcept { return !(*this == p); }

    /// Stores the affine product p·M: x' = x·M(0,0) + y·M(1,0) + z·M(2,0) + M(3,0), and
    /// likewise y' with column 1 and z' with column 2. p may be *this. Returns *this.
    constexpr T3dDblPoint& setToProduct(const T3dDblPoint& p, const T4dDblMatrix& m) noexcept {
        const double px = p.x, py = p.y, pz = p.z;
        x = px * m(0, 0) + py * m(1, 0) + pz * m(2, 0) + m(3, 0);
        y = px * m(0, 1) + py * m(1, 1) + pz * m(2, 1) + m(3, 1);
        z = px * m(0, 2) + py * m(1, 2) + pz * m(2, 2) + m(3, 2);
        return *this;
    }
    /// Transforms in place by the affine product this·M. Returns *this.
    constexpr T3dDblPoint& postmultBy(const T4dDblMatrix& m) noexcept {
        return setToProduct(*this, m);
    }
    /// The affine product this·M.
    constexpr T3dDblPoint operator*(const T4dDblMatrix& m) const noexcept {
        return T3dDblPoint().setToProduct(*this, m);
    }

    /// The point moved by −v.
    constexpr T3dDblPoint operator-(const T4dDblVector& v) const noexcept {
        return T3dDblPoint(x - v.x, y - v.y, z - v.z);
    }
    /// The point moved by v.
    constexpr T3dDblPoint operator+(const T4dDblVector& v) const noexcept {
        return T3dDblPoint(x + v.x, y + v.y, z + v.z);
    }
    /// The vector from p to this point (this minus p).
    constexpr T4dDblVector operator-(const T3dDblPoint& p) const noexcept {
        return T4dDblVector(x - p.x, y - p.y, z - p.z);
    }

    /// The squared distance to p (no root taken).
    constexpr double distance2To(const T3dDblPoint& p) const noexcept {
        return (x - p.x) * (x - p.x) + (y - p.y) * (y - p.y) + (z - p.z) * (z - p.z);
    }
    /// 1 when the distance to p is at most tol, inclusive (tol·tol ≥ squared distance).
    constexpr int equivalent(const T3dDblPoint& p, double tol) const noexcept {
        return tol * tol >= distance2To(p);
    }
};

constexpr T4dDblVector::T4dDblVector(const T3dDblPoint& p) noexcept : x(p.x), y(p.y), z(p.z) {
}

#endif
