#include "ObrixBase/geometry/T4dDblVector.h"

#include <algorithm>
#include <cmath>
#include <numbers>

const T4dDblVector T4dDblVector::identity;

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
