// T4dDblVector: a direction with three components. It is the homogeneous direction whose
// fourth coordinate is implicitly 0, so a transform turns and scales it but never translates
// it: products with a T4dDblMatrix read only the matrix's upper-left 3x3 block.
#ifndef OBRIX_GEOMETRY_T4DDBLVECTOR_H
#define OBRIX_GEOMETRY_T4DDBLVECTOR_H

#include <cmath>
#include <cstddef>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/Tangle.h"
#include "ObrixBase/geometry/Taxis.h"

class T3dDblPoint;
class T4dDblPoint;
class TunitQuaternion;

/// A 3D direction (x, y, z). A plain, trivially copyable value class with public components
/// stored contiguously. No operation reports an error; the only built-in tolerance is the
/// 1e-9 below which normalisation and rotateTo give up.
class OBRIX_API T4dDblVector {
public:
    ///@{
    /// The components, contiguous in this order.
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    ///@}

    /// The zero vector (0, 0, 0), despite its name.
    static const T4dDblVector identity;

    /// The zero vector.
    constexpr T4dDblVector() noexcept = default;
    /// The vector (x, y, z).
    constexpr T4dDblVector(double x_, double y_, double z_) noexcept : x(x_), y(y_), z(z_) {}
    /// The point's coordinates as a direction from the origin.
    constexpr T4dDblVector(const T3dDblPoint& p) noexcept;
    /// The point's raw x, y, z; its w is ignored, nothing is divided.
    constexpr T4dDblVector(const T4dDblPoint& p) noexcept;

    /// Sets the three components. Returns *this.
    constexpr T4dDblVector& set(double x_, double y_, double z_) noexcept {
        x = x_;
        y = y_;
        z = z_;
        return *this;
    }

    /// Takes the translation row of m: (m(3,0), m(3,1), m(3,2)).
    constexpr T4dDblVector& operator=(const T4dDblMatrix& m) noexcept {
        return set(m(3, 0), m(3, 1), m(3, 2));
    }
    /// Copies the components.
    constexpr T4dDblVector& operator=(const T4dDblVector&) noexcept = default;
    /// Copies the components.
    constexpr T4dDblVector(const T4dDblVector&) noexcept = default;

    /// The translation by this vector: the identity with (x, y, z, 1) in row 3.
    constexpr operator T4dDblMatrix() const noexcept {
        T4dDblMatrix m;
        m(3, 0) = x;
        m(3, 1) = y;
        m(3, 2) = z;
        return m;
    }

    /// Component i: 0 gives x, 1 gives y, every other index gives z.
    constexpr double& operator()(short i) noexcept { return i == 0 ? x : i == 1 ? y : z; }
    /// Component i of a const vector, read as above.
    constexpr double operator()(short i) const noexcept { return i == 0 ? x : i == 1 ? y : z; }
    /// Component i: 0 gives x, 1 gives y, every other index gives z.
    constexpr double& operator[](std::size_t i) noexcept { return i == 0 ? x : i == 1 ? y : z; }
    /// Component i of a const vector, read as above.
    constexpr double operator[](std::size_t i) const noexcept {
        return i == 0 ? x : i == 1 ? y : z;
    }
    ///@{
    /// Pointer to x; y and z follow it.
    constexpr double* array() noexcept { return &x; }
    constexpr const double* array() const noexcept { return &x; }
    ///@}

    /// 1 when x, y and z are exactly equal.
    constexpr int operator==(const T4dDblVector& v) const noexcept {
        return x == v.x && y == v.y && z == v.z;
    }
    /// 1 when any component differs (exactly).
    constexpr int operator!=(const T4dDblVector& v) const noexcept { return !(*this == v); }

