// Symmetric indefinite factorisation A = U*D*U' of a packed matrix by diagonal pivoting with
// the Bunch-Kaufman choice between 1x1 and 2x2 pivots (alpha = (1 + sqrt 17) / 8 bounds the
// element growth). Elimination runs from the last column to the first, so that every update
// is a contiguous packed column.
#include <cmath>

#include "ObrixBase/math/kernels/kernels.h"
#include "ObrixBase/math/kernels/packed_internal.h"

namespace qvObrixBase::kernels {

using detail::packedAt;
using detail::packedCol;

void dspfa(double* ap, int n, int* kpvt, int* info) {
    const double alpha = (1.0 + std::sqrt(17.0)) / 8.0;
    *info = 0;
    int k = n - 1;
    while (k >= 0) {
        if (k == 0) {
            kpvt[0] = 1;
            if (ap[0] == 0.0)
                *info = 1;
            break;
        }
        double* colk = packedCol(ap, k);
        double absakk = std::fabs(colk[k]);
        int imax = idamax(k, colk, 1) - 1;
        double colmax = std::fabs(colk[imax]);
        int kstep = 1;
        bool swap = false;
        if (!(absakk >= alpha * colmax)) {
            // Largest off-diagonal magnitude in row/column imax of the leading block.
            double rowmax = 0.0;
            for (int j = imax + 1; j <= k; ++j)
                rowmax = std::fmax(rowmax, std::fabs(ap[packedAt(imax, j)]));
            if (imax > 0) {
                double* colImax = packedCol(ap, imax);
                rowmax = std::fmax(rowmax, std::fabs(colImax[idamax(imax, colImax, 1) - 1]));
            }
            if (std::fabs(ap[packedAt(imax, imax)]) >= alpha * rowmax) {
                swap = true;
            } else if (absakk >= alpha * colmax * (colmax / rowmax)) {
                swap = false;
            } else {
                kstep = 2;
                swap = imax != k - 1;
            }
        }
        if (absakk == 0.0 && colmax == 0.0) {
            // A zero column: nothing to eliminate, and D is singular here.
            kpvt[k] = k + 1;
            *info = k + 1;
            --k;
            continue;
        }
        if (kstep == 1) {
            if (swap)
                detail::packedInterchange(ap, imax, k, k);
            double akk = colk[k];
            for (int j = k - 1; j >= 0; --j) {
                double mulk = -colk[j] / akk;
                daxpy(j + 1, mulk, colk, 1, packedCol(ap, j), 1);
                colk[j] = mulk;
            }
            kpvt[k] = swap ? imax + 1 : k + 1;
            --k;
            continue;
        }
        if (swap)
            detail::packedInterchange(ap, imax, k - 1, k);
        double* colkm1 = packedCol(ap, k - 1);
        double d12 = colk[k - 1];
        double ak = colk[k] / d12, akm1 = colkm1[k - 1] / d12;
        double denom = 1.0 - ak * akm1;
        for (int j = k - 2; j >= 0; --j) {
            double bk = colk[j] / d12, bkm1 = colkm1[j] / d12;
            double mulk = (akm1 * bk - bkm1) / denom;
            double mulkm1 = (ak * bkm1 - bk) / denom;
            double* colj = packedCol(ap, j);
            daxpy(j + 1, mulk, colk, 1, colj, 1);
            daxpy(j + 1, mulkm1, colkm1, 1, colj, 1);
            colk[j] = mulk;
            colkm1[j] = mulkm1;
        }
        kpvt[k] = swap ? -(imax + 1) : -k;
        kpvt[k - 1] = kpvt[k];
        k -= 2;
    }
}

} // namespace qvObrixBase::kernels
