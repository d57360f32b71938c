// Solves with the LU factors of dgefa: forward elimination with the stored interchanges and
// multipliers, then back substitution with U (or the transposed sequence for A'x = b).
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

void dgesl(const double* a, int lda, int n, const int* ipvt, double* b, int job) {
    auto col = [&](int j) { return a + static_cast<long>(j) * lda; };
    if (job == 0) {
        for (int k = 0; k < n - 1; ++k) {
            int l = ipvt[k] - 1;
            double t = b[l];
            b[l] = b[k];
            b[k] = t;
            daxpy(n - k - 1, t, col(k) + k + 1, 1, b + k + 1, 1);
        }
        for (int k = n - 1; k >= 0; --k) {
            b[k] /= col(k)[k];
            daxpy(k, -b[k], col(k), 1, b, 1);
        }
        return;
    }
    for (int k = 0; k < n; ++k)
        b[k] = (b[k] - ddot(k, col(k), 1, b, 1)) / col(k)[k];
    for (int k = n - 2; k >= 0; --k) {
        b[k] += ddot(n - k - 1, col(k) + k + 1, 1, b + k + 1, 1);
        int l = ipvt[k] - 1;
        double t = b[l];
        b[l] = b[k];
        b[k] = t;
    }
}

} // namespace qvObrixBase::kernels
