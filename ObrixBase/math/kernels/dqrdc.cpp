// Householder QR factorisation with optional column pivoting. Step l reflects column l onto
// a multiple of e_l: the reflector is v = x/|x| + sign(x_l) e_l, kept below the diagonal with
// its leading element in qraux, so that H = I - v v' / v_l; R(l, l) is -sign(x_l)|x|. With
// pivoting, initial and final columns are moved to the ends and frozen, and at each step the
// free column of largest remaining norm comes forward. The remaining norms are downdated
// after each step and recomputed from the matrix when cancellation has eaten too much of them
// (the test of Drmac and Bujanovic).
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "ObrixBase/math/kernels/detail/dot_internal.h"
#include "ObrixBase/math/kernels/detail/simd_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {

// Applies H = I - v v'/v[0] to the columns xj of length len, each in one visit: the inner
// product, then the update while the column is still in cache.
template <int>
OBRIX_ALWAYS_INLINE void reflectColumnsBody(const double* __restrict v, int len, double* x, int ldx,
                                            int ncols) {
    for (int j = 0; j < ncols; ++j) {
        double* __restrict xj = x + static_cast<long>(j) * ldx;
        double t = -detail::kernelDot(v, xj, len) / v[0];
        for (int i = 0; i < len; ++i)
            xj[i] += t * v[i];
    }
}

OBRIX_SIMD_DISPATCH(void, reflectColumns,
                    (const double* __restrict v, int len, double* x, int ldx, int ncols),
                    (v, len, x, ldx, ncols))

} // namespace

void dqrdc(double* x, int ldx, int n, int p, double* qraux, int* jpvt, double* work, int job) {
    auto col = [&](int j) { return x + static_cast<long>(j) * ldx; };
    int pl = 0, pu = 0;
    if (job != 0) {
        for (int j = 0; j < p; ++j) {
            bool initial = jpvt[j] > 0;
            jpvt[j] = jpvt[j] < 0 ? -(j + 1) : j + 1;
            if (initial) {
                if (j != pl)
                    dswap(n, col(pl), 1, col(j), 1);
                std::swap(jpvt[pl], jpvt[j]);
                ++pl;
            }
        }
        pu = p;
        for (int j = p - 1; j >= pl; --j) {
            if (jpvt[j] < 0) {
                jpvt[j] = -jpvt[j];
                --pu;
                if (j != pu) {
                    dswap(n, col(pu), 1, col(j), 1);
                    std::swap(jpvt[pu], jpvt[j]);
                }
            }
        }
        for (int j = pl; j < pu; ++j) {
            qraux[j] = dnrm2(n, col(j), 1);
            work[j] = qraux[j];
        }
    }
    const double tol = std::sqrt(std::numeric_limits<double>::epsilon());
    int lup = std::min(n, p);
    for (int l = 0; l < lup; ++l) {
        if (l >= pl && l < pu) {
            int maxj = l;
            double maxnrm = qraux[l];
            for (int j = l + 1; j < pu; ++j)
                if (qraux[j] > maxnrm) {
                    maxnrm = qraux[j];
                    maxj = j;
                }
            if (maxj != l) {
                dswap(n, col(l), 1, col(maxj), 1);
                qraux[maxj] = qraux[l];
                work[maxj] = work[l];
                std::swap(jpvt[maxj], jpvt[l]);
            }
        }
        qraux[l] = 0.0;
        if (l == n - 1)
            continue;
        double* xl = col(l) + l;
        int len = n - l;
        double nrmxl = dnrm2(len, xl, 1);
        if (nrmxl == 0.0)
            continue;
        if (xl[0] != 0.0)
            nrmxl = std::copysign(nrmxl, xl[0]);
        dscal(len, 1.0 / nrmxl, xl, 1);
        xl[0] += 1.0;
        if (l + 1 < p)
            reflectColumns(xl, len, col(l + 1) + l, ldx, p - l - 1);
        for (int j = l + 1; j < p; ++j) {
            double* xj = col(j) + l;
            if (j < pl || j >= pu || qraux[j] == 0.0)
                continue;
            double ratio = std::fabs(xj[0]) / qraux[j];
            double rest = std::max(0.0, (1.0 + ratio) * (1.0 - ratio));
            double drift = rest * (qraux[j] / work[j]) * (qraux[j] / work[j]);
            if (drift <= tol) {
                qraux[j] = dnrm2(len - 1, xj + 1, 1);
                work[j] = qraux[j];
            } else {
                qraux[j] *= std::sqrt(rest);
            }
        }
        qraux[l] = xl[0];
        xl[0] = -nrmxl;
    }
}

} // namespace qvObrixBase::kernels
