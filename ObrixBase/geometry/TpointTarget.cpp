#include "ObrixBase/geometry/TpointTarget.h"

#include <cmath>

T4dDblVector TpointTarget::direction() const noexcept {
    const T4dDblVector d = target_ - position_;
    const double len = d.length();
    return len > 0.0 ? d * (1.0 / len) : T4dDblVector();
}

TpointTarget& TpointTarget::setDistanceKeepingTarget(double d) noexcept {
    const T4dDblVector dir = direction();
    if (dir.norm() > 0.0)
        position_ = target_ - dir * d;
    return *this;
}

TpointTarget& TpointTarget::setDistanceKeepingPosition(double d) noexcept {
    const T4dDblVector dir = direction();
    if (dir.norm() > 0.0)
        target_ = position_ + dir * d;
    return *this;
}

TpointTarget& TpointTarget::setDirectionKeepingPosition(const T4dDblVector& dir) noexcept {
    const double len = dir.length();
    if (len > 0.0)
        target_ = position_ + dir * (distance() / len);
    return *this;
}

TxformMatrix TpointTarget::viewFrame(const T4dDblVector& up) const noexcept {
    T4dDblVector back = position_ - target_; // local +z points away from the target
    back.normalizeIt();
    if (back.norm() == 0.0)
        back.set(0.0, 0.0, 1.0);
    T4dDblVector u = up - back * up.dotProduct(back);
    if (u.length() <= 1e-9 * (up.length() + 1.0)) {
        // up runs along the line of sight: use the world axis least aligned with it.
        const double ax = std::fabs(back.x), ay = std::fabs(back.y), az = std::fabs(back.z);
        const T4dDblVector axis = ax <= ay && ax <= az ? T4dDblVector(1, 0, 0)
                                  : ay <= az           ? T4dDblVector(0, 1, 0)
                                                       : T4dDblVector(0, 0, 1);
        u = axis - back * axis.dotProduct(back);
    }
    u.normalizeIt();
    const T4dDblVector x0 = u.crossProduct(back);
    // The twist turns the view counter-clockwise about its line of sight, as seen looking
    // along -z from the position.
    const double c = std::cos(twist_), s = std::sin(twist_);
    const T4dDblVector xAxis = x0 * c + u * s, yAxis = u * c - x0 * s;
    TxformMatrix f;
    f.setToAxes(xAxis, yAxis, back, position_);
    return f;
}

int TpointTarget::equivalent(const TpointTarget& p, double tol) const noexcept {
    return position_.equivalent(p.position_, tol) && target_.equivalent(p.target_, tol) &&
           std::fabs(twist_ - p.twist_) <= tol;
}
