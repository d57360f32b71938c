// Element loops over strided views, shared by the vector, matrix and vector-function sources.
// Each loop takes the contiguous path when every stride is 1 so that the compiler can
// vectorise it; the strided path walks raw pointers by the stride directly.
#ifndef OBRIX_MATH_STRIDED_LOOPS_INTERNAL_H
#define OBRIX_MATH_STRIDED_LOOPS_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "strided_loops_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

namespace obrix::detail {

/// |x|: fabs for doubles (so -0.0 gives +0.0), negation of negatives for integers (the most
/// negative value wraps to itself).
template <class T>
inline T absoluteValue(T x) {
    if constexpr (std::is_floating_point_v<T>)
        return std::fabs(x);
    else
        return x < 0 ? static_cast<T>(-x) : x;
}

/// Truncation toward zero (2.9 gives 2, -2.9 gives -2). Values beyond the int range saturate
/// and NaN gives 0: a plain cast would be undefined for them.
inline int truncateToInt(double x) {
    if (!(x == x))
        return 0;
    if (x >= 2147483647.0)
        return std::numeric_limits<int>::max();
    if (x <= -2147483648.0)
        return std::numeric_limits<int>::min();
    return static_cast<int>(x);
}

/// f(x) for every element x of a view of `n` elements at `p` by `stride`.
template <class T, class F>
inline void forEachElement(T* p, unsigned n, int stride, F f) {
    if (stride == 1) {
        for (unsigned i = 0; i < n; ++i)
            f(p[i]);
    } else {
        const std::ptrdiff_t s = stride;
        for (unsigned i = 0; i < n; ++i, p += s)
            f(*p);
    }
}

/// f(a_i, b_i) for the elements of two views of `n` elements.
template <class A, class B, class F>
inline void forEachPair(A* a, int sa, B* b, int sb, unsigned n, F f) {
    if (sa == 1 && sb == 1) {
        for (unsigned i = 0; i < n; ++i)
            f(a[i], b[i]);
    } else {
        const std::ptrdiff_t da = sa, db = sb;
        for (unsigned i = 0; i < n; ++i, a += da, b += db)
            f(*a, *b);
    }
}

/// out_i = f(a_i, b_i) with `out` contiguous and not overlapping the sources.
template <class T, class U, class F>
inline void mapPair(T* __restrict out, const U* a, int sa, const U* b, int sb, unsigned n, F f) {
    if (sa == 1 && sb == 1) {
        for (unsigned i = 0; i < n; ++i)
            out[i] = f(a[i], b[i]);
    } else {
        const std::ptrdiff_t da = sa, db = sb;
        for (unsigned i = 0; i < n; ++i, a += da, b += db)
            out[i] = f(*a, *b);
    }
}

/// out_i = f(a_i) with `out` contiguous and not overlapping the source.
template <class T, class U, class F>
inline void mapOne(T* __restrict out, const U* a, int sa, unsigned n, F f) {
    if (sa == 1) {
        for (unsigned i = 0; i < n; ++i)
            out[i] = f(a[i]);
    } else {
        const std::ptrdiff_t da = sa;
        for (unsigned i = 0; i < n; ++i, a += da)
            out[i] = f(*a);
    }
}

} // namespace obrix::detail

#endif
