// The one inner product of the numeric classes, shared by dot(), the matrix products and the
// matrix-vector products, so that product(A, B)(i, j) equals dot(A.row(i), B.col(j)) bit for
// bit.
//
// Summation order for doubles: eight running sums s0..s7, sum k taking the terms whose index
// is k modulo 8 in increasing index order, combined as ((s0 + s4) + (s2 + s6)) + ((s1 + s5) +
// (s3 + s7)). Eight sums keep four two-lane additions in flight, which hides the adder's
// latency. The order depends only on the indices, never on the strides, so a strided view and
// its contiguous copy give the same result. Integer sums wrap in the element type.
#ifndef OBRIX_MATH_DOT_INTERNAL_H
#define OBRIX_MATH_DOT_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "dot_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace obrix::detail {

#if defined(__GNUC__) || defined(__clang__)
#define OBRIX_HAVE_VECTOR_EXTENSIONS 1
/// Two doubles in one register: the partial sums (s0, s1), (s2, s3), (s4, s5) or (s6, s7).
using Double2 = double __attribute__((vector_size(16)));

inline Double2 loadDouble2(const double* p) noexcept {
    Double2 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
#endif

/// The combination of the eight partial sums of the order above.
inline double combineLanes(const double (&s)[8]) noexcept {
    return ((s[0] + s[4]) + (s[2] + s[6])) + ((s[1] + s[5]) + (s[3] + s[7]));
}

#if defined(OBRIX_HAVE_VECTOR_EXTENSIONS)
/// The contiguous double case of dotProduct, in the same order. The pairs of the last n mod 8
/// terms go straight into the two-lane sums whose lanes they belong to, and only a final odd
/// term is added alone: short vectors are common, and a strided tail costs more here than the
/// products do.
inline double dotContiguous(const double* a, const double* b, unsigned n) {
    Double2 v0 = {0, 0}, v1 = {0, 0}, v2 = {0, 0}, v3 = {0, 0};
    const unsigned n8 = n & ~7u;
    unsigned i = 0;
    for (; i < n8; i += 8) {
        v0 += loadDouble2(a + i) * loadDouble2(b + i);
        v1 += loadDouble2(a + i + 2) * loadDouble2(b + i + 2);
        v2 += loadDouble2(a + i + 4) * loadDouble2(b + i + 4);
        v3 += loadDouble2(a + i + 6) * loadDouble2(b + i + 6);
    }
    const unsigned rest = n - i;
    if (rest >= 2)
        v0 += loadDouble2(a + i) * loadDouble2(b + i);
    if (rest >= 4)
        v1 += loadDouble2(a + i + 2) * loadDouble2(b + i + 2);
    if (rest >= 6)
        v2 += loadDouble2(a + i + 4) * loadDouble2(b + i + 4);
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
    // combineLanes, two lanes at a time: lane 0 is (s0 + s4) + (s2 + s6), lane 1 the odd sums.
    const Double2 halves = (v0 + v2) + (v1 + v3);
    return halves[0] + halves[1];
}
#endif

/// Inner product of n elements of a (by stride sa) and b (by stride sb).
template <class T>
inline T dotProduct(const T* a, std::ptrdiff_t sa, const T* b, std::ptrdiff_t sb, unsigned n) {
    if constexpr (std::is_floating_point_v<T>) {
#if defined(OBRIX_HAVE_VECTOR_EXTENSIONS)
        if (sa == 1 && sb == 1)
            return dotContiguous(a, b, n);
#endif
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
        return combineLanes(s);
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
