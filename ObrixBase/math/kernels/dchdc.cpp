// Cholesky factorisation P'*A*P = R'*R with diagonal pivoting. Initial and final columns are
// first moved to the ends by symmetric interchanges and then stay put; at each step among
// the free columns the one with the largest remaining diagonal is brought forward. The work
// is done a panel of rows of R at a time: inside the panel each row is formed from the
// columns of A and the panel rows above it (the remaining diagonal is kept current in work,
// so pivots can be chosen before the trailing matrix is updated); after the panel the
// trailing upper triangle takes the panel's contribution in one blocked rank-k update.
// Factoring stops at the first pivot that is not positive.
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "ObrixBase/math/kernels/blocked_internal.h"
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
void interchange(Upper A, int p, int k, int q) {
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

} // namespace

void dchdc(double* a, int lda, int p, double* work, int* jpvt, int job, int* info) {
    Upper A{a, lda};
    *info = 0;
    if (p <= 0)
        return;
    int freeBegin = 0, freeEnd = p;
    if (job != 0) {
        // Initial columns to the front, in their order.
        for (int k = 0; k < p; ++k) {
            bool initial = jpvt[k] > 0;
            jpvt[k] = jpvt[k] < 0 ? -(k + 1) : k + 1;
            if (initial) {
                interchange(A, p, freeBegin, k);
                std::swap(jpvt[freeBegin], jpvt[k]);
                ++freeBegin;
            }
        }
        // Final columns to the back.
        for (int k = p - 1; k >= freeBegin; --k) {
            if (jpvt[k] < 0) {
                jpvt[k] = -jpvt[k];
                --freeEnd;
                interchange(A, p, k, freeEnd);
                std::swap(jpvt[freeEnd], jpvt[k]);
            }
        }
    }

    for (int j = 0; j < p; ++j)
        work[j] = A(j, j);
    for (int k0 = 0; k0 < p; k0 += kPanel) {
        int k1 = std::min(p, k0 + kPanel);
        for (int k = k0; k < k1; ++k) {
            // work[j] is A(j, j) less the squares of the panel rows above k in column j.
            int piv = k;
            if (job != 0 && k >= freeBegin && k < freeEnd) {
                double best = work[k];
                for (int j = k + 1; j < freeEnd; ++j)
                    if (work[j] > best) {
                        best = work[j];
                        piv = j;
                    }
            }
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
                double v = (A(k, j) - detail::dotContiguous(rk, rj, rows)) * inv;
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
