// The inner products of the numeric speed layer. There are two, because their callers promise
// different things:
//
// - reproducibleDot is the inner product of the numeric classes (dot(), the matrix products,
//   the matrix-vector products) and of the public ddot. Its summation order is fixed, its
//   products are rounded before they are added (x86-64's baseline has no fused multiply-add),
//   and it is never compiled for a wider level, so the same vectors give the same bits on every
//   processor, and a matrix product's entry (i, j) equals dot(row i, column j) bit for bit, as the
//   classes guarantee.
// - kernelDot is the inner product inside the factorisation kernels, which promise accuracy,
//   not bits: it is inlined into routines compiled for every level, where the compiler may
//   fuse each product into its sum, and it keeps a short tail off the main chain of sums.
//
// The order of reproducibleDot for doubles: eight running sums s0..s7, sum k taking the terms
// whose index is k modulo 8 in increasing index order, combined as ((s0 + s4) + (s2 + s6)) +
// ((s1 + s5) + (s3 + s7)). Eight sums keep four two-lane additions in flight, which hides the
// adder's latency; wider registers would not help, since eight chains of additions bound the
// speed at any width. The order depends only on the indices, never on the strides, so a
// strided view and its contiguous copy give the same result. Integer sums wrap in the element
// type.
#ifndef OBRIX_MATH_KERNELS_DETAIL_DOT_INTERNAL_H
#define OBRIX_MATH_KERNELS_DETAIL_DOT_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "dot_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cstddef>
#include <type_traits>

#include "ObrixBase/math/kernels/detail/simd_internal.h"

namespace qvObrixBase::kernels::detail {

/// Two lanes of the eight partial sums: (s0, s1), (s2, s3), (s4, s5) or (s6, s7).
using Lanes2 = Vec<2>;

/// The contiguous double case of reproducibleDot, in the same order. The pairs of the last
/// n mod 8 terms go straight into the two-lane sums whose lanes they belong to, and only a
/// final odd term is added alone: short vectors are common, and a strided tail costs more here
/// than the products do.
inline double reproducibleDotContiguous(const double* a, const double* b, unsigned n) {
    Lanes2 v0 = {}, v1 = {}, v2 = {}, v3 = {}, x, y;
    const unsigned n8 = n & ~7u;
    unsigned i = 0;
    for (; i < n8; i += 8) {
        v0 += load(x, a + i) * load(y, b + i);
        v1 += load(x, a + i + 2) * load(y, b + i + 2);
        v2 += load(x, a + i + 4) * load(y, b + i + 4);
        v3 += load(x, a + i + 6) * load(y, b + i + 6);
    }
    const unsigned rest = n - i;
    if (rest >= 2)
        v0 += load(x, a + i) * load(y, b + i);
    if (rest >= 4)
        v1 += load(x, a + i + 2) * load(y, b + i + 2);
    if (rest >= 6)
        v2 += load(x, a + i + 4) * load(y, b + i + 4);
    if (rest & 1u) {
        const double last = a[n - 1] * b[n - 1];
        switch (rest) {
        case 1:
            v0[0] += last;
            break;
        case 3:
            v1[0] += last;
            break;
        case 5:
            v2[0] += last;
            break;
        default:
            v3[0] += last;
            break;
        }
    }
    // The combination two lanes at a time: lane 0 is (s0 + s4) + (s2 + s6), lane 1 the odd sums.
    const Lanes2 halves = (v0 + v2) + (v1 + v3);
    return halves[0] + halves[1];
}

/// Inner product of n elements of a (by stride sa) and b (by stride sb), in the fixed order
/// above. A negative stride walks back from the element a (or b) points at.
template <class T>
inline T reproducibleDot(const T* a, std::ptrdiff_t sa, const T* b, std::ptrdiff_t sb, unsigned n) {
    if constexpr (std::is_floating_point_v<T>) {
        if (sa == 1 && sb == 1)
            return reproducibleDotContiguous(a, b, n);
        double s[8] = {0, 0, 0, 0, 0, 0, 0, 0};
        const unsigned n8 = n & ~7u;
        unsigned i = 0;
        for (; i < n8; i += 8)
            for (unsigned k = 0; k < 8; ++k)
                s[k] += a[(i + k) * sa] * b[(i + k) * sb];
        // The last n mod 8 terms, one to each of lanes 0, 1, ...; unrolled, since short
        // vectors are common and a loop here costs more than the vector part.
        const T* ta = a + static_cast<std::ptrdiff_t>(i) * sa;
        const T* tb = b + static_cast<std::ptrdiff_t>(i) * sb;
        switch (n - i) {
        case 7:
            s[6] += ta[6 * sa] * tb[6 * sb];
            [[fallthrough]];
        case 6:
            s[5] += ta[5 * sa] * tb[5 * sb];
            [[fallthrough]];
        case 5:
            s[4] += ta[4 * sa] * tb[4 * sb];
            [[fallthrough]];
        case 4:
            s[3] += ta[3 * sa] * tb[3 * sb];
            [[fallthrough]];
        case 3:
            s[2] += ta[2 * sa] * tb[2 * sb];
            [[fallthrough]];
        case 2:
            s[1] += ta[sa] * tb[sb];
            [[fallthrough]];
        case 1:
            s[0] += ta[0] * tb[0];
            break;
        default:
            break;
        }
        return ((s[0] + s[4]) + (s[2] + s[6])) + ((s[1] + s[5]) + (s[3] + s[7]));
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

/// x[0..n) . y[0..n) for the kernels: two four-wide partial sums over blocks of eight, one more
/// four-wide step, and the last n mod 4 terms summed apart and added at the end, so the sums of
/// a short column stay off one long chain of additions.
OBRIX_ALWAYS_INLINE double kernelDot(const double* x, const double* y, int n) {
    using V = Vec<4>;
    V s0 = {}, s1 = {}, a, b;
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        s0 += load(a, x + i) * load(b, y + i);
        s1 += load(a, x + i + 4) * load(b, y + i + 4);
    }
    if (i + 4 <= n) {
        s0 += load(a, x + i) * load(b, y + i);
        i += 4;
    }
    s0 += s1;
    const double s = (s0[0] + s0[1]) + (s0[2] + s0[3]);
    double t = 0.0;
    for (; i < n; ++i)
        t += x[i] * y[i];
    return s + t;
}

} // namespace qvObrixBase::kernels::detail

#endif
