// Cholesky factorisation P'*A*P = R'*R with diagonal pivoting. Initial and final columns are
// first moved to the ends by symmetric interchanges and then stay put; at each step among
// the free columns the one with the largest remaining diagonal is brought forward. Factoring
// stops at the first pivot that is not positive, leaving the reduced trailing matrix behind.
//
// Orders from 9 to 64 are factored right-looking in a padded copy of the upper triangle: each row
// of R is gathered once into contiguous memory and the trailing columns take it in one
// vector update each. The padding lets every column update run in whole vectors past its
// end into rows that are discarded, so short columns need no scalar remainder, and the
// caller's strict lower triangle is never written.
//
// Other orders go a panel of rows of R at a time (the smallest fit one panel): inside the panel
// each row is formed from the columns of A and the panel rows above it (the remaining diagonal is
// kept current in work, so pivots can be chosen before the trailing matrix is updated); after the
// panel the trailing upper triangle takes the panel's contribution in one blocked rank-k update.
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "ObrixBase/math/kernels/detail/blocked_internal.h"
#include "ObrixBase/math/kernels/detail/dot_internal.h"
#include "ObrixBase/math/kernels/detail/simd_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {

constexpr int kPanel = 32;

struct Upper {
    double* a;
    int lda;
    double& operator()(int i, int j) const { return a[i + static_cast<long>(j) * lda]; }
    double* col(int j) const { return a + static_cast<long>(j) * lda; }
};

// Symmetric interchange of k < q in the matrix whose upper triangle is stored.
OBRIX_ALWAYS_INLINE void interchange(Upper A, int p, int k, int q) {
    if (k == q)
        return;
    for (int i = 0; i < k; ++i)
        std::swap(A(i, k), A(i, q));
    for (int i = k + 1; i < q; ++i)
        std::swap(A(k, i), A(i, q));
    std::swap(A(k, k), A(q, q));
    for (int j = q + 1; j < p; ++j)
        std::swap(A(k, j), A(q, j));
}

std::vector<double>& diagonalScratch() {
    thread_local std::vector<double> d;
    return d;
}

// A(r0.., r0..)(upper) -= R(k0..k1, r0..)' * R(k0..k1, r0..): the panel's contribution to the
// trailing matrix. Off-diagonal blocks go through the blocked update; the diagonal blocks are
// formed element by element so that the strict lower triangle is never written.
void trailingUpdate(Upper A, int p, int k0, int k1, int r0) {
    int kb = k1 - k0;
    if (kb <= 0 || r0 >= p)
        return;
    constexpr int kCols = 128;
    for (int c0 = r0; c0 < p; c0 += kCols) {
        int c1 = std::min(p, c0 + kCols);
        detail::gemmMinus(true, c0 - r0, c1 - c0, kb, &A(k0, r0), A.lda, &A(k0, c0), A.lda,
                          &A(r0, c0), A.lda);
        // The diagonal block goes through scratch so the strict lower triangle stays as is.
        int w = c1 - c0;
        std::vector<double>& d = diagonalScratch();
        d.assign(static_cast<size_t>(w) * w, 0.0);
        detail::gemmMinus(true, w, w, kb, &A(k0, c0), A.lda, &A(k0, c0), A.lda, d.data(), w);
        for (int j = 0; j < w; ++j)
            for (int i = 0; i <= j; ++i)
                A(c0 + i, c0 + j) += d[i + static_cast<size_t>(j) * w];
    }
}

// Moves initial columns (jpvt > 0) to the front in their order and final ones (jpvt < 0) to
// the back, and turns jpvt into the 1-based record of original columns. [freeBegin, freeEnd)
// is then the range in which pivots are chosen.
OBRIX_ALWAYS_INLINE void placeFixedColumns(Upper A, int p, int* jpvt, int& freeBegin,
                                           int& freeEnd) {
    for (int k = 0; k < p; ++k) {
        bool initial = jpvt[k] > 0;
        jpvt[k] = jpvt[k] < 0 ? -(k + 1) : k + 1;
        if (initial) {
            interchange(A, p, freeBegin, k);
            std::swap(jpvt[freeBegin], jpvt[k]);
            ++freeBegin;
        }
    }
    for (int k = p - 1; k >= freeBegin; --k) {
        if (jpvt[k] < 0) {
            jpvt[k] = -jpvt[k];
            --freeEnd;
            interchange(A, p, k, freeEnd);
            std::swap(jpvt[freeEnd], jpvt[k]);
        }
    }
}

