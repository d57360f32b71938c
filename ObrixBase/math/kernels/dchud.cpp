// Rank-one update of a Cholesky factor: the row x' is appended below R and eliminated column
// by column with plane rotations against the diagonal of R. Each column first receives the
// rotations of the columns before it, then yields its own. The same rotations carry the data
// columns z and the scalars y along; what they leave in y's place adds to the residual norm.
#include <cmath>

#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

void dchud(double* r, int ldr, int p, const double* x, double* z, int ldz, int nz, const double* y,
           double* rho, double* c, double* s) {
    for (int j = 0; j < p; ++j) {
        double* rj = r + static_cast<long>(j) * ldr;
        double xj = x[j];
        for (int i = 0; i < j; ++i) {
            double t = c[i] * rj[i] + s[i] * xj;
            xj = c[i] * xj - s[i] * rj[i];
            rj[i] = t;
        }
        drotg(&rj[j], &xj, &c[j], &s[j]);
    }
    for (int j = 0; j < nz; ++j) {
        double* zj = z + static_cast<long>(j) * ldz;
        double zeta = y[j];
        for (int i = 0; i < p; ++i) {
            double t = c[i] * zj[i] + s[i] * zeta;
            zeta = c[i] * zeta - s[i] * zj[i];
            zj[i] = t;
        }
        double scale = std::fabs(rho[j]) + std::fabs(zeta);
        if (scale != 0.0) {
            double a = rho[j] / scale, b = zeta / scale;
            rho[j] = scale * std::sqrt(a * a + b * b);
        }
    }
}

} // namespace qvObrixBase::kernels
