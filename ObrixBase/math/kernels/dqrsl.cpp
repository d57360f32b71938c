// Applications of dqrdc's factors: Q*y and Q'*y by the stored reflectors (last to first for
// Q, first to last for Q'), the least-squares coefficients by back substitution with R on
// the leading part of Q'y, and the residual and fitted values by splitting Q'y into its
// trailing and leading parts and transforming each back with Q.
#include <algorithm>

#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {

// y(j..n) := H_j y(j..n), with the reflector's leading element taken from qraux.
inline void reflect(const double* x, int ldx, int n, int j, double vj, double* y) {
    const double* v = x + j + static_cast<long>(j) * ldx;
    int len = n - j;
    double t = -(vj * y[j] + ddot(len - 1, v + 1, 1, y + j + 1, 1)) / vj;
    y[j] += t * vj;
    daxpy(len - 1, t, v + 1, 1, y + j + 1, 1);
}

} // namespace

void dqrsl(const double* x, int ldx, int n, int k, const double* qraux, const double* y, double* qy,
           double* qty, double* b, double* rsd, double* xb, int job, int* info) {
    auto at = [&](int i, int j) { return x[i + static_cast<long>(j) * ldx]; };
    *info = 0;
    bool cqy = job / 10000 != 0, cqty = job % 10000 != 0;
    bool cb = (job % 1000) / 100 != 0, cr = (job % 100) / 10 != 0, cxb = job % 10 != 0;
    if (n <= 0)
        return;
    int ju = std::min(k, n - 1);

    if (n == 1 && k >= 1) {
        // A single row: Q is the identity and R is one number.
        if (cqy)
            qy[0] = y[0];
        if (cqty)
            qty[0] = y[0];
        if (cxb)
            xb[0] = y[0];
        if (cb) {
            if (at(0, 0) == 0.0)
                *info = 1;
            else
                b[0] = y[0] / at(0, 0);
        }
        if (cr)
            rsd[0] = 0.0;
        return;
    }
    if (cqy) {
        if (qy != y)
            std::copy(y, y + n, qy);
        for (int j = ju - 1; j >= 0; --j)
            if (qraux[j] != 0.0)
                reflect(x, ldx, n, j, qraux[j], qy);
    }
    if (!cqty)
        return;
    if (qty != y)
        std::copy(y, y + n, qty);
    for (int j = 0; j < ju; ++j)
        if (qraux[j] != 0.0)
            reflect(x, ldx, n, j, qraux[j], qty);
    if (cb && b != qty)
        std::copy(qty, qty + k, b);
    if (cxb && xb != qty)
        std::copy(qty, qty + k, xb);
    if (cr && k < n && rsd != qty)
        std::copy(qty + k, qty + n, rsd + k);
    if (cxb)
        std::fill(xb + k, xb + n, 0.0);
    if (cr)
        std::fill(rsd, rsd + k, 0.0);
    if (cb) {
        for (int j = k - 1; j >= 0; --j) {
            double d = at(j, j);
            if (d == 0.0) {
                *info = j + 1;
                break;
            }
            b[j] /= d;
            daxpy(j, -b[j], x + static_cast<long>(j) * ldx, 1, b, 1);
        }
    }
    if (cr || cxb) {
        for (int j = ju - 1; j >= 0; --j) {
            if (qraux[j] == 0.0)
                continue;
            if (cr)
                reflect(x, ldx, n, j, qraux[j], rsd);
            if (cxb)
                reflect(x, ldx, n, j, qraux[j], xb);
        }
    }
}

} // namespace qvObrixBase::kernels
