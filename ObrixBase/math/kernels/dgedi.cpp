// Determinant and inverse from the LU factors of dgefa. The determinant is kept as a
// mantissa and a power of ten so that it neither overflows nor underflows for large n; the
// inverse is inv(U) formed in place, then multiplied by the stored elimination steps and
// interchanges in reverse order.
#include <utility>

#include "ObrixBase/math/kernels/determinant_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

void dgedi(double* a, int lda, int n, const int* ipvt, double det[2], double* work, int job) {
    auto col = [&](int j) { return a + static_cast<long>(j) * lda; };
    if (job / 10 != 0) {
        det[0] = 1.0;
        det[1] = 0.0;
        for (int i = 0; i < n; ++i) {
            if (ipvt[i] != i + 1)
                det[0] = -det[0];
            if (!detail::scaleDeterminant(det, col(i)[i]))
                break;
        }
    }
    if (job % 10 == 0)
        return;
    for (int k = 0; k < n; ++k) {
        double* ck = col(k);
        ck[k] = 1.0 / ck[k];
        dscal(k, -ck[k], ck, 1);
        for (int j = k + 1; j < n; ++j) {
            double* cj = col(j);
            double t = cj[k];
            cj[k] = 0.0;
            daxpy(k + 1, t, ck, 1, cj, 1);
        }
    }
    for (int k = n - 2; k >= 0; --k) {
        double* ck = col(k);
        for (int i = k + 1; i < n; ++i) {
            work[i] = ck[i];
            ck[i] = 0.0;
        }
        for (int j = k + 1; j < n; ++j)
            daxpy(n, work[j], col(j), 1, ck, 1);
        int l = ipvt[k] - 1;
        if (l != k)
            dswap(n, ck, 1, col(l), 1);
    }
}

} // namespace qvObrixBase::kernels