    ///@{
    /// Componentwise arithmetic: sum, difference, negation, scaling, and their in-place forms.
    constexpr T4dDblVector operator+(const T4dDblVector& v) const noexcept {
        return T4dDblVector(x + v.x, y + v.y, z + v.z);
    }
    constexpr T4dDblVector operator-(const T4dDblVector& v) const noexcept {
        return T4dDblVector(x - v.x, y - v.y, z - v.z);
    }
    constexpr T4dDblVector operator-() const noexcept { return T4dDblVector(-x, -y, -z); }
    constexpr T4dDblVector operator*(double s) const noexcept {
        return T4dDblVector(x * s, y * s, z * s);
    }
    constexpr T4dDblVector& operator+=(const T4dDblVector& v) noexcept {
        return set(x + v.x, y + v.y, z + v.z);
    }
    constexpr T4dDblVector& operator*=(double s) noexcept { return set(x * s, y * s, z * s); }
    ///@}

    /// x·v.x + y·v.y + z·v.z.
    constexpr double dotProduct(const T4dDblVector& v) const noexcept {
        return x * v.x + y * v.y + z * v.z;
    }
    /// The right-handed cross product this × b.
    constexpr T4dDblVector crossProduct(const T4dDblVector& b) const noexcept {
        return T4dDblVector(y * b.z - z * b.y, z * b.x - x * b.z, x * b.y - y * b.x);
    }
    /// this × b, as crossProduct.
    constexpr T4dDblVector operator^(const T4dDblVector& b) const noexcept {
        return crossProduct(b);
    }
    /// Stores a × b; either may be *this. Returns *this.
    constexpr T4dDblVector& setToCrossProduct(const T4dDblVector& a,
                                              const T4dDblVector& b) noexcept {
        return *this = a.crossProduct(b);
    }

    /// The Euclidean length.
    double length() const noexcept { return std::sqrt(norm()); }
    /// The squared length x² + y² + z², without the root: norm is not length.
    constexpr double norm() const noexcept { return x * x + y * y + z * z; }

    /// Scales to unit length when length() > 1e-9; a shorter vector is left exactly as it was,
    /// neither zeroed nor reported. Returns *this.
    T4dDblVector& normalizeIt() noexcept { return normalizeIt(length()); }
    /// Divides by the caller's `len` when len > 1e-9, else leaves the vector as it was.
    /// Returns *this.
    constexpr T4dDblVector& normalizeIt(double len) noexcept {
        if (len > 1e-9)
            *this *= 1.0 / len;
        return *this;
    }
    /// The normalised copy; see normalizeIt.
    T4dDblVector getNormal() const noexcept {
        T4dDblVector r(*this);
        return r.normalizeIt();
    }

    /// The opposite direction (-x, -y, -z).
    constexpr T4dDblVector inverse() const noexcept { return -*this; }
    /// Negates in place. Returns *this.
    constexpr T4dDblVector& invertIt() noexcept { return *this = -*this; }

    /// 1 when the length of this − v is strictly below tol: vectors exactly tol apart are
    /// not equivalent (unlike the point classes, which include the bound).
    int equivalent(const T4dDblVector& v, double tol) const noexcept {
        return (*this - v).length() < tol;
    }
    /// 1 when |length − 1| is strictly below tol.
    int unitLength(double tol) const noexcept { return std::fabs(length() - 1.0) < tol; }
    /// 1 when the unit directions are equivalent within tol, either way round: antiparallel
    /// vectors count as parallel.
    int parallel(const T4dDblVector& v, double tol) const noexcept {
        const T4dDblVector a = getNormal(), b = v.getNormal();
        return a.equivalent(b, tol) || a.equivalent(-b, tol);
    }

    /// The axis of the largest absolute component; ties go to the later axis, so (1, 1, 0)
    /// gives y and (1, 0, 1) and (1, 1, 1) give z.
    constexpr Taxis dominantAxis() const noexcept {
        const double ax = x < 0 ? -x : x, ay = y < 0 ? -y : y, az = z < 0 ? -z : z;
        if (ax > ay && ax > az)
            return XAxis;
        if (ax <= ay && ay > az)
            return YAxis;
        return ZAxis;
    }

