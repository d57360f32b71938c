#include "ObrixBase/geometry/Tplane.h"

#include <cmath>

Tplane::Tplane(const T4dDblPoint& p, const T4dDblVector& n, double tol) noexcept : tol_(tol) {
    // setPlane replaces the tolerance; stored planes have always carried 1e-9 from here.
    setPlane(p, n);
}

void Tplane::setPlane(const T4dDblPoint& p, T4dDblVector n) noexcept {
    n.normalizeIt();
    a_ = n.x;
    b_ = n.y;
    c_ = n.z;
    d_ = -(a_ * p.x + b_ * p.y + c_ * p.z);
    tol_ = 1e-9;
}

int Tplane::intersection(T4dDblPoint p, T4dDblVector v, T4dDblPoint& hit) const noexcept {
    const double denom = a_ * v.x + b_ * v.y + c_ * v.z;
    if (std::fabs(denom) < 1e-9)
        return Parallel;
    const double t = -(a_ * p.x + b_ * p.y + c_ * p.z + d_) / denom;
    hit = p + v * t;
    return t >= 0.0 ? Ahead : Behind;
}
