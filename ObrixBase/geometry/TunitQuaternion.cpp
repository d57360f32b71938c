#include "ObrixBase/geometry/TunitQuaternion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "ObrixBase/geometry/T4dDblVector.h"

TunitQuaternion& TunitQuaternion::setToPivotAxis(double angle, const T4dDblVector& axis) noexcept {
    const double n2 = axis.norm();
    if (n2 <= 1e-9)
        return *this = TunitQuaternion();
    const double s = std::sin(angle / 2.0) / std::sqrt(n2);
    w = std::cos(angle / 2.0);
    x = axis.x * s;
    y = axis.y * s;
    z = axis.z * s;
    return *this;
}

void TunitQuaternion::getPivotAxis(double& angle, T4dDblVector& axis) const noexcept {
    const double v = std::sqrt(x * x + y * y + z * z);
    if (v == 0.0) {
        angle = 0.0;
        axis.set(0.0, 0.0, 1.0);
        return;
    }
    // atan2 of the half angle stays accurate near 0 and pi, where acos(w) would not.
    angle = 2.0 * std::atan2(v, w);
    axis.set(x / v, y / v, z / v);
}

TunitQuaternion& TunitQuaternion::setFromMatrix(const T4dDblMatrix& m) noexcept {
    // Shepperd's method: of the four squared components, 4w² = 1 + trace and 4x², 4y², 4z²
    // from the diagonal, take the square root of the largest (well away from 0) and read the
    // other three from sums and differences of symmetric off-diagonal pairs. In the row-vector
    // form M(1,2) − M(2,1) = 4wx, M(2,0) − M(0,2) = 4wy, M(0,1) − M(1,0) = 4wz.
    double r[3][3];
    for (int i = 0; i < 3; ++i) {
        const double len = std::sqrt(m(i, 0) * m(i, 0) + m(i, 1) * m(i, 1) + m(i, 2) * m(i, 2));
        const double inv = len > 0.0 ? 1.0 / len : 1.0;
        for (int j = 0; j < 3; ++j)
            r[i][j] = m(i, j) * inv;
    }
    const double tw = 1.0 + r[0][0] + r[1][1] + r[2][2];
    const double tx = 1.0 + r[0][0] - r[1][1] - r[2][2];
    const double ty = 1.0 - r[0][0] + r[1][1] - r[2][2];
    const double tz = 1.0 - r[0][0] - r[1][1] + r[2][2];
    if (tw >= tx && tw >= ty && tw >= tz) {
        const double q = 0.5 * std::sqrt(tw), f = 0.25 / q;
        *this = TunitQuaternion(q, (r[1][2] - r[2][1]) * f, (r[2][0] - r[0][2]) * f,
                                (r[0][1] - r[1][0]) * f);
    } else if (tx >= ty && tx >= tz) {
        const double q = 0.5 * std::sqrt(tx), f = 0.25 / q;
        *this = TunitQuaternion((r[1][2] - r[2][1]) * f, q, (r[0][1] + r[1][0]) * f,
                                (r[2][0] + r[0][2]) * f);
    } else if (ty >= tz) {
        const double q = 0.5 * std::sqrt(ty), f = 0.25 / q;
        *this = TunitQuaternion((r[2][0] - r[0][2]) * f, (r[0][1] + r[1][0]) * f, q,
                                (r[1][2] + r[2][1]) * f);
    } else {
        const double q = 0.5 * std::sqrt(tz), f = 0.25 / q;
        *this = TunitQuaternion((r[0][1] - r[1][0]) * f, (r[2][0] + r[0][2]) * f,
                                (r[1][2] + r[2][1]) * f, q);
    }
    // q and −q are the same rotation; w >= 0 makes the answer unique.
    if (w < 0.0)
        *this = TunitQuaternion(-w, -x, -y, -z);
    return normalizeIt();
}

T4dDblMatrix TunitQuaternion::matrix() const noexcept {
    const double s = 2.0 / (w * w + x * x + y * y + z * z);
    return T4dDblMatrix(1.0 - (y * y + z * z) * s, (x * y + w * z) * s, (x * z - w * y) * s, 0.0,
                        (x * y - w * z) * s, 1.0 - (x * x + z * z) * s, (y * z + w * x) * s, 0.0,
                        (x * z + w * y) * s, (y * z - w * x) * s, 1.0 - (x * x + y * y) * s, 0.0,
                        0.0, 0.0, 0.0, 1.0);
}

double TunitQuaternion::length() const noexcept {
    return std::sqrt(w * w + x * x + y * y + z * z);
}

TunitQuaternion& TunitQuaternion::normalizeIt() noexcept {
    const double len = length();
    if (len <= 1e-9)
        return *this = TunitQuaternion();
    const double inv = 1.0 / len;
    *this = TunitQuaternion(w * inv, x * inv, y * inv, z * inv);
    return *this;
}

