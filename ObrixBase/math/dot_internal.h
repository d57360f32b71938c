// The one inner product of the numeric classes, shared by dot(), the matrix products and the
// matrix-vector products, so that product(A, B)(i, j) equals dot(A.row(i), B.col(j)) bit for
// bit.
//
// Summation order for doubles: four running sums, sum k taking the terms whose index is k
// modulo 4, combined as (s0 + s2) + (s1 + s3). The order depends only on the indices, never
// on the strides, so a strided view and its contiguous copy give the same result. Integer
// sums wrap in the element type.
#ifndef OBRIX_MATH_DOT_INTERNAL_H
#define OBRIX_MATH_DOT_INTERNAL_H

#include <cstddef>
#include <type_traits>

namespace obrix::detail {

/// Inner product of n elements of a (by stride sa) and b (by stride sb).
template <class T>
inline T dotProduct(const T* a, std::ptrdiff_t sa, const T* b, std::ptrdiff_t sb, unsigned n) {
    if constexpr (std::is_floating_point_v<T>) {
        double s0 = 0.0, s1 = 0.0, s2 = 0.0, s3 = 0.0;
        unsigned i = 0;
        if (sa == 1 && sb == 1) {
            for (; i + 4 <= n; i += 4) {
                s0 += a[i] * b[i];
                s1 += a[i + 1] * b[i + 1];
                s2 += a[i + 2] * b[i + 2];
                s3 += a[i + 3] * b[i + 3];
            }
        } else {
            for (; i + 4 <= n; i += 4) {
                s0 += a[i * sa] * b[i * sb];
                s1 += a[(i + 1) * sa] * b[(i + 1) * sb];
                s2 += a[(i + 2) * sa] * b[(i + 2) * sb];
                s3 += a[(i + 3) * sa] * b[(i + 3) * sb];
            }
        }
        if (i < n)
            s0 += a[i * sa] * b[i * sb];
        if (i + 1 < n)
            s1 += a[(i + 1) * sa] * b[(i + 1) * sb];
        if (i + 2 < n)
            s2 += a[(i + 2) * sa] * b[(i + 2) * sb];
        return (s0 + s2) + (s1 + s3);
    } else {
        // Unsigned arithmetic wraps without undefined behaviour; the conversion back to the
        // element type is modular.
        using U = std::make_unsigned_t<decltype(T() * T())>;
        U sum = 0;
        for (unsigned i = 0; i < n; ++i)
            sum += static_cast<U>(a[i * sa]) * static_cast<U>(b[i * sb]);
        return static_cast<T>(sum);
    }
}

} // namespace obrix::detail

#endif
