// Solves R'*R*x = b with an upper triangular Cholesky factor: R'y = b by inner products down
// the contiguous columns of R, then R x = y by column sweeps from the last.
//
// Both sweeps run on inlined four-wide loops rather than the shared level-1 routines: at the
// orders solved most often the columns are a few elements long, and a call per column with
// its own set-up cost more than the arithmetic.
#include <cmath>
#include <cstring>

#include "ObrixBase/math/kernels/blocked_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {

#if defined(__GNUC__)
typedef double V4 __attribute__((vector_size(4 * sizeof(double))));

// Loads through a reference: a vector returned by value would take a different calling
// convention in the baseline build from the AVX ones.
OBRIX_ALWAYS_INLINE const V4& load4(const double* p, V4& v) {
    std::memcpy(&v, p, sizeof v);
    return v;
}
#endif

// b[0..len) . c[0..len) with two four-wide partial sums: the sums of a short column stay off
// one long chain of additions, which is what bounds the forward sweep.
OBRIX_ALWAYS_INLINE double columnDot(const double* c, const double* b, int len) {
    int i = 0;
#if defined(__GNUC__)
    V4 s0 = {}, s1 = {}, x, y;
    for (; i + 8 <= len; i += 8) {
        s0 += load4(c + i, x) * load4(b + i, y);
        s1 += load4(c + i + 4, x) * load4(b + i + 4, y);
    }
    if (i + 4 <= len) {
        s0 += load4(c + i, x) * load4(b + i, y);
        i += 4;
    }
    s0 += s1;
    double s = (s0[0] + s0[1]) + (s0[2] + s0[3]);
#else
    double s = 0.0;
#endif
    double t = 0.0;
    for (; i < len; ++i)
        t += c[i] * b[i];
    return s + t;
}

// b[0..len) -= t * c[0..len).
OBRIX_ALWAYS_INLINE void columnSweep(double* b, const double* c, double t, int len) {
    int i = 0;
#if defined(__GNUC__)
    const V4 tv = {t, t, t, t};
    V4 x, y;
    for (; i + 4 <= len; i += 4) {
        V4 v = load4(b + i, y) - tv * load4(c + i, x);
        std::memcpy(b + i, &v, sizeof v);
    }
#endif
    for (; i < len; ++i)
        b[i] -= t * c[i];
}

// x / d as a product with the reciprocal of d whenever that is a normal number. The reciprocal
// depends on the factor alone, so it is computed off the chain that links one unknown to the
// next, where a division would sit in full; a reciprocal that overflows or loses bits (the
// extremes of the exponent range, zeros, infinities) keeps the quotient exact as before.
OBRIX_ALWAYS_INLINE double divideBy(double x, double d) {
    const double r = 1.0 / d;
    return std::isnormal(r) ? x * r : x / d;
}

// Each unknown depends on the one found just before it. That one is carried in a register
// and its term is applied last, on its own, so the rest of the column's work (the inner
// product of the older unknowns, the sweep over the rows above) overlaps the step before.
OBRIX_ALWAYS_INLINE void solveBody(const double* a, int lda, int n, double* b) {
    auto col = [&](int j) { return a + static_cast<long>(j) * lda; };
    double last = b[0] = divideBy(b[0], a[0]);
    for (int k = 1; k < n; ++k) {
        const double* c = col(k);
        double s = b[k] - columnDot(c, b, k - 1);
        last = b[k] = divideBy(s - c[k - 1] * last, c[k]);
    }
    double next = b[n - 1];
    for (int k = n - 1; k > 0; --k) {
        const double* c = col(k);
        const double x = b[k] = divideBy(next, c[k]);
        // A zero multiplier leaves b alone, as the classic column sweep does, so the signs
        // of zeros above it are kept.
        if (x != 0.0) {
            next = b[k - 1] - x * c[k - 1];
            columnSweep(b, c, x, k - 1);
        } else {
            next = b[k - 1];
        }
    }
    b[0] = divideBy(next, a[0]);
}

OBRIX_SIMD_DISPATCH(void, solve, (const double* a, int lda, int n, double* b), (a, lda, n, b))

} // namespace

void dposl(const double* a, int lda, int n, double* b) {
    if (n > 0)
        solve(a, lda, n, b);
}

} // namespace qvObrixBase::kernels
