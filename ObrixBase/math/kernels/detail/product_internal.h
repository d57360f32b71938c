// The matrix product of the numeric classes: every element of C is the inner product of one
// contiguous row of the left operand with one contiguous column of the right operand, summed
// in exactly the order of reproducibleDot (dot_internal.h), so that it equals dot() of the two
// bit for bit. The factorisation kernels' rank-k update (blocked_internal.h) promises no such
// thing and is faster at large orders; the two are not interchangeable.
//
// Speed comes from computing a 2 x 2 tile of C at once (each loaded element feeds two
// products) over a band of columns small enough to stay in cache. The eight partial sums of
// each element are accumulated in two passes, lanes 0-3 then lanes 4-7, so that a tile's sums
// fit in the registers; each lane still adds its terms in increasing index order, so the
// tiling changes no result.
#ifndef OBRIX_MATH_KERNELS_DETAIL_PRODUCT_INTERNAL_H
#define OBRIX_MATH_KERNELS_DETAIL_PRODUCT_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "product_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cstddef>
#include <type_traits>

#include "ObrixBase/math/kernels/detail/dot_internal.h"

namespace qvObrixBase::kernels::detail {

/// Lanes 4h..4h+3 of the eight partial sums for the 2 x 2 tile of rows r0, r1 and columns
/// c0, c1 over k terms: low[t] holds lanes (4h, 4h+1), high[t] lanes (4h+2, 4h+3) of tile
/// element t = 2 * row + column.
inline void tileHalf(const double* r0, const double* r1, const double* c0, const double* c1,
                     unsigned k, unsigned h, Lanes2 (&low)[4], Lanes2 (&high)[4]) {
    const unsigned k8 = k & ~7u, offset = 4 * h;
    Lanes2 a00 = {0, 0}, b00 = {0, 0}, a01 = {0, 0}, b01 = {0, 0};
    Lanes2 a10 = {0, 0}, b10 = {0, 0}, a11 = {0, 0}, b11 = {0, 0};
    for (unsigned p = offset; p < k8; p += 8) {
        Lanes2 x0, y0, x1, y1, u0, v0, u1, v1;
        load(x0, r0 + p), load(y0, r0 + p + 2), load(x1, r1 + p), load(y1, r1 + p + 2);
        load(u0, c0 + p), load(v0, c0 + p + 2), load(u1, c1 + p), load(v1, c1 + p + 2);
        a00 += x0 * u0;
        b00 += y0 * v0;
        a01 += x0 * u1;
        b01 += y0 * v1;
        a10 += x1 * u0;
        b10 += y1 * v0;
        a11 += x1 * u1;
        b11 += y1 * v1;
    }
    // The last k mod 8 terms go to lanes 0, 1, 2, ... as in reproducibleDot.
    for (unsigned p = k8 + offset; p < k && p < k8 + offset + 4; ++p) {
        const unsigned lane = p - k8 - offset, part = lane % 2;
        if (lane < 2) {
            a00[part] += r0[p] * c0[p];
            a01[part] += r0[p] * c1[p];
            a10[part] += r1[p] * c0[p];
            a11[part] += r1[p] * c1[p];
        } else {
            b00[part] += r0[p] * c0[p];
            b01[part] += r0[p] * c1[p];
            b10[part] += r1[p] * c0[p];
            b11[part] += r1[p] * c1[p];
        }
    }
    low[0] = a00, low[1] = a01, low[2] = a10, low[3] = a11;
    high[0] = b00, high[1] = b01, high[2] = b10, high[3] = b11;
}

/// C(i, j) = reproducibleDot(rows + i*lda, cols + j*ldb) over the first k terms, for an m x n
/// column-major C.
template <class T>
void reproducibleProduct(const T* rows, unsigned lda, const T* cols, unsigned ldb, unsigned m,
                         unsigned n, unsigned k, T* c) {
    const std::size_t sk = lda, sb = ldb, sm = m;
    auto element = [&](unsigned i, unsigned j) -> T& { return c[j * sm + i]; };
    if constexpr (std::is_same_v<T, double>) {
        // A band of columns of about 128 KiB stays in cache while every row pair passes it.
        const unsigned band = k > 0 ? (16384u / k > 8 ? 16384u / k : 8) : (n > 0 ? n : 1);
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
                    Lanes2 low[4], high[4], low2[4], high2[4];
                    tileHalf(r0, r1, c0, c1, k, 0, low, high);
                    tileHalf(r0, r1, c0, c1, k, 1, low2, high2);
                    double out[4];
                    for (int t = 0; t < 4; ++t) {
                        // (v0 + v2) + (v1 + v3), then the two lanes: combineLanes' order.
                        const Lanes2 total = (low[t] + low2[t]) + (high[t] + high2[t]);
                        out[t] = total[0] + total[1];
                    }
                    element(i, j) = out[0];
                    element(i, j + 1) = out[1];
                    element(i + 1, j) = out[2];
                    element(i + 1, j + 1) = out[3];
                }
                for (; j < j1; ++j) {
                    element(i, j) = reproducibleDot(r0, 1, cols + j * sb, 1, k);
                    element(i + 1, j) = reproducibleDot(r1, 1, cols + j * sb, 1, k);
                }
            }
            for (; i < m; ++i)
                for (unsigned j = j0; j < j1; ++j)
                    element(i, j) = reproducibleDot(rows + i * sk, 1, cols + j * sb, 1, k);
        }
        return;
    }
    for (unsigned i = 0; i < m; ++i)
        for (unsigned j = 0; j < n; ++j)
            element(i, j) = reproducibleDot(rows + i * sk, 1, cols + j * sb, 1, k);
}

} // namespace qvObrixBase::kernels::detail

#endif
