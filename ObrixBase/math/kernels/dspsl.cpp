// Solves A*x = b with the packed symmetric indefinite factors of dspfa: the interchanges and
// eliminations are undone from the last block to the first with the 1x1 and 2x2 blocks of D
// solved on the way, then the transposed eliminations run forward.
#include <cmath>
#include <utility>

#include "ObrixBase/math/kernels/kernels.h"
#include "ObrixBase/math/kernels/packed_internal.h"

namespace qvObrixBase::kernels {

using detail::packedCol;

void dspsl(const double* ap, int n, const int* kpvt, double* b) {
    int k = n - 1;
    while (k >= 0) {
        const double* colk = packedCol(ap, k);
        if (kpvt[k] >= 0) {
            if (k > 0) {
                int kp = kpvt[k] - 1;
                if (kp != k)
                    std::swap(b[k], b[kp]);
                daxpy(k, b[k], colk, 1, b, 1);
            }
            b[k] /= colk[k];
            --k;
            continue;
        }
        const double* colkm1 = packedCol(ap, k - 1);
        if (k > 1) {
            int kp = -kpvt[k] - 1;
            if (kp != k - 1)
                std::swap(b[k - 1], b[kp]);
            daxpy(k - 1, b[k], colk, 1, b, 1);
            daxpy(k - 1, b[k - 1], colkm1, 1, b, 1);
        }
        double d12 = colk[k - 1];
        double ak = colk[k] / d12, akm1 = colkm1[k - 1] / d12;
        double bk = b[k] / d12, bkm1 = b[k - 1] / d12;
        double denom = ak * akm1 - 1.0;
        b[k] = (akm1 * bk - bkm1) / denom;
        b[k - 1] = (ak * bkm1 - bk) / denom;
        k -= 2;
    }
    k = 0;
    while (k < n) {
        const double* colk = packedCol(ap, k);
        if (kpvt[k] >= 0) {
            if (k > 0) {
                b[k] += ddot(k, colk, 1, b, 1);
                int kp = kpvt[k] - 1;
                if (kp != k)
                    std::swap(b[k], b[kp]);
            }
            ++k;
            continue;
        }
        if (k > 0) {
            b[k] += ddot(k, colk, 1, b, 1);
            b[k + 1] += ddot(k, packedCol(ap, k + 1), 1, b, 1);
            int kp = -kpvt[k] - 1;
            if (kp != k)
                std::swap(b[k], b[kp]);
        }
        k += 2;
    }
}

} // namespace qvObrixBase::kernels
