// T4dDblPoint: a homogeneous point (x, y, z, w). Its cartesian position is (x/w, y/w, z/w);
// the differences and sums with vectors work on that position. Products with a T4dDblMatrix
// use the full 4x4 matrix, either as a row vector (p·M) or as a column vector (M·p).
#ifndef OBRIX_GEOMETRY_T4DDBLPOINT_H
#define OBRIX_GEOMETRY_T4DDBLPOINT_H

#include <cmath>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"

/// A homogeneous point with public coordinates x, y, z, w stored contiguously. A plain,
/// trivially copyable value class. Nothing is reported: a weight of 0 divides into IEEE
/// infinities or NaNs without a trap.
class OBRIX_API T4dDblPoint {
public:
    ///@{
    /// The coordinates, contiguous in this order; w is the weight.
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;
    ///@}

    /// The origin (0, 0, 0, 1).
    static const T4dDblPoint origin;

    /// The origin (0, 0, 0, 1).
    constexpr T4dDblPoint() noexcept = default;
    /// The point (x, y, z, w), kept as given: nothing is divided.
    constexpr T4dDblPoint(double x_, double y_, double z_, double w_) noexcept
        : x(x_), y(y_), z(z_), w(w_) {}

    /// Sets the four coordinates. Returns *this.
    constexpr T4dDblPoint& set(double x_, double y_, double z_, double w_) noexcept {
        x = x_;
        y = y_;
        z = z_;
        w = w_;
        return *this;
    }

    /// Coordinate i: 0 gives x, 1 gives y, 2 gives z, every other index gives w.
    constexpr double& operator()(short i) noexcept {
        return i == 0 ? x : i == 1 ? y : i == 2 ? z : w;
    }
    /// Coordinate i of a const point, read as above.
    constexpr double operator()(short i) const noexcept {
        return i == 0 ? x : i == 1 ? y : i == 2 ? z : w;
    }
    ///@{
    /// Pointer to x; y, z and w follow it.
    constexpr double* array() noexcept { return &x; }
    constexpr const double* array() const noexcept { return &x; }
    ///@}

    /// 1 when all four coordinates are exactly equal: (1, 0, 0, 1) and (2, 0, 0, 2) differ.
    constexpr int operator==(const T4dDblPoint& p) const noexcept {
        return x == p.x && y == p.y && z == p.z && w == p.w;
    }
    /// 1 when any coordinate differs (exactly).
    constexpr int operator!=(const T4dDblPoint& p) const noexcept { return !(*this == p); }

    /// Divides x, y, z by w and sets w to 1; a w of exactly 1.0 leaves the point bit for bit
    /// as it was. A w of 0 gives infinities or NaNs (and w = 1), by design. Returns *this.
    constexpr T4dDblPoint& cartesianizeIt() noexcept {
        if (w != 1.0) {
            const double s = 1.0 / w;
            set(x * s, y * s, z * s, 1.0);
        }
        return *this;
    }
    /// The cartesian copy; see cartesianizeIt.
    constexpr T4dDblPoint cartesian() const noexcept { return T4dDblPoint(*this).cartesianizeIt(); }

    /// Divides x, y, z by w but keeps w, so the caller has the projected position and still
    /// carries the weight. Skipped when w is exactly 1.0. Returns *this.
    constexpr T4dDblPoint& rationalizeIt() noexcept {
        if (w != 1.0) {
            const double s = 1.0 / w;
            set(x * s, y * s, z * s, w);
        }
        return *this;
    }
    /// The rational copy; see rationalizeIt.
    constexpr T4dDblPoint rational() const noexcept { return T4dDblPoint(*this).rationalizeIt(); }

    /// The inverse of rationalizeIt: multiplies x, y, z by w, which is kept. Skipped when w is
    /// exactly 1.0. Returns *this.
    constexpr T4dDblPoint& homogenizeIt() noexcept {
        if (w != 1.0)
            set(x * w, y * w, z * w, w);
        return *this;
    }
    /// The homogeneous copy; see homogenizeIt.
    constexpr T4dDblPoint homogenous() const noexcept { return T4dDblPoint(*this).homogenizeIt(); }

