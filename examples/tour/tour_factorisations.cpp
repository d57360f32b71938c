// Factorisations: fit a parabola to measured points by least squares, check the fit against
// a Cholesky solve of the normal equations, and look at the conditioning through the SVD.
#include <cmath>
#include <cstdio>

#include "ObrixBase/math/DoubleChDecomp.h"
#include "ObrixBase/math/DoubleQRDecomp.h"
#include "ObrixBase/math/DoubleSVDecomp.h"
#include "examples/tour/tour.h"

void tourFactorisations() {
    tourHeading("Factorisations: a least-squares parabola through eight points");
    // Points near y = 1 + 0.5 t - 0.25 t^2, with a little measurement noise.
    const double t[8] = {0.0, 0.5, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5};
    const double noise[8] = {0.02, -0.01, 0.015, -0.02, 0.01, 0.0, -0.015, 0.01};
    DoubleGenMat x(8, 3);
    DoubleVec y(8);
    for (int i = 0; i < 8; ++i) {
        x(i, 0) = 1.0;
        x(i, 1) = t[i];
        x(i, 2) = t[i] * t[i];
        y(i) = 1.0 + 0.5 * t[i] - 0.25 * t[i] * t[i] + noise[i];
    }
    DoubleLeastSqQR fit(x);
    DoubleVec c = fit.solve(y);
    DoubleVec r = fit.residual(y);
    double rss = 0.0;
    for (unsigned i = 0; i < r.length(); ++i)
        rss += r(i) * r(i);
    std::printf("coefficients: %.4f %+.4f t %+.4f t^2 (rank %d)\n", c(0), c(1), c(2), fit.rank());
    std::printf("residual norm: %.5f\n", std::sqrt(rss));

    // The same coefficients from the normal equations X'X c = X'y.
    DoubleChDecomp normal(transposeProduct(x, x));
    DoubleVec c2 = normal.solve(product(y, x));
    std::printf("normal equations agree to %.1e\n",
                std::fmax(std::fabs(c2(0) - c(0)),
                          std::fmax(std::fabs(c2(1) - c(1)), std::fabs(c2(2) - c(2)))));

    DoubleSVDecomp sv(x);
    DoubleVec s = sv.singularValues();
    std::printf("singular values of X: %.3f %.3f %.3f (condition %.1f)\n", s(0), s(1), s(2),
                s(0) / s(2));
}
