// Rank-one downdate of a Cholesky factor (Saunders' method): solve R'a = x; the downdate is
// possible only when |a| < 1. With alpha = sqrt(1 - |a|^2), rotations taken from the last
// element of a to the first fold (a, alpha) into (0, 1); applied to [R; 0] they give the new
// R above the row x'. The data columns z are recovered by running the same rotations in
// reverse, and the part they shed comes off the residual norms.
#include <cmath>

#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

void dchdd(double* r, int ldr, int p, const double* x, double* z, int ldz, int nz, const double* y,
           double* rho, double* c, double* s, int* info) {
    auto col = [&](int j) { return r + static_cast<long>(j) * ldr; };
    *info = 0;
    // R'a = x, with a kept in s.
    for (int k = 0; k < p; ++k)
        s[k] = (x[k] - ddot(k, col(k), 1, s, 1)) / col(k)[k];
    double norm = dnrm2(p, s, 1);
    if (!(norm < 1.0)) {
        *info = -1;
        return;
    }
    double alpha = std::sqrt(1.0 - norm * norm);
    for (int i = p - 1; i >= 0; --i) {
        double scale = alpha + std::fabs(s[i]);
        double a = alpha / scale, b = s[i] / scale;
        double h = std::sqrt(a * a + b * b);
        c[i] = a / h;
        s[i] = b / h;
        alpha = scale * h;
    }
    for (int j = 0; j < p; ++j) {
        double* rj = col(j);
        double xx = 0.0;
        for (int i = j; i >= 0; --i) {
            double t = c[i] * xx + s[i] * rj[i];
            rj[i] = c[i] * rj[i] - s[i] * xx;
            xx = t;
        }
    }
    for (int j = 0; j < nz; ++j) {
        double* zj = z + static_cast<long>(j) * ldz;
        double zeta = y[j];
        for (int i = 0; i < p; ++i) {
            zj[i] = (zj[i] - s[i] * zeta) / c[i];
            zeta = c[i] * zeta - s[i] * zj[i];
        }
        double azeta = std::fabs(zeta);
        if (azeta > rho[j]) {
            *info = 1;
            rho[j] = -1.0;
        } else if (rho[j] != 0.0) {
            double q = azeta / rho[j];
            rho[j] *= std::sqrt(1.0 - q * q);
        }
    }
}

} // namespace qvObrixBase::kernels