    /// The cartesian position moved by −v, with w = 1.
    constexpr T4dDblPoint operator-(const T4dDblVector& v) const noexcept {
        const T4dDblPoint c = cartesian();
        return T4dDblPoint(c.x - v.x, c.y - v.y, c.z - v.z, 1.0);
    }
    /// The cartesian position moved by v, with w = 1.
    constexpr T4dDblPoint operator+(const T4dDblVector& v) const noexcept {
        const T4dDblPoint c = cartesian();
        return T4dDblPoint(c.x + v.x, c.y + v.y, c.z + v.z, 1.0);
    }
    /// The vector between the cartesian positions, this minus p.
    constexpr T4dDblVector operator-(const T4dDblPoint& p) const noexcept {
        const T4dDblPoint a = cartesian(), b = p.cartesian();
        return T4dDblVector(a.x - b.x, a.y - b.y, a.z - b.z);
    }

    /// The distance between the cartesian positions.
    double distanceTo(T4dDblPoint p) const noexcept { return (*this - p).length(); }

    /// 1 when the four-dimensional distance of the raw coordinates (w included, nothing
    /// divided) is at most tol, inclusive. The distance itself is compared, not its square,
    /// so a negative tol matches nothing (unlike T3dDblPoint::equivalent).
    int equivalent(const T4dDblPoint& p, double tol) const noexcept {
        const double dx = x - p.x, dy = y - p.y, dz = z - p.z, dw = w - p.w;
        return std::sqrt(dx * dx + dy * dy + dz * dz + dw * dw) <= tol;
    }

    /// Stores the row-vector product p·M over the full matrix (component j = sum over i of
    /// p[i]·M(i, j)). p may be *this. Returns *this.
    constexpr T4dDblPoint& setToProduct(const T4dDblPoint& p, const T4dDblMatrix& m) noexcept {
        const double px = p.x, py = p.y, pz = p.z, pw = p.w;
        return set(px * m(0, 0) + py * m(1, 0) + pz * m(2, 0) + pw * m(3, 0),
                   px * m(0, 1) + py * m(1, 1) + pz * m(2, 1) + pw * m(3, 1),
                   px * m(0, 2) + py * m(1, 2) + pz * m(2, 2) + pw * m(3, 2),
                   px * m(0, 3) + py * m(1, 3) + pz * m(2, 3) + pw * m(3, 3));
    }
    /// Stores the column-vector product M·p (component i = sum over j of M(i, j)·p[j]).
    /// p may be *this. Returns *this.
    constexpr T4dDblPoint& setToProduct(const T4dDblMatrix& m, const T4dDblPoint& p) noexcept {
        const double px = p.x, py = p.y, pz = p.z, pw = p.w;
        return set(m(0, 0) * px + m(0, 1) * py + m(0, 2) * pz + m(0, 3) * pw,
                   m(1, 0) * px + m(1, 1) * py + m(1, 2) * pz + m(1, 3) * pw,
                   m(2, 0) * px + m(2, 1) * py + m(2, 2) * pz + m(2, 3) * pw,
                   m(3, 0) * px + m(3, 1) * py + m(3, 2) * pz + m(3, 3) * pw);
    }
    /// *this = *this·M. Returns *this.
    constexpr T4dDblPoint& postmultBy(const T4dDblMatrix& m) noexcept {
        return setToProduct(*this, m);
    }
    /// *this = M·*this. Returns *this.
    constexpr T4dDblPoint& premultBy(const T4dDblMatrix& m) noexcept {
        return setToProduct(m, *this);
    }
    /// The row-vector product this·M.
    constexpr T4dDblPoint operator*(const T4dDblMatrix& m) const noexcept {
        return T4dDblPoint().setToProduct(*this, m);
    }
};

/// The column-vector product M·p.
constexpr T4dDblPoint operator*(const T4dDblMatrix& m, const T4dDblPoint& p) noexcept {
    return T4dDblPoint().setToProduct(m, p);
}

constexpr T4dDblVector::T4dDblVector(const T4dDblPoint& p) noexcept : x(p.x), y(p.y), z(p.z) {
}

#endif
