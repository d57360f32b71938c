// LU factorisation with partial pivoting (Gaussian elimination, row interchanges chosen by
// the largest magnitude in the pivot column). Small matrices take the column-oriented
// elimination directly; mid-sized ones go eight columns at a time; large ones by recursive
// halving of the columns, which moves almost all the work into the blocked rank-k update.
// The last two are brought to the same stored form afterwards: negated multipliers, each
// column of L in the row order of its own step.
#include <algorithm>
#include <cmath>
#include <utility>

#include "ObrixBase/math/kernels/detail/blocked_internal.h"
#include "ObrixBase/math/kernels/detail/simd_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {

// Up to this order the plain elimination wins; up to kPanelOrder the eight-column panels do.
constexpr int kUnblockedOrder = 32;
constexpr int kPanelOrder = 160;
constexpr int kPanelWidth = 8;

// Applies the row interchanges i <-> piv[i], i in [from, to), to ncols columns, column by
// column: each column is walked once in memory instead of striding across rows.
void swapRows(double* a, int lda, int ncols, const int* piv, int from, int to) {
    for (int j = 0; j < ncols; ++j) {
        double* col = a + static_cast<long>(j) * lda;
        for (int i = from; i < to; ++i)
            if (piv[i] != i)
                std::swap(col[i], col[piv[i]]);
    }
}

inline double& at(double* a, int lda, int i, int j) {
    return a[i + static_cast<long>(j) * lda];
}

// Column-oriented elimination producing the stored form directly: interchanges reach only
// the columns to the right of the pivot column.
void eliminate(double* a, int lda, int n, int* ipvt, int* info) {
    *info = 0;
    for (int k = 0; k < n - 1; ++k) {
        double* colk = &at(a, lda, 0, k);
        int l = k + idamax(n - k, colk + k, 1) - 1;
        ipvt[k] = l + 1;
        if (colk[l] == 0.0) {
            *info = k + 1;
            continue;
        }
        std::swap(colk[l], colk[k]);
        const double scale = -1.0 / colk[k];
        double* __restrict mult = colk + k + 1;
        const int len = n - k - 1;
        for (int i = 0; i < len; ++i)
            mult[i] *= scale;
        // The updates stay in this loop nest (no call per column): small matrices are
        // dominated by that overhead otherwise.
        for (int j = k + 1; j < n; ++j) {
            double* colj = &at(a, lda, 0, j);
            double t = colj[l];
            colj[l] = colj[k];
            colj[k] = t;
            double* __restrict dst = colj + k + 1;
            for (int i = 0; i < len; ++i)
                dst[i] += t * mult[i];
        }
    }
    ipvt[n - 1] = n;
    if (at(a, lda, n - 1, n - 1) == 0.0)
        *info = n;
}

// LU with whole-row interchanges and positive multipliers, eight columns at a time: each
// panel is eliminated column by column, and the columns to its right then take the panel's
// eight steps in one pass per column (eight multiply-adds per element loaded), which keeps
// mid-sized matrices in the first-level cache. piv receives 0-based rows.
template <int>
OBRIX_ALWAYS_INLINE void panelLUBody(double* a, int lda, int n, int* piv, int* lastZero) {
    constexpr int NB = kPanelWidth;
    for (int j0 = 0; j0 < n; j0 += NB) {
        int jb = std::min(NB, n - j0);
        for (int k = j0; k < j0 + jb; ++k) {
            double* colk = &at(a, lda, 0, k);
            int p = k + idamax(n - k, colk + k, 1) - 1;
            piv[k] = p;
            if (colk[p] != 0.0) {
                if (p != k)
                    for (int j = j0; j < j0 + jb; ++j)
                        std::swap(at(a, lda, k, j), at(a, lda, p, j));
                const double r = 1.0 / colk[k];
                for (int i = k + 1; i < n; ++i)
                    colk[i] *= r;
            } else {
                *lastZero = k + 1;
            }
            for (int j = k + 1; j < j0 + jb; ++j) {
                double* __restrict cj = &at(a, lda, 0, j);
                const double t = cj[k];
                for (int i = k + 1; i < n; ++i)
                    cj[i] -= t * colk[i];
            }
        }
        int right = j0 + jb;
        if (right >= n) {
            swapRows(a, lda, j0, piv, j0, right);
            break;
        }
        swapRows(a, lda, j0, piv, j0, right);
        swapRows(&at(a, lda, 0, right), lda, n - right, piv, j0, right);
        const double* l = &at(a, lda, 0, j0);
        for (int j = right; j < n; ++j) {
            double* __restrict cj = &at(a, lda, 0, j);
            // U12: forward substitution with the panel's unit lower triangle.
            double u[NB] = {};
            for (int t = 0; t < jb; ++t) {
                double v = cj[j0 + t];
                for (int q = 0; q < t; ++q)
                    v -= l[j0 + t + static_cast<long>(q) * lda] * u[q];
                u[t] = v;
                cj[j0 + t] = v;
            }
            if (jb == NB) {
                const double* __restrict l0 = l;
                for (int i = right; i < n; ++i) {
                    double acc = 0.0;
                    for (int t = 0; t < NB; ++t)
                        acc += l0[i + static_cast<long>(t) * lda] * u[t];
                    cj[i] -= acc;
                }
            } else {
                for (int t = 0; t < jb; ++t)
                    for (int i = right; i < n; ++i)
                        cj[i] -= l[i + static_cast<long>(t) * lda] * u[t];
            }
        }
    }
}