// Orders up to kSmallOrder go through the padded copy. Its leading dimension leaves a whole
// vector of rows below the last, so an update that starts anywhere in a column may run on
// in whole vectors; the vectors d and r carry the same slack.
constexpr int kSmallOrder = 64;
constexpr int kVector = 8;
constexpr int kSmallLd = kSmallOrder + kVector;
using Vector = detail::Vec<kVector>;
// Below this the copy costs more than the short columns gain from whole-vector updates, and
// the row-at-a-time panel form is quicker.
constexpr int kPanelOnlyOrder = 8;

// The first among the free columns with the largest remaining diagonal d: a later column
// must be strictly larger to win, and a diagonal that is not a number never does (nor does
// any other when the leading candidate is not a number). The largest value is found first
// with independent partial maxima, then its first occurrence, so the search does not wait
// on one comparison after another.
OBRIX_ALWAYS_INLINE int choosePivot(const double* d, int k, int freeBegin, int freeEnd,
                                    bool pivoting) {
    if (!pivoting || k < freeBegin || k >= freeEnd || d[k] != d[k])
        return k;
    double best = d[k];
    int j = k + 1;
    if (j + kVector <= freeEnd) {
        Vector m = Vector{} + best, x;
        for (; j + kVector <= freeEnd; j += kVector)
            detail::maxInto(m, detail::load(x, d + j));
        for (int l = 0; l < kVector; ++l)
            best = m[l] > best ? m[l] : best;
    }
    for (; j < freeEnd; ++j)
        best = d[j] > best ? d[j] : best;
    int piv = k;
    while (!(d[piv] == best))
        ++piv;
    return piv;
}

// y[0 .. n rounded up to whole vectors) -= s * x[same]: the elements past n are slack.
OBRIX_ALWAYS_INLINE void subtractScaledPadded(double* y, const double* x, double s, int n) {
    Vector a, b;
    for (int i = 0; i < n; i += kVector)
        detail::store(y + i, detail::load(a, y + i) - detail::load(b, x + i) * s);
}

// y[0 .. n) = 0 for n a multiple of the vector length.
OBRIX_ALWAYS_INLINE void zeroVectors(double* y, int n) {
    const Vector zero = {};
    for (int i = 0; i < n; i += kVector)
        detail::store(y + i, zero);
}

// y[0 .. n) = x[0 .. n), in whole vectors while they fit and element by element after.
OBRIX_ALWAYS_INLINE void copyColumn(double* y, const double* x, int n) {
    int i = 0;
    for (Vector v; i + kVector <= n; i += kVector)
        detail::store(y + i, detail::load(v, x + i));
    for (; i < n; ++i)
        y[i] = x[i];
}

