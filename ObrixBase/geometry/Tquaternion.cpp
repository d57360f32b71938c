#include "ObrixBase/geometry/Tquaternion.h"

#include <cmath>
#include <numbers>

TunitQuaternion Tquaternion::unit() const noexcept {
    return TunitQuaternion(w, x, y, z).normalizeIt();
}

double Tquaternion::length() const noexcept {
    return std::sqrt(norm());
}

Tquaternion& Tquaternion::normalizeIt() noexcept {
    return *this = *this / length();
}

Tquaternion Tquaternion::exp() const noexcept {
    const double v = std::sqrt(x * x + y * y + z * z);
    const double ew = std::exp(w);
    // sin(v)/v loses every digit as v goes to 0; below 1e-4 its Taylor series 1 − v²/6 is
    // exact to double precision (the next term is v⁴/120 < 1e-18).
    const double k = v < 1e-4 ? 1.0 - v * v / 6.0 : std::sin(v) / v;
    return Tquaternion(ew * std::cos(v), ew * k * x, ew * k * y, ew * k * z);
}

Tquaternion Tquaternion::log() const noexcept {
    const double v = std::sqrt(x * x + y * y + z * z);
    const double lw = 0.5 * std::log(norm());
    if (v == 0.0)
        return w < 0.0 ? Tquaternion(lw, std::numbers::pi, 0.0, 0.0) : Tquaternion(lw);
    // atan2 keeps the angle accurate near 0 and π, where acos(w / |q|) would not.
    const double k = std::atan2(v, w) / v;
    return Tquaternion(lw, k * x, k * y, k * z);
}

int Tquaternion::equivalent(const Tquaternion& q, double tol) const noexcept {
    return std::fabs(w - q.w) <= tol && std::fabs(x - q.x) <= tol && std::fabs(y - q.y) <= tol &&
           std::fabs(z - q.z) <= tol;
}
