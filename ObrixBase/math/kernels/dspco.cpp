// Symmetric indefinite factorisation with a reciprocal condition estimate in the 1-norm.
// The norm of the inverse is estimated by Hager's method in Higham's refinement: a few solves
// with the factors climb to a vertex of the unit 1-norm ball where |inv(A) x| is largest,
// and a final solve with an alternating-sign vector guards against the cases the climb
// misses. A is symmetric, so its inverse's transpose needs no solve of its own.
#include <cmath>
#include <vector>

#include "ObrixBase/math/kernels/kernels.h"
#include "ObrixBase/math/kernels/packed_internal.h"

namespace qvObrixBase::kernels {

using detail::packedAt;

void dspco(double* ap, int n, int* kpvt, double* rcond, double* z) {
    // 1-norm of the symmetric matrix from its upper triangle: column sums of both halves.
    for (int j = 0; j < n; ++j)
        z[j] = 0.0;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < j; ++i) {
            double v = std::fabs(ap[packedAt(i, j)]);
            z[j] += v;
            z[i] += v;
        }
        z[j] += std::fabs(ap[packedAt(j, j)]);
    }
    double anorm = 0.0;
    for (int j = 0; j < n; ++j)
        if (!(z[j] <= anorm))
            anorm = z[j];

    int info = 0;
    dspfa(ap, n, kpvt, &info);
    *rcond = 0.0;
    if (n <= 0 || info != 0 || anorm == 0.0 || !std::isfinite(anorm))
        return;

    std::vector<double> x(n, 1.0 / n), sgn(n, 0.0);
    auto solve = [&](std::vector<double>& v) { dspsl(ap, n, kpvt, v.data()); };
    solve(x);
    double est = dasum(n, x.data(), 1);
    if (n > 1) {
        for (int i = 0; i < n; ++i)
            sgn[i] = x[i] >= 0.0 ? 1.0 : -1.0;
        x = sgn;
        solve(x);
        int j = idamax(n, x.data(), 1) - 1;
        for (int iter = 0; iter < 4; ++iter) {
            std::fill(x.begin(), x.end(), 0.0);
            x[j] = 1.0;
            solve(x);
            double old = est;
            est = dasum(n, x.data(), 1);
            bool same = true;
            for (int i = 0; i < n; ++i)
                same = same && (x[i] >= 0.0 ? 1.0 : -1.0) == sgn[i];
            if (same || !(est > old)) {
                est = std::fmax(est, old);
                break;
            }
            for (int i = 0; i < n; ++i)
                sgn[i] = x[i] >= 0.0 ? 1.0 : -1.0;
            x = sgn;
            solve(x);
            int last = j;
            j = idamax(n, x.data(), 1) - 1;
            if (std::fabs(x[last]) == std::fabs(x[j]))
                break;
        }
        for (int i = 0; i < n; ++i)
            x[i] = (i % 2 == 0 ? 1.0 : -1.0) * (1.0 + static_cast<double>(i) / (n - 1));
        solve(x);
        est = std::fmax(est, 2.0 * dasum(n, x.data(), 1) / (3.0 * n));
    }
    for (int i = 0; i < n; ++i)
        z[i] = x[i];
    double r = 1.0 / (anorm * est);
    *rcond = r >= 0.0 && std::isfinite(r) ? r : 0.0;
}

} // namespace qvObrixBase::kernels