    /// Stores v·M over M's 3x3 block (component j = sum over i < 3 of v[i]·M(i, j)); the
    /// translation row is never read. v may be *this. Returns *this.
    constexpr T4dDblVector& setToProduct(const T4dDblVector& v, const T4dDblMatrix& m) noexcept {
        return set(v.x * m(0, 0) + v.y * m(1, 0) + v.z * m(2, 0),
                   v.x * m(0, 1) + v.y * m(1, 1) + v.z * m(2, 1),
                   v.x * m(0, 2) + v.y * m(1, 2) + v.z * m(2, 2));
    }
    /// Stores M·v over M's 3x3 block (component i = sum over j < 3 of M(i, j)·v[j]). v may be
    /// *this. Returns *this.
    constexpr T4dDblVector& setToProduct(const T4dDblMatrix& m, const T4dDblVector& v) noexcept {
        return set(m(0, 0) * v.x + m(0, 1) * v.y + m(0, 2) * v.z,
                   m(1, 0) * v.x + m(1, 1) * v.y + m(1, 2) * v.z,
                   m(2, 0) * v.x + m(2, 1) * v.y + m(2, 2) * v.z);
    }
    /// *this = *this·M (3x3 block). Returns *this.
    constexpr T4dDblVector& postmultBy(const T4dDblMatrix& m) noexcept {
        return setToProduct(*this, m);
    }
    /// *this = M·*this (3x3 block). Returns *this.
    constexpr T4dDblVector& premultBy(const T4dDblMatrix& m) noexcept {
        return setToProduct(m, *this);
    }
    /// *this·M over M's 3x3 block: the direction transformed, never translated.
    constexpr T4dDblVector operator*(const T4dDblMatrix& m) const noexcept {
        return T4dDblVector().setToProduct(*this, m);
    }

    /// Rotates in place about the x axis: y' = y·c − z·s, z' = z·c + y·s. Returns *this.
    T4dDblVector& rotateItX(const Tangle& a) noexcept {
        const double c = a.cos(), s = a.sin();
        return set(x, y * c - z * s, z * c + y * s);
    }
    /// Rotates in place about the y axis: x' = x·c + z·s, z' = z·c − x·s. Returns *this.
    T4dDblVector& rotateItY(const Tangle& a) noexcept {
        const double c = a.cos(), s = a.sin();
        return set(x * c + z * s, y, z * c - x * s);
    }
    /// Rotates in place about the z axis: x' = x·c − y·s, y' = y·c + x·s. Returns *this.
    T4dDblVector& rotateItZ(const Tangle& a) noexcept {
        const double c = a.cos(), s = a.sin();
        return set(x * c - y * s, y * c + x * s, z);
    }

    /// The unit quaternion that turns this direction onto `target` by the smaller angle, about
    /// their cross product. Opposite directions (an angle within 1e-9 of pi) turn by pi about
    /// an axis perpendicular to this one. The identity comes back when the product of the
    /// lengths is below 1e-9, and also whenever the unnormalised cross product has a squared
    /// length of at most 1e-9: nearly parallel directions, short vectors even when
    /// perpendicular, and opposite directions whose cosine rounds short of -1 (an angle about
    /// 2e-8 from pi), such as (1, 1, 0) and (-1, -1, 0).
    /// The quaternion is built on top of this class, so the result's class is only declared
    /// here: include "ObrixBase/geometry/TunitQuaternion.h" (or the umbrella) to call this.
    TunitQuaternion rotateTo(const T4dDblVector& target) const noexcept;
};

/// s·v, the same as v·s.
constexpr T4dDblVector operator*(double s, const T4dDblVector& v) noexcept {
    return v * s;
}

/// M·v over M's 3x3 block.
constexpr T4dDblVector operator*(const T4dDblMatrix& m, const T4dDblVector& v) noexcept {
    return T4dDblVector().setToProduct(m, v);
}

#endif
