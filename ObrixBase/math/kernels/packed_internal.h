// Addressing and the symmetric interchange shared by the packed symmetric kernels.
#ifndef OBRIX_MATH_KERNELS_PACKED_INTERNAL_H
#define OBRIX_MATH_KERNELS_PACKED_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "packed_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <utility>

namespace qvObrixBase::kernels::detail {

/// Offset of the upper-triangle element (i, j), i <= j, in the packed array.
inline long packedAt(int i, int j) {
    return static_cast<long>(j) * (j + 1) / 2 + i;
}

/// Start of packed column j (its elements 0..j are contiguous).
inline double* packedCol(double* ap, int j) {
    return ap + packedAt(0, j);
}
inline const double* packedCol(const double* ap, int j) {
    return ap + packedAt(0, j);
}

/// Exchanges rows and columns i < q of the symmetric matrix whose upper triangle is packed
/// in ap, within its leading block of order last + 1 (q <= last).
inline void packedInterchange(double* ap, int i, int q, int last) {
    for (int r = 0; r < i; ++r)
        std::swap(ap[packedAt(r, i)], ap[packedAt(r, q)]);
    for (int j = i + 1; j < q; ++j)
        std::swap(ap[packedAt(j, q)], ap[packedAt(i, j)]);
    std::swap(ap[packedAt(i, i)], ap[packedAt(q, q)]);
    for (int j = q + 1; j <= last; ++j)
        std::swap(ap[packedAt(i, j)], ap[packedAt(q, j)]);
}

} // namespace qvObrixBase::kernels::detail

#endif
