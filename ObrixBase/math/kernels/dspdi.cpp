// Determinant, inertia and inverse from the packed symmetric indefinite factors of dspfa.
// A 2x2 block enters the determinant as t * ((d11 / t) * d22 - t) with t = |d12|, two
// factors that stay in range where the plain product would not; it always holds one
// positive and one negative eigenvalue. The inverse is built block by block from the first:
// with S the inverse of the leading part and m the block's multipliers, the new column is
// S*m and the new diagonal block inv(D) + m'*S*m, followed by the block's interchange.
#include <cmath>

#include "ObrixBase/math/kernels/determinant_internal.h"
#include "ObrixBase/math/kernels/kernels.h"
#include "ObrixBase/math/kernels/packed_internal.h"

namespace qvObrixBase::kernels {

using detail::packedAt;
using detail::packedCol;

namespace {

// col[0..k) := S * work[0..k) for the symmetric S packed in the leading order-k block.
void symmetricProduct(double* ap, int k, const double* work, double* col) {
    for (int j = 0; j < k; ++j) {
        const double* cj = packedCol(ap, j);
        col[j] = ddot(j + 1, cj, 1, work, 1);
        daxpy(j, work[j], cj, 1, col, 1);
    }
}

} // namespace

void dspdi(double* ap, int n, const int* kpvt, double det[2], int inert[3], double* work, int job) {
    bool wantInertia = (job / 100) % 10 != 0, wantDet = (job / 10) % 10 != 0;
    if (wantInertia) {
        inert[0] = inert[1] = inert[2] = 0;
    }
    if (wantDet) {
        det[0] = 1.0;
        det[1] = 0.0;
    }
    if (wantInertia || wantDet) {
        double t = 0.0;
        bool detDone = false;
        for (int k = 0; k < n; ++k) {
            double d = ap[packedAt(k, k)];
            if (kpvt[k] < 0) {
                // First of a 2x2 pair takes det/t, the second t.
                if (t == 0.0) {
                    t = std::fabs(ap[packedAt(k, k + 1)]);
                    d = (d / t) * ap[packedAt(k + 1, k + 1)] - t;
                } else {
                    d = t;
                    t = 0.0;
                }
            }
            if (wantInertia) {
                if (d > 0.0)
                    ++inert[0];
                else if (d < 0.0)
                    ++inert[1];
                else if (d == 0.0)
                    ++inert[2];
            }
            if (wantDet && !detDone)
                detDone = !detail::scaleDeterminant(det, d);
        }
    }
    if (job % 10 == 0)
        return;

    int k = 0;
    while (k < n) {
        double* colk = packedCol(ap, k);
        if (kpvt[k] >= 0) {
            colk[k] = 1.0 / colk[k];
            if (k > 0) {
                dcopy(k, colk, 1, work, 1);
                symmetricProduct(ap, k, work, colk);
                colk[k] += ddot(k, work, 1, colk, 1);
            }
            int kp = kpvt[k] - 1;
            if (kp != k)
                detail::packedInterchange(ap, kp, k, k);
            ++k;
            continue;
        }
        double* colk1 = packedCol(ap, k + 1);
        double t = std::fabs(colk1[k]);
        double ak = colk[k] / t, akp1 = colk1[k + 1] / t, akkp1 = colk1[k] / t;
        double d = t * (ak * akp1 - 1.0);
        colk[k] = akp1 / d;
        colk1[k + 1] = ak / d;
        colk1[k] = -akkp1 / d;
        if (k > 0) {
            dcopy(k, colk, 1, work, 1);
            symmetricProduct(ap, k, work, colk);
            colk[k] += ddot(k, work, 1, colk, 1);
            colk1[k] += ddot(k, colk, 1, colk1, 1);
            dcopy(k, colk1, 1, work, 1);
            symmetricProduct(ap, k, work, colk1);
            colk1[k + 1] += ddot(k, work, 1, colk1, 1);
        }
        int kp = -kpvt[k] - 1;
        if (kp != k)
            detail::packedInterchange(ap, kp, k, k + 1);
        k += 2;
    }
}

} // namespace qvObrixBase::kernels
