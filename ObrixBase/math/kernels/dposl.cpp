// Solves R'*R*x = b with an upper triangular Cholesky factor: R'y = b by inner products down
// the contiguous columns of R, then R x = y by column sweeps from the last.
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

void dposl(const double* a, int lda, int n, double* b) {
    auto col = [&](int j) { return a + static_cast<long>(j) * lda; };
    for (int k = 0; k < n; ++k)
        b[k] = (b[k] - ddot(k, col(k), 1, b, 1)) / col(k)[k];
    for (int k = n - 1; k >= 0; --k) {
        b[k] /= col(k)[k];
        daxpy(k, -b[k], col(k), 1, b, 1);
    }
}

} // namespace qvObrixBase::kernels
