// The determinant as the kernels return it: a mantissa det[0] with 1 <= |det[0]| < 10 (or 0)
// and a power of ten det[1], built one factor at a time so that it neither overflows nor
// underflows for large orders.
#ifndef OBRIX_MATH_KERNELS_DETERMINANT_INTERNAL_H
#define OBRIX_MATH_KERNELS_DETERMINANT_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "determinant_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cmath>

namespace qvObrixBase::kernels::detail {

/// Multiplies det[0] * 10^det[1] by `factor` and renormalises the mantissa. Returns false, with
/// the product left as it is, once the mantissa is 0, infinite or NaN: no later factor can
/// bring it back into range, and normalising it would never end, so the caller stops there.
inline bool scaleDeterminant(double det[2], double factor) {
    det[0] *= factor;
    if (det[0] == 0.0 || !std::isfinite(det[0]))
        return false;
    while (std::fabs(det[0]) < 1.0) {
        det[0] *= 10.0;
        det[1] -= 1.0;
    }
    while (std::fabs(det[0]) >= 10.0) {
        det[0] /= 10.0;
        det[1] += 1.0;
    }
    return true;
}

} // namespace qvObrixBase::kernels::detail

#endif
