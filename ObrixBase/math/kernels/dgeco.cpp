// LU factorisation with a reciprocal condition estimate in the 1-norm: the estimator of Cline,
// Moler, Stewart and Wilkinson. It solves A'y = e with the signs of e chosen step by step to
// make y large, then Az = y, and takes |y| / (|A| |z|), rescaling as it goes so that nothing
// overflows for nearly singular matrices.
#include <cmath>

#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {
inline double signOf(double mag, double like) {
    return like < 0.0 ? -std::fabs(mag) : std::fabs(mag);
}
} // namespace

void dgeco(double* a, int lda, int n, int* ipvt, double* rcond, double* z) {
    auto col = [&](int j) { return a + static_cast<long>(j) * lda; };
    double anorm = 0.0;
    for (int j = 0; j < n; ++j) {
        double s = dasum(n, col(j), 1);
        if (!(s <= anorm))
            anorm = s;
    }
    int info = 0;
    dgefa(a, lda, n, ipvt, &info);
    if (n <= 0) {
        *rcond = 0.0;
        return;
    }

    // U'w = e with e_k = +-1 chosen for growth, looking ahead at the partial sums.
    double ek = 1.0;
    for (int j = 0; j < n; ++j)
        z[j] = 0.0;
    for (int k = 0; k < n; ++k) {
        double ukk = col(k)[k];
        if (z[k] != 0.0)
            ek = signOf(ek, -z[k]);
        if (std::fabs(ek - z[k]) > std::fabs(ukk)) {
            double s = std::fabs(ukk) / std::fabs(ek - z[k]);
            dscal(n, s, z, 1);
            ek *= s;
        }
        double wk = ek - z[k], wkm = -ek - z[k];
        double s = std::fabs(wk), sm = std::fabs(wkm);
        if (ukk != 0.0) {
            wk /= ukk;
            wkm /= ukk;
        } else {
            wk = 1.0;
            wkm = 1.0;
        }
        for (int j = k + 1; j < n; ++j) {
            double ukj = col(j)[k];
            sm += std::fabs(z[j] + wkm * ukj);
            z[j] += wk * ukj;
            s += std::fabs(z[j]);
        }
        if (s < sm) {
            double t = wkm - wk;
            wk = wkm;
            for (int j = k + 1; j < n; ++j)
                z[j] += t * col(j)[k];
        }
        z[k] = wk;
    }
    dscal(n, 1.0 / dasum(n, z, 1), z, 1);

    // L'y = w.
    for (int k = n - 1; k >= 0; --k) {
        if (k < n - 1)
            z[k] += ddot(n - k - 1, col(k) + k + 1, 1, z + k + 1, 1);
        if (std::fabs(z[k]) > 1.0)
            dscal(n, 1.0 / std::fabs(z[k]), z, 1);
        int l = ipvt[k] - 1;
        double t = z[l];
        z[l] = z[k];
        z[k] = t;
    }
    dscal(n, 1.0 / dasum(n, z, 1), z, 1);
    double ynorm = 1.0;

    // Lv = y.
    for (int k = 0; k < n; ++k) {
        int l = ipvt[k] - 1;
        double t = z[l];
        z[l] = z[k];
        z[k] = t;
        if (k < n - 1)
            daxpy(n - k - 1, t, col(k) + k + 1, 1, z + k + 1, 1);
        if (std::fabs(z[k]) > 1.0) {
            double s = 1.0 / std::fabs(z[k]);
            dscal(n, s, z, 1);
            ynorm *= s;
        }
    }
    double s = 1.0 / dasum(n, z, 1);
    dscal(n, s, z, 1);
    ynorm *= s;

    // Uz = v.
    for (int k = n - 1; k >= 0; --k) {
        double ukk = col(k)[k];
        if (std::fabs(z[k]) > std::fabs(ukk)) {
            double r = std::fabs(ukk) / std::fabs(z[k]);
            dscal(n, r, z, 1);
            ynorm *= r;
        }
        z[k] = ukk != 0.0 ? z[k] / ukk : 1.0;
        daxpy(k, -z[k], col(k), 1, z, 1);
    }
    s = 1.0 / dasum(n, z, 1);
    dscal(n, s, z, 1);
    ynorm *= s;

    *rcond = anorm != 0.0 ? ynorm / anorm : 0.0;
    // An exactly zero pivot is singular whatever the estimate came to, and an estimate that
    // is not a number (NaN or infinite input) is no evidence of a usable matrix.
    if (info != 0 || !(*rcond >= 0.0))
        *rcond = 0.0;
}

} // namespace qvObrixBase::kernels
