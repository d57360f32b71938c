#include "ObrixBase/geometry/Tscale.h"

#include <cmath>

const Tscale Tscale::identity;

int Tscale::equivalent(const Tscale& s, double tol) const noexcept {
    tol = guard(tol);
    return std::fabs(x_ - s.x_) <= tol && std::fabs(y_ - s.y_) <= tol &&
           std::fabs(z_ - s.z_) <= tol;
}

int Tscale::proportionalScale() const noexcept {
    return std::fabs(x_ - y_) <= 1e-9 && std::fabs(y_ - z_) <= 1e-9 && std::fabs(x_ - z_) <= 1e-9;
}