OBRIX_SIMD_DISPATCH(void, panelLU, (double* a, int lda, int n, int* piv, int* lastZero),
                    (a, lda, n, piv, lastZero))

// Recursive LU of the m x n panel (m >= n) with whole-row interchanges and positive
// multipliers; piv receives 0-based rows relative to the panel. lastZero is the largest
// 1-based index of a zero pivot, offset by base.
void recursiveLU(double* a, int lda, int m, int n, int* piv, int base, int* lastZero) {
    if (n <= 16) {
        for (int k = 0; k < n; ++k) {
            double* colk = &at(a, lda, 0, k);
            int p = k + idamax(m - k, colk + k, 1) - 1;
            piv[k] = p;
            if (colk[p] != 0.0) {
                if (p != k)
                    dswap(n, &at(a, lda, k, 0), lda, &at(a, lda, p, 0), lda);
                dscal(m - k - 1, 1.0 / colk[k], colk + k + 1, 1);
            } else {
                *lastZero = base + k + 1;
            }
            for (int j = k + 1; j < n; ++j)
                daxpy(m - k - 1, -at(a, lda, k, j), colk + k + 1, 1, &at(a, lda, k + 1, j), 1);
        }
        return;
    }
    int n1 = n / 2, n2 = n - n1;
    recursiveLU(a, lda, m, n1, piv, base, lastZero);
    double* right = &at(a, lda, 0, n1);
    swapRows(right, lda, n2, piv, 0, n1);
    detail::trsmLowerUnit(n1, n2, a, lda, right, lda);
    detail::gemmMinus(false, m - n1, n2, n1, a + n1, lda, right, lda, right + n1, lda);
    recursiveLU(right + n1, lda, m - n1, n2, piv + n1, base + n1, lastZero);
    for (int i = n1; i < n; ++i)
        piv[i] += n1;
    swapRows(a, lda, n1, piv, n1, n);
}

} // namespace

void dgefa(double* a, int lda, int n, int* ipvt, int* info) {
    *info = 0;
    if (n <= 0)
        return;
    if (n <= kUnblockedOrder) {
        // Short loops: the baseline code beats the wide paths' longer set-up here.
        eliminate(a, lda, n, ipvt, info);
        return;
    }
    int lastZero = 0;
    if (n <= kPanelOrder)
        panelLU(a, lda, n, ipvt, &lastZero);
    else
        recursiveLU(a, lda, n, n, ipvt, 0, &lastZero);
    // Back to the stored form: undo each later interchange on the columns left of its step,
    // latest first, and negate the multipliers.
    for (int j = n - 1; j > 0; --j)
        if (ipvt[j] != j)
            dswap(j, a + j, lda, a + ipvt[j], lda);
    for (int j = 0; j < n; ++j) {
        double* colj = &at(a, lda, 0, j);
        for (int i = j + 1; i < n; ++i)
            colj[i] = -colj[i];
        ++ipvt[j];
    }
    *info = lastZero;
}

} // namespace qvObrixBase::kernels
