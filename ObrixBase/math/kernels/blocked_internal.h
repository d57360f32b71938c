// Matrix-block building blocks of the kernels: the rank-k update that carries nearly all the
// arithmetic of the blocked LU and Cholesky factorisations, and the triangular solve beside
// it. Column-major, 0-based, leading dimensions in elements.
#ifndef OBRIX_MATH_KERNELS_BLOCKED_INTERNAL_H
#define OBRIX_MATH_KERNELS_BLOCKED_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "blocked_internal.h is private to libObrixBase; include the public headers instead"
#endif

// Loops that the compiler vectorises are built three times on x86-64 with GCC-compatible
// compilers: for the baseline instruction set, for AVX2 with FMA and for AVX-512; the first
// call picks what the processor supports. OBRIX_SIMD_DISPATCH(ret, name, (params), (args))
// defines `name` over an always-inlined `name##Body` with the same parameters.
#if defined(__GNUC__) && defined(__x86_64__)
#define OBRIX_ALWAYS_INLINE inline __attribute__((always_inline))
#define OBRIX_SIMD_DISPATCH(ret, name, params, args)                                               \
    static ret name##Base params {                                                                 \
        return name##Body args;                                                                    \
    }                                                                                              \
    __attribute__((target("avx2,fma"))) static ret name##Avx2 params {                             \
        return name##Body args;                                                                    \
    }                                                                                              \
    __attribute__((target("avx512f,avx2,fma"))) static ret name##Avx512 params {                   \
        return name##Body args;                                                                    \
    }                                                                                              \
    ret name params {                                                                              \
        using Fn = ret(*) params;                                                                  \
        static const Fn chosen = ::qvObrixBase::kernels::detail::simdLevel() == 2   ? name##Avx512 \
                                 : ::qvObrixBase::kernels::detail::simdLevel() == 1 ? name##Avx2   \
                                                                                    : name##Base;  \
        return chosen args;                                                                        \
    }
#else
#define OBRIX_ALWAYS_INLINE inline
#define OBRIX_SIMD_DISPATCH(ret, name, params, args)                                               \
    ret name params {                                                                              \
        return name##Body args;                                                                    \
    }
#endif

#include <cstring>

namespace qvObrixBase::kernels::detail {

/// The inner product of two contiguous vectors with four-wide partial sums, written so that
/// any instruction set vectorises it without reassociating anything.
OBRIX_ALWAYS_INLINE double dotContiguous(const double* x, const double* y, int n) {
#if defined(__GNUC__)
    typedef double V4 __attribute__((vector_size(32)));
    V4 s0 = {}, s1 = {};
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        V4 a0, a1, b0, b1;
        std::memcpy(&a0, x + i, sizeof a0);
        std::memcpy(&a1, x + i + 4, sizeof a1);
        std::memcpy(&b0, y + i, sizeof b0);
        std::memcpy(&b1, y + i + 4, sizeof b1);
        s0 += a0 * b0;
        s1 += a1 * b1;
    }
    s0 += s1;
    double s = (s0[0] + s0[1]) + (s0[2] + s0[3]);
#else
    double s = 0.0;
    int i = 0;
#endif
    for (; i < n; ++i)
        s += x[i] * y[i];
    return s;
}

/// 0 baseline, 1 AVX2 with FMA, 2 AVX-512: the widest the processor supports.
int simdLevel();

/// C (m x n) -= op(A) * B, where op(A) is m x k: A itself (m x k, lda) when transA is false,
/// or the transpose of A (k x m, lda) when it is true; B is k x n. Packs blocks of A and B
/// into scratch memory kept per thread, so repeated calls do not allocate.
void gemmMinus(bool transA, int m, int n, int k, const double* a, int lda, const double* b, int ldb,
               double* c, int ldc);

/// B (m x n) := inv(L) * B for the unit lower triangular L (m x m) in the lower part of l.
void trsmLowerUnit(int m, int n, const double* l, int ldl, double* b, int ldb);

} // namespace qvObrixBase::kernels::detail

#endif
