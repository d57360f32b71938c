// Singular value decomposition by the Golub-Kahan-Reinsch method: Householder reflections
// from the left and the right reduce X to upper bidiagonal form (s on the diagonal, e above
// it), the reflectors are accumulated into U and V on request, and implicitly shifted QR
// sweeps with plane rotations drive e to zero. Each pass first looks for a negligible e
// (a split) or a negligible s (a zero singular value, chased out with rotations); the shift
// is the eigenvalue of the trailing 2x2 of B'B nearer its last diagonal element. Negligible
// means lost in rounding when added to its neighbours, so the tests need no tolerance. At
// most 30 sweeps are spent per singular value; a value that has not converged by then (NaN
// input always ends here) stops the kernel with info set.
#include <algorithm>
#include <cmath>
#include <utility>

#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {
constexpr int kMaxSweeps = 30;
}

void dsvdc(double* x, int ldx, int n, int p, double* s, double* e, double* u, int ldu, double* v,
           int ldv, double* work, int job, int* info) {
    auto X = [&](int i, int j) -> double& { return x[i + static_cast<long>(j) * ldx]; };
    auto U = [&](int i, int j) -> double& { return u[i + static_cast<long>(j) * ldu]; };
    auto V = [&](int i, int j) -> double& { return v[i + static_cast<long>(j) * ldv]; };
    auto ucol = [&](int j) { return u + static_cast<long>(j) * ldu; };
    auto vcol = [&](int j) { return v + static_cast<long>(j) * ldv; };
    *info = 0;
    if (n <= 0 || p <= 0)
        return;
    int jobu = (job % 100) / 10;
    int ncu = jobu > 1 ? std::min(n, p) : n;
    bool wantu = jobu != 0, wantv = job % 10 != 0;

    // Reduction to bidiagonal form.
    int nct = std::min(n - 1, p);
    int nrt = std::max(0, std::min(p - 2, n));
    int lu = std::max(nct, nrt);
    for (int l = 0; l < lu; ++l) {
        if (l < nct) {
            s[l] = dnrm2(n - l, &X(l, l), 1);
            if (s[l] != 0.0) {
                if (X(l, l) != 0.0)
                    s[l] = std::copysign(s[l], X(l, l));
                dscal(n - l, 1.0 / s[l], &X(l, l), 1);
                X(l, l) += 1.0;
            }
            s[l] = -s[l];
        }
        for (int j = l + 1; j < p; ++j) {
            if (l < nct && s[l] != 0.0) {
                double t = -ddot(n - l, &X(l, l), 1, &X(l, j), 1) / X(l, l);
                daxpy(n - l, t, &X(l, l), 1, &X(l, j), 1);
            }
            // Row l is the start of the next right reflector.
            e[j] = X(l, j);
        }
        if (wantu && l < nct)
            dcopy(n - l, &X(l, l), 1, &U(l, l), 1);
        if (l >= nrt)
            continue;
        e[l] = dnrm2(p - l - 1, e + l + 1, 1);
        if (e[l] != 0.0) {
            if (e[l + 1] != 0.0)
                e[l] = std::copysign(e[l], e[l + 1]);
            dscal(p - l - 1, 1.0 / e[l], e + l + 1, 1);
            e[l + 1] += 1.0;
        }
        e[l] = -e[l];
        if (l + 1 < n && e[l] != 0.0) {
            // Apply the right reflector to rows l+1.. of the remaining columns.
            std::fill(work + l + 1, work + n, 0.0);
            for (int j = l + 1; j < p; ++j)
                daxpy(n - l - 1, e[j], &X(l + 1, j), 1, work + l + 1, 1);
            for (int j = l + 1; j < p; ++j)
                daxpy(n - l - 1, -e[j] / e[l + 1], work + l + 1, 1, &X(l + 1, j), 1);
        }
        if (wantv)
            dcopy(p - l - 1, e + l + 1, 1, &V(l + 1, l), 1);
    }

    // The bidiagonal matrix of order m.
    int m = std::min(p, n + 1);
    if (nct < p)
        s[nct] = X(nct, nct);
    if (n < m)
        s[m - 1] = 0.0;
    if (nrt + 1 < m)
        e[nrt] = X(nrt, m - 1);
    e[m - 1] = 0.0;

    if (wantu) {
        for (int j = nct; j < ncu; ++j) {
            std::fill(ucol(j), ucol(j) + n, 0.0);
            U(j, j) = 1.0;
        }
        for (int l = nct - 1; l >= 0; --l) {
            if (s[l] != 0.0) {
                for (int j = l + 1; j < ncu; ++j) {
                    double t = -ddot(n - l, &U(l, l), 1, &U(l, j), 1) / U(l, l);
                    daxpy(n - l, t, &U(l, l), 1, &U(l, j), 1);
                }
                dscal(n - l, -1.0, &U(l, l), 1);
                U(l, l) += 1.0;
                std::fill(ucol(l), ucol(l) + l, 0.0);
            } else {
                std::fill(ucol(l), ucol(l) + n, 0.0);
                U(l, l) = 1.0;
            }
        }
    }
    if (wantv) {
        for (int l = p - 1; l >= 0; --l) {
            if (l < nrt && e[l] != 0.0) {
                for (int j = l + 1; j < p; ++j) {
                    double t = -ddot(p - l - 1, &V(l + 1, l), 1, &V(l + 1, j), 1) / V(l + 1, l);
                    daxpy(p - l - 1, t, &V(l + 1, l), 1, &V(l + 1, j), 1);
                }
            }
            std::fill(vcol(l), vcol(l) + p, 0.0);
            V(l, l) = 1.0;
        }
    }

    // QR sweeps on the bidiagonal.
    int mm = m, iter = 0;
    while (m > 0) {
        if (iter >= kMaxSweeps) {
            *info = m;
            break;
        }
        // l: the last negligible e before m-1 (or -1); kase picks the action.
        int l = m - 2;
        for (; l >= 0; --l) {
            double test = std::fabs(s[l]) + std::fabs(s[l + 1]);
            if (test + std::fabs(e[l]) == test) {
                e[l] = 0.0;
                break;
            }
        }
        int kase;
        if (l == m - 2) {
            kase = 4;
        } else {
            int ls = m - 1;
            for (; ls > l; --ls) {
                double test = (ls != m - 1 ? std::fabs(e[ls]) : 0.0) +
                              (ls != l + 1 ? std::fabs(e[ls - 1]) : 0.0);
                if (test + std::fabs(s[ls]) == test) {
                    s[ls] = 0.0;
                    break;
                }
            }
            if (ls == l)
                kase = 3;
            else if (ls == m - 1)
                kase = 1;
            else {
                kase = 2;
                l = ls;
            }
        }
        ++l;
        double cs, sn;
        switch (kase) {
        case 1: {
            // s[m-1] is negligible: chase e[m-2] up and out of the matrix.
            double f = e[m - 2];
            e[m - 2] = 0.0;
            for (int k = m - 2; k >= l; --k) {
                double t1 = s[k];
                drotg(&t1, &f, &cs, &sn);
                s[k] = t1;
                if (k != l) {
                    f = -sn * e[k - 1];
                    e[k - 1] *= cs;
                }
                if (wantv)
                    drot(p, vcol(k), 1, vcol(m - 1), 1, cs, sn);
            }
            break;
        }
        case 2: {
            // s[l-1] is negligible: split at l, chasing e[l-1] down the rows.
            double f = e[l - 1];
            e[l - 1] = 0.0;
            for (int k = l; k < m; ++k) {
                double t1 = s[k];
                drotg(&t1, &f, &cs, &sn);
                s[k] = t1;
                f = -sn * e[k];
                e[k] *= cs;
                if (wantu && k < ncu)
                    drot(n, ucol(k), 1, ucol(l - 1), 1, cs, sn);
            }
            break;
        }
        case 3: {
            double scale = std::max({std::fabs(s[m - 1]), std::fabs(s[m - 2]), std::fabs(e[m - 2]),
                                     std::fabs(s[l]), std::fabs(e[l])});
            double sm = s[m - 1] / scale, smm1 = s[m - 2] / scale, emm1 = e[m - 2] / scale;
            double sl = s[l] / scale, el = e[l] / scale;
            double b = ((smm1 + sm) * (smm1 - sm) + emm1 * emm1) / 2.0;
            double c = (sm * emm1) * (sm * emm1);
            double shift = 0.0;
            if (b != 0.0 || c != 0.0) {
                shift = std::sqrt(b * b + c);
                if (b < 0.0)
                    shift = -shift;
                shift = c / (b + shift);
            }
            double f = (sl + sm) * (sl - sm) + shift;
            double g = sl * el;
            for (int k = l; k < m - 1; ++k) {
                drotg(&f, &g, &cs, &sn);
                if (k != l)
                    e[k - 1] = f;
                f = cs * s[k] + sn * e[k];
                e[k] = cs * e[k] - sn * s[k];
                g = sn * s[k + 1];
                s[k + 1] *= cs;
                if (wantv)
                    drot(p, vcol(k), 1, vcol(k + 1), 1, cs, sn);
                drotg(&f, &g, &cs, &sn);
                s[k] = f;
                f = cs * e[k] + sn * s[k + 1];
                s[k + 1] = -sn * e[k] + cs * s[k + 1];
                g = sn * e[k + 1];
                e[k + 1] *= cs;
                if (wantu && k < n - 1)
                    drot(n, ucol(k), 1, ucol(k + 1), 1, cs, sn);
            }
            e[m - 2] = f;
            ++iter;
            break;
        }
        default: {
            // s[l] has converged: make it non-negative and move it into decreasing order.
            if (s[l] < 0.0) {
                s[l] = -s[l];
                if (wantv)
                    dscal(p, -1.0, vcol(l), 1);
            }
            while (l < mm - 1 && s[l] < s[l + 1]) {
                std::swap(s[l], s[l + 1]);
                if (wantv && l < p - 1)
                    dswap(p, vcol(l), 1, vcol(l + 1), 1);
                if (wantu && l < n - 1)
                    dswap(n, ucol(l), 1, ucol(l + 1), 1);
                ++l;
            }
            iter = 0;
            --m;
            break;
        }
        }
    }
}

} // namespace qvObrixBase::kernels