int TunitQuaternion::equivalent(const TunitQuaternion& q, double tol) const noexcept {
    const auto close = [tol](double a, double b) { return std::fabs(a - b) <= tol; };
    return (close(w, q.w) && close(x, q.x) && close(y, q.y) && close(z, q.z)) ||
           (close(w, -q.w) && close(x, -q.x) && close(y, -q.y) && close(z, -q.z));
}

TunitQuaternion& TunitQuaternion::setToSlerp(const TunitQuaternion& a, const TunitQuaternion& b,
                                             double t) noexcept {
    // Shoemake's spherical interpolation. q and −q are the same rotation, so the end b is
    // flipped onto a's hemisphere to take the shorter arc.
    const TunitQuaternion qa = a;
    TunitQuaternion qb = b;
    double d = qa.w * qb.w + qa.x * qb.x + qa.y * qb.y + qa.z * qb.z;
    if (d < 0.0) {
        d = -d;
        qb = TunitQuaternion(-qb.w, -qb.x, -qb.y, -qb.z);
    }
    if (d > 1.0)
        d = 1.0;
    const double theta = std::acos(d);
    // sin θ from cos θ without a third sine: 1 − d is exact for d >= 0.5 (Sterbenz), so the
    // factored form (1 − d)(1 + d) keeps sin θ as accurate as θ itself.
    const double sinTheta = std::sqrt((1.0 - d) * (1.0 + d));
    if (sinTheta < 1e-6) {
        // Nearly the same rotation: the arc is a straight line to well within rounding.
        *this = TunitQuaternion(qa.w + t * (qb.w - qa.w), qa.x + t * (qb.x - qa.x),
                                qa.y + t * (qb.y - qa.y), qa.z + t * (qb.z - qa.z));
        return normalizeIt();
    }
    const double ka = std::sin((1.0 - t) * theta) / sinTheta;
    const double kb = std::sin(t * theta) / sinTheta;
    *this = TunitQuaternion(ka * qa.w + kb * qb.w, ka * qa.x + kb * qb.x, ka * qa.y + kb * qb.y,
                            ka * qa.z + kb * qb.z);
    return *this;
}

// Defined with the quaternion rather than the vector: the quaternion is built on vectors, and
// keeping every use of it on this side leaves the vector's files free of the quaternion.
TunitQuaternion T4dDblVector::rotateTo(const T4dDblVector& target) const noexcept {
    const double l1 = target.length(), l2 = length();
    if (std::fabs(l1 * l2) < 1e-9)
        return TunitQuaternion();
    const double c = std::clamp(dotProduct(target) / (l1 * l2), -1.0, 1.0);
    const double angle = std::acos(c);

    // Opposite directions are recognised by the angle alone. acos is steep near -1, so opposite
    // vectors whose cosine rounds to -1 + 2^-52 read as pi - 2e-8 and take the cross-product
    // branch, where the vanishing axis gives the identity below; callers that may pass
    // opposite directions compare the cosine themselves.
    T4dDblVector axis;
    if (std::fabs(angle - std::numbers::pi) < 1e-9) {
        // The cross product vanishes and any perpendicular serves. Swap the dominant component
        // into the next axis, which is perpendicular and never short.
        const int d = dominantAxis(), e = (d + 1) % 3, f = (d + 2) % 3;
        axis[d] = -(*this)[e];
        axis[e] = (*this)[d];
        axis[f] = 0.0;
    } else {
        axis = crossProduct(target);
    }
    // setToPivotAxis gives up at a squared axis length of 1e-9, so nearly parallel or short
    // vectors whose cross product is that small yield the identity.
    return TunitQuaternion(angle, axis);
}

T4dDblVector TunitQuaternion::log() const noexcept {
    // q and −q are one rotation: take the representative with w >= 0, so the half angle
    // stays in [0, π/2] and the log is continuous across the identity.
    const double s = w < 0.0 ? -1.0 : 1.0;
    const double v = std::sqrt(x * x + y * y + z * z);
    if (v == 0.0)
        return T4dDblVector();
    const double k = s * std::atan2(v, s * w) / v;
    return T4dDblVector(k * x, k * y, k * z);
}

TunitQuaternion& TunitQuaternion::setToExp(const T4dDblVector& v) noexcept {
    const double a = v.length();
    // sin(a)/a by its Taylor series below 1e-4, where the quotient loses its digits.
    const double k = a < 1e-4 ? 1.0 - a * a / 6.0 : std::sin(a) / a;
    *this = TunitQuaternion(std::cos(a), k * v.x, k * v.y, k * v.z);
    return *this;
}

double TunitQuaternion::angleTo(const TunitQuaternion& q) const noexcept {
    // The relative rotation's half angle from its vector length and |w|: atan2 stays exact
    // for nearly equal rotations, where acos(|dot|) would lose half the digits.
    const TunitQuaternion d = inverse() * q;
    const double v = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
    return 2.0 * std::atan2(v, std::fabs(d.w));
}
