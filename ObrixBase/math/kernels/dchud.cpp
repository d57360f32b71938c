// Rank-one update of a Cholesky factor: the row x' is appended below R and eliminated column
// by column with plane rotations against the diagonal of R. Each column first receives the
// rotations of the columns before it, then yields its own. The same rotations carry the data
// columns z and the scalars y along; what they leave in y's place adds to the residual norm.
#include <cmath>

#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {

// Rotation i (c[i], s[i]) acts on the pair (col[i], tail), for i = 0..count-1 in order: the
// new row that enters the factor is carried along as `tail` while each earlier rotation of
// the update is applied to a column of R or of Z.
void applyRotations(int count, const double* c, const double* s, double* col, double& tail) {
    for (int i = 0; i < count; ++i) {
        const double t = c[i] * col[i] + s[i] * tail;
        tail = c[i] * tail - s[i] * col[i];
        col[i] = t;
    }
}

} // namespace

void dchud(double* r, int ldr, int p, const double* x, double* z, int ldz, int nz, const double* y,
           double* rho, double* c, double* s) {
    for (int j = 0; j < p; ++j) {
        double* rj = r + static_cast<long>(j) * ldr;
        double xj = x[j];
        applyRotations(j, c, s, rj, xj);
        drotg(&rj[j], &xj, &c[j], &s[j]);
    }
    for (int j = 0; j < nz; ++j) {
        double* zj = z + static_cast<long>(j) * ldz;
        double zeta = y[j];
        applyRotations(p, c, s, zj, zeta);
        double scale = std::fabs(rho[j]) + std::fabs(zeta);
        if (scale != 0.0) {
            double a = rho[j] / scale, b = zeta / scale;
            rho[j] = scale * std::sqrt(a * a + b * b);
        }
    }
}

} // namespace qvObrixBase::kernels
