// Solves R'*R*x = b with an upper triangular Cholesky factor: R'y = b by inner products down
// the contiguous columns of R, then R x = y by column sweeps from the last.
//
// Both sweeps run on inlined four-wide loops (the kernels' inner product and a column update)
// rather than the level-1 routines: at the orders solved most often the columns are a few
// elements long, and a call per column with its own set-up costs more than the arithmetic.
#include <cmath>

#include "ObrixBase/math/kernels/detail/dot_internal.h"
#include "ObrixBase/math/kernels/detail/simd_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {

// b[0..len) -= t * c[0..len).
OBRIX_ALWAYS_INLINE void columnSweep(double* b, const double* c, double t, int len) {
    int i = 0;
    for (detail::Vec<4> x, y; i + 4 <= len; i += 4)
        detail::store(b + i, detail::load(y, b + i) - detail::load(x, c + i) * t);
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
template <int>
OBRIX_ALWAYS_INLINE void solveBody(const double* a, int lda, int n, double* b) {
    auto col = [&](int j) { return a + static_cast<long>(j) * lda; };
    double last = b[0] = divideBy(b[0], a[0]);
    for (int k = 1; k < n; ++k) {
        const double* c = col(k);
        double s = b[k] - detail::kernelDot(c, b, k - 1);
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
