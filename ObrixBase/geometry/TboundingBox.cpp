#include "ObrixBase/geometry/TboundingBox.h"

#include <algorithm>
#include <cmath>

TboundingBox& TboundingBox::extendIt(const double* xyz, std::size_t n) noexcept {
    // Local copies of the corners: the compiler cannot keep members in registers across
    // stores through xyz, which might alias them.
    double lx = min_.x, ly = min_.y, lz = min_.z, hx = max_.x, hy = max_.y, hz = max_.z;
    for (std::size_t i = 0; i < 3 * n; i += 3) {
        const double x = xyz[i], y = xyz[i + 1], z = xyz[i + 2];
        lx = x < lx ? x : lx;
        ly = y < ly ? y : ly;
        lz = z < lz ? z : lz;
        hx = x > hx ? x : hx;
        hy = y > hy ? y : hy;
        hz = z > hz ? z : hz;
    }
    min_ = T3dDblPoint(lx, ly, lz);
    max_ = T3dDblPoint(hx, hy, hz);
    return *this;
}

TboundingBox& TboundingBox::intersectIt(const TboundingBox& b) noexcept {
    min_ = T3dDblPoint(std::max(min_.x, b.min_.x), std::max(min_.y, b.min_.y),
                       std::max(min_.z, b.min_.z));
    max_ = T3dDblPoint(std::min(max_.x, b.max_.x), std::min(max_.y, b.max_.y),
                       std::min(max_.z, b.max_.z));
    // Disjoint boxes leave min > max on some axis; store the one canonical empty box so
    // that == and later extensions see no trace of the inverted corners.
    if (isEmpty())
        setToEmpty();
    return *this;
}

int TboundingBox::intersects(const TboundingBox& b) const noexcept {
    return !intersection(b).isEmpty();
}

int TboundingBox::contains(const T3dDblPoint& p, double tol) const noexcept {
    return p.x >= min_.x - tol && p.x <= max_.x + tol && p.y >= min_.y - tol &&
           p.y <= max_.y + tol && p.z >= min_.z - tol && p.z <= max_.z + tol;
}

int TboundingBox::contains(const TboundingBox& b, double tol) const noexcept {
    if (b.isEmpty())
        return 1;
    return !isEmpty() && contains(b.min_, tol) && contains(b.max_, tol);
}

T3dDblPoint TboundingBox::center() const noexcept {
    if (isEmpty())
        return T3dDblPoint();
    return T3dDblPoint(0.5 * (min_.x + max_.x), 0.5 * (min_.y + max_.y), 0.5 * (min_.z + max_.z));
}

T4dDblVector TboundingBox::size() const noexcept {
    if (isEmpty())
        return T4dDblVector();
    return max_ - min_;
}

TboundingBox TboundingBox::transformed(const T4dDblMatrix& m) const noexcept {
    if (isEmpty())
        return TboundingBox();
    // Arvo's method: output coordinate j is the translation plus a sum over input axes i of
    // M(i, j)·p[i]; each term is smallest at one end of axis i and largest at the other, and
    // the terms vary independently, so the sums of the per-term extremes are the exact
    // extremes over the eight corners.
    const double lo[3] = {min_.x, min_.y, min_.z}, hi[3] = {max_.x, max_.y, max_.z};
    double nlo[3], nhi[3];
    for (short j = 0; j < 3; ++j) {
        nlo[j] = nhi[j] = m(3, j);
        for (short i = 0; i < 3; ++i) {
            const double a = m(i, j) * lo[i], b = m(i, j) * hi[i];
            nlo[j] += a < b ? a : b;
            nhi[j] += a < b ? b : a;
        }
    }
    TboundingBox r;
    r.min_ = T3dDblPoint(nlo[0], nlo[1], nlo[2]);
    r.max_ = T3dDblPoint(nhi[0], nhi[1], nhi[2]);
    return r;
}

int TboundingBox::equivalent(const TboundingBox& b, double tol) const noexcept {
    const int e = isEmpty(), be = b.isEmpty();
    if (e || be)
        return e && be;
    const auto close = [tol](double u, double v) { return std::fabs(u - v) <= tol; };
    return close(min_.x, b.min_.x) && close(min_.y, b.min_.y) && close(min_.z, b.min_.z) &&
           close(max_.x, b.max_.x) && close(max_.y, b.max_.y) && close(max_.z, b.max_.z);
}
