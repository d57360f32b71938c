// The inner loop of the matrix products: every element of C is the inner product of one
// contiguous row of the left operand with one contiguous column of the right operand, summed
// in exactly the order of dotProduct (dot_internal.h). Speed comes from computing a 2 x 2
// tile of C at once (each loaded element feeds two products) over a band of columns small
// enough to stay in cache; the summation order of each element is unchanged by the tiling.
#ifndef OBRIX_MATH_GEMM_INTERNAL_H
#define OBRIX_MATH_GEMM_INTERNAL_H

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "ObrixBase/math/dot_internal.h"

namespace obrix::detail {

#if defined(__GNUC__) || defined(__clang__)
#define OBRIX_HAVE_VECTOR_EXTENSIONS 1
using Double2 = double __attribute__((vector_size(16)));

inline Double2 loadDouble2(const double* p) noexcept {
    Double2 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
#endif

/// C(i, j) = dot(rows + i*lda, cols + j*ldb) over the first k terms, for an m x n
/// column-major C.
template <class T>
void multiplyRowsByColumns(const T* rows, unsigned lda, const T* cols, unsigned ldb, unsigned m,
                           unsigned n, unsigned k, T* c) {
    const std::size_t sk = lda, sb = ldb, sm = m;
    auto element = [&](unsigned i, unsigned j) -> T& { return c[j * sm + i]; };
#if defined(OBRIX_HAVE_VECTOR_EXTENSIONS)
    if constexpr (std::is_same_v<T, double>) {
        // Lanes (s0, s1) and (s2, s3) of dotProduct are the two halves of two vector sums.
        const unsigned k4 = k & ~3u;
        const unsigned band = k > 0 ? (16384u / k > 8 ? 16384u / k : 8) : n;
        for (unsigned j0 = 0; j0 < n; j0 += band) {
            const unsigned j1 = j0 + band < n ? j0 + band : n;
            unsigned i = 0;
            for (; i + 2 <= m; i += 2) {
                const double* r0 = rows + i * sk;
                const double* r1 = r0 + sk;
                unsigned j = j0;
                for (; j + 2 <= j1; j += 2) {
                    const double* c0 = cols + j * sb;
                    const double* c1 = c0 + sb;
                    Double2 a00 = {0, 0}, b00 = {0, 0}, a01 = {0, 0}, b01 = {0, 0};
                    Double2 a10 = {0, 0}, b10 = {0, 0}, a11 = {0, 0}, b11 = {0, 0};
                    for (unsigned p = 0; p < k4; p += 4) {
                        const Double2 x0 = loadDouble2(r0 + p), y0 = loadDouble2(r0 + p + 2);
                        const Double2 x1 = loadDouble2(r1 + p), y1 = loadDouble2(r1 + p + 2);
                        const Double2 u0 = loadDouble2(c0 + p), v0 = loadDouble2(c0 + p + 2);
                        const Double2 u1 = loadDouble2(c1 + p), v1 = loadDouble2(c1 + p + 2);
                        a00 += x0 * u0;
                        b00 += y0 * v0;
                        a01 += x0 * u1;
                        b01 += y0 * v1;
                        a10 += x1 * u0;
                        b10 += y1 * v0;
                        a11 += x1 * u1;
                        b11 += y1 * v1;
                    }
                    // The last k mod 4 terms go to lanes s0, s1, s2 as in dotProduct.
                    for (unsigned p = k4; p < k; ++p) {
                        const unsigned lane = p - k4;
                        if (lane < 2) {
                            a00[lane] += r0[p] * c0[p];
                            a01[lane] += r0[p] * c1[p];
                            a10[lane] += r1[p] * c0[p];
                            a11[lane] += r1[p] * c1[p];
                        } else {
                            b00[0] += r0[p] * c0[p];
                            b01[0] += r0[p] * c1[p];
                            b10[0] += r1[p] * c0[p];
                            b11[0] += r1[p] * c1[p];
                        }
                    }
                    const Double2 s00 = a00 + b00, s01 = a01 + b01;
                    const Double2 s10 = a10 + b10, s11 = a11 + b11;
                    element(i, j) = s00[0] + s00[1];
                    element(i, j + 1) = s01[0] + s01[1];
                    element(i + 1, j) = s10[0] + s10[1];
                    element(i + 1, j + 1) = s11[0] + s11[1];
                }
                for (; j < j1; ++j) {
                    element(i, j) = dotProduct(r0, 1, cols + j * sb, 1, k);
                    element(i + 1, j) = dotProduct(r1, 1, cols + j * sb, 1, k);
                }
            }
            for (; i < m; ++i)
                for (unsigned j = j0; j < j1; ++j)
                    element(i, j) = dotProduct(rows + i * sk, 1, cols + j * sb, 1, k);
        }
        return;
    }
#endif
    for (unsigned i = 0; i < m; ++i)
        for (unsigned j = 0; j < n; ++j)
            element(i, j) = dotProduct(rows + i * sk, 1, cols + j * sb, 1, k);
}

} // namespace obrix::detail

#endif