// Right-looking factorisation of a (p <= kSmallOrder) through the padded copy w (leading
// dimension kSmallLd); d holds the remaining diagonal and r the current row of R. Returns
// the order of the part factored with positive pivots; when it stops early the reduced
// trailing matrix is left in a, diagonal included.
template <int>
OBRIX_ALWAYS_INLINE int factorSmallBody(double* a, int lda, int p, double* w, double* d, double* r,
                                        int* jpvt, bool pivoting) {
    Upper A{a, lda}, W{w, kSmallLd};
    // The slack rows below each column's upper part are zeroed, so the updates that run into
    // them compute on numbers; the copy reads the caller's upper triangle only.
    const int slackEnd = (p + kVector - 1) / kVector * kVector + kVector;
    for (int j = 0; j < p; ++j) {
        int slackBegin = (j + 1) / kVector * kVector;
        zeroVectors(W.col(j) + slackBegin, slackEnd - slackBegin);
        copyColumn(W.col(j), A.col(j), j + 1);
    }
    zeroVectors(d, slackEnd);
    zeroVectors(r, slackEnd);
    int freeBegin = 0, freeEnd = p;
    if (pivoting)
        placeFixedColumns(W, p, jpvt, freeBegin, freeEnd);
    for (int j = 0; j < p; ++j)
        d[j] = W(j, j);

    int k = 0;
    for (; k < p; ++k) {
        int piv = choosePivot(d, k, freeBegin, freeEnd, pivoting);
        if (!(d[piv] > 0.0)) {
            for (int j = k; j < p; ++j)
                W(j, j) = d[j];
            break;
        }
        if (piv != k) {
            interchange(W, p, k, piv);
            std::swap(d[k], d[piv]);
            std::swap(jpvt[k], jpvt[piv]);
        }
        double rkk = std::sqrt(d[k]);
        W(k, k) = rkk;
        const double inv = 1.0 / rkk;
        // Row k of R, kept contiguous in r for the updates below.
        for (int j = k + 1; j < p; ++j) {
            double v = W(k, j) * inv;
            W(k, j) = v;
            r[j] = v;
        }
        for (int j = k + 1; j < p; ++j)
            d[j] -= r[j] * r[j];
        // Column j of the trailing matrix above its diagonal takes R(k, j) * R(k, k+1 .. j-1);
        // the diagonal itself lives in d.
        for (int j = k + 2; j < p; ++j)
            subtractScaledPadded(W.col(j) + k + 1, r + k + 1, r[j], j - k - 1);
    }
    for (int j = 0; j < p; ++j)
        copyColumn(A.col(j), W.col(j), j + 1);
    return k;
}

OBRIX_SIMD_DISPATCH(int, factorSmall,
                    (double* a, int lda, int p, double* w, double* d, double* r, int* jpvt,
                     bool pivoting),
                    (a, lda, p, w, d, r, jpvt, pivoting))

} // namespace

void dchdc(double* a, int lda, int p, double* work, int* jpvt, int job, int* info) {
    Upper A{a, lda};
    *info = 0;
    if (p <= 0)
        return;
    if (p > kPanelOnlyOrder && p <= kSmallOrder) {
        alignas(64) double w[kSmallLd * kSmallOrder];
        alignas(64) double d[kSmallLd], r[kSmallLd];
        *info = factorSmall(a, lda, p, w, d, r, jpvt, job != 0);
        return;
    }

    int freeBegin = 0, freeEnd = p;
    if (job != 0)
        placeFixedColumns(A, p, jpvt, freeBegin, freeEnd);

    for (int j = 0; j < p; ++j)
        work[j] = A(j, j);
    for (int k0 = 0; k0 < p; k0 += kPanel) {
        int k1 = std::min(p, k0 + kPanel);
        for (int k = k0; k < k1; ++k) {
            // work[j] is A(j, j) less the squares of the panel rows above k in column j.
            int piv = choosePivot(work, k, freeBegin, freeEnd, job != 0);
            if (!(work[piv] > 0.0)) {
                trailingUpdate(A, p, k0, k, k);
                *info = k;
                return;
            }
            if (piv != k) {
                interchange(A, p, k, piv);
                std::swap(work[k], work[piv]);
                std::swap(jpvt[k], jpvt[piv]);
            }
            double rkk = std::sqrt(work[k]);
            A(k, k) = rkk;
            // Row k of R: A(k, j) less the panel rows above k, over R(k, k).
            int rows = k - k0;
            const double* rk = &A(k0, k);
            const double inv = 1.0 / rkk;
            for (int j = k + 1; j < p; ++j) {
                const double* rj = &A(k0, j);
                double v = (A(k, j) - detail::kernelDot(rk, rj, rows)) * inv;
                A(k, j) = v;
                work[j] -= v * v;
            }
        }
        trailingUpdate(A, p, k0, k1, k1);
        // The diagonal is recomputed from the updated matrix, not carried, so the rounding
        // of the subtracted squares does not accumulate across panels.
        for (int j = k1; j < p; ++j)
            work[j] = A(j, j);
    }
    *info = p;
}

} // namespace qvObrixBase::kernels
