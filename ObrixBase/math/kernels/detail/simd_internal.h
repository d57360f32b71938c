// The numeric speed layer's vector registers and its one way of choosing code for the
// processor at hand. Loops are written once over Vec<W>, W doubles in one register; on x86-64
// with a GCC-compatible compiler a routine that benefits from wider units is compiled three
// times (baseline, AVX2 with FMA, AVX-512) and its first call picks the widest the processor
// supports. Everything else, and every compiler without vector types, runs the baseline code.
#ifndef OBRIX_MATH_KERNELS_DETAIL_SIMD_INTERNAL_H
#define OBRIX_MATH_KERNELS_DETAIL_SIMD_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "simd_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cstring>

namespace qvObrixBase::kernels::detail {

#if defined(__GNUC__)
#define OBRIX_ALWAYS_INLINE inline __attribute__((always_inline))
#else
#define OBRIX_ALWAYS_INLINE inline
#endif

// OBRIX_SIMD_PLAIN selects the plain-array registers below on a compiler that has vector
// types, so that form can be compiled and tested where it is not the default.
#if defined(__GNUC__) && !defined(OBRIX_SIMD_PLAIN)
/// W doubles in one register, with element-wise + - * / and lane access by []. A double on
/// either side of + or * stands for W copies of itself; write scalar factors that way, inside
/// the loop that uses them: the compiler folds the copies into the arithmetic, where a
/// separately built register of copies can cost one instruction per lane.
template <int W>
struct VectorOf {
    // Spelled as a member typedef: the attribute is dropped from a dependent alias template.
    typedef double type __attribute__((vector_size(W * sizeof(double))));
};
template <int W>
using Vec = typename VectorOf<W>::type;
#else
/// W doubles with element-wise + - * / (and + * / by a double on the right) and lane access by
/// []: the same arithmetic as the vector types, one lane at a time.
template <int W>
struct Vec {
    double lane[W];
    double& operator[](int i) { return lane[i]; }
    double operator[](int i) const { return lane[i]; }
    Vec& operator+=(const Vec& o) {
        for (int i = 0; i < W; ++i)
            lane[i] += o.lane[i];
        return *this;
    }
    Vec& operator-=(const Vec& o) {
        for (int i = 0; i < W; ++i)
            lane[i] -= o.lane[i];
        return *this;
    }
    friend Vec operator+(Vec a, const Vec& b) { return a += b; }
    friend Vec operator-(Vec a, const Vec& b) { return a -= b; }
    friend Vec operator*(Vec a, const Vec& b) {
        for (int i = 0; i < W; ++i)
            a.lane[i] *= b.lane[i];
        return a;
    }
    friend Vec operator/(Vec a, const Vec& b) {
        for (int i = 0; i < W; ++i)
            a.lane[i] /= b.lane[i];
        return a;
    }
    friend Vec operator/(Vec a, double s) {
        for (int i = 0; i < W; ++i)
            a.lane[i] /= s;
        return a;
    }
    friend Vec operator+(Vec a, double s) {
        for (int i = 0; i < W; ++i)
            a.lane[i] += s;
        return a;
    }
    friend Vec operator*(Vec a, double s) {
        for (int i = 0; i < W; ++i)
            a.lane[i] *= s;
        return a;
    }
};
#endif

/// The number of doubles in V.
template <class V>
constexpr int lanesOf = static_cast<int>(sizeof(V) / sizeof(double));

// Loads and stores go through memcpy: no alignment is assumed, and the compiler turns them
// into single unaligned moves. Results come back through a reference, never by value: a
// vector returned by value takes a different calling convention in the baseline build from
// the wide ones, should a call not be inlined.

/// v = p[0 .. lanes of V).
template <class V>
OBRIX_ALWAYS_INLINE const V& load(V& v, const double* p) {
    std::memcpy(&v, p, sizeof v);
    return v;
}

/// p[0 .. lanes of V) = v.
template <class V>
OBRIX_ALWAYS_INLINE void store(double* p, const V& v) {
    std::memcpy(p, &v, sizeof v);
}

/// m = the larger of m and x in each lane; a lane of x that is not a number never wins.
template <class V>
OBRIX_ALWAYS_INLINE void maxInto(V& m, const V& x) {
#if defined(__GNUC__) && !defined(OBRIX_SIMD_PLAIN)
    m = x > m ? x : m;
#else
    for (int i = 0; i < lanesOf<V>; ++i)
        m[i] = x[i] > m[i] ? x[i] : m[i];
#endif
}

/// 0 baseline, 1 AVX2 with FMA, 2 AVX-512: the widest the processor supports, capped by the
/// environment variable OBRIX_KERNEL_SIMD (0 or 1), so the narrower paths can be tested and
/// compared on a processor that has the wider ones. Decided once per process.
int simdLevel();

// OBRIX_SIMD_DISPATCH(ret, name, (params), (args)) defines `name` over a template
// `name##Body<Level>` with the same parameters, an always-inlined function that the macro
// compiles once per level; the body may use Level to pick its register width and tiling, or
// ignore it and let the compiler widen its loops. The wide levels may contract a product and
// a sum into one fused multiply-add, so a dispatched routine's last bits can differ from level
// to level: results that must be the same on every processor are never dispatched.
#if defined(__GNUC__) && defined(__x86_64__)
#define OBRIX_SIMD_DISPATCH(ret, name, params, args)                                               \
    static ret name##Level0 params {                                                               \
        return name##Body<0> args;                                                                 \
    }                                                                                              \
    __attribute__((target("avx2,fma"))) static ret name##Level1 params {                           \
        return name##Body<1> args;                                                                 \
    }                                                                                              \
    __attribute__((target("avx512f,avx2,fma"))) static ret name##Level2 params {                   \
        return name##Body<2> args;                                                                 \
    }                                                                                              \
    ret name params {                                                                              \
        using Fn = ret(*) params;                                                                  \
        static const Fn chosen = ::qvObrixBase::kernels::detail::simdLevel() == 2 ? name##Level2   \
                                 : ::qvObrixBase::kernels::detail::simdLevel() == 1                \
                                     ? name##Level1                                                \
                                     : name##Level0;                                               \
        return chosen args;                                                                        \
    }
#else
#define OBRIX_SIMD_DISPATCH(ret, name, params, args)                                               \
    ret name params {                                                                              \
        return name##Body<0> args;                                                                 \
    }
#endif

} // namespace qvObrixBase::kernels::detail

#endif
