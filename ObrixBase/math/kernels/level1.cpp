// The level-1 vector routines shared by every kernel. Unit strides take a plain loop the
// compiler can vectorise; other strides walk from the end the classic way for negative ones.
#include <cmath>

#include "ObrixBase/math/kernels/detail/dot_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace qvObrixBase::kernels {

namespace {
// A negative stride starts the walk at the far end of the vector.
inline long startOf(int n, int inc) {
    return inc < 0 ? static_cast<long>(1 - n) * inc : 0;
}
} // namespace

void daxpy(int n, double a, const double* x, int incx, double* y, int incy) {
    if (n <= 0 || a == 0.0)
        return;
    if (incx == 1 && incy == 1) {
        for (int i = 0; i < n; ++i)
            y[i] += a * x[i];
        return;
    }
    long ix = startOf(n, incx), iy = startOf(n, incy);
    for (int i = 0; i < n; ++i, ix += incx, iy += incy)
        y[iy] += a * x[ix];
}

double ddot(int n, const double* x, int incx, const double* y, int incy) {
    if (n <= 0)
        return 0.0;
    // The numeric classes' inner product, so that ddot and dot() of the same vectors agree
    // bit for bit whatever the strides.
    return detail::reproducibleDot(x + startOf(n, incx), incx, y + startOf(n, incy), incy,
                                   static_cast<unsigned>(n));
}

void dscal(int n, double a, double* x, int incx) {
    if (n <= 0 || incx <= 0)
        return;
    for (long i = 0, ix = 0; i < n; ++i, ix += incx)
        x[ix] *= a;
}

void dswap(int n, double* x, int incx, double* y, int incy) {
    if (n <= 0)
        return;
    long ix = startOf(n, incx), iy = startOf(n, incy);
    for (int i = 0; i < n; ++i, ix += incx, iy += incy) {
        double t = x[ix];
        x[ix] = y[iy];
        y[iy] = t;
    }
}

void dcopy(int n, const double* x, int incx, double* y, int incy) {
    if (n <= 0)
        return;
    long ix = startOf(n, incx), iy = startOf(n, incy);
    for (int i = 0; i < n; ++i, ix += incx, iy += incy)
        y[iy] = x[ix];
}

double dasum(int n, const double* x, int incx) {
    if (n <= 0 || incx <= 0)
        return 0.0;
    double s = 0.0;
    for (long i = 0, ix = 0; i < n; ++i, ix += incx)
        s += std::fabs(x[ix]);
    return s;
}

double dnrm2(int n, const double* x, int incx) {
    if (n <= 0 || incx <= 0)
        return 0.0;
    // The plain sum of squares is exact enough and fast whenever it stays well inside the
    // range of doubles; only when it overflows, underflows or meets a NaN is the vector
    // walked again with a running scale.
    if (incx == 1) {
        double ssq = detail::kernelDot(x, x, n);
        if (ssq > 1e-290 && ssq < 1e290)
            return std::sqrt(ssq);
    }
    // One pass with a running scale (the largest magnitude so far) and the sum of squares of
    // the elements divided by it: no overflow or destructive underflow in the squares.
    double scale = 0.0, ssq = 1.0;
    for (long i = 0, ix = 0; i < n; ++i, ix += incx) {
        double v = x[ix];
        if (v != 0.0) {
            double a = std::fabs(v);
            if (scale < a) {
                double r = scale / a;
                ssq = 1.0 + ssq * r * r;
                scale = a;
            } else {
                double r = a / scale;
                ssq += r * r;
            }
        }
        if (std::isnan(v))
            return v;
    }
    return scale * std::sqrt(ssq);
}

int idamax(int n, const double* x, int incx) {
    if (n <= 0 || incx <= 0)
        return 0;
    int best = 1;
    double bestAbs = std::fabs(x[0]);
    for (long i = 1, ix = incx; i < n; ++i, ix += incx) {
        double a = std::fabs(x[ix]);
        // A NaN best is replaced by the first number: the pivot choice must stay a number.
        if (a > bestAbs || (std::isnan(bestAbs) && !std::isnan(a))) {
            best = static_cast<int>(i) + 1;
            bestAbs = a;
        }
    }
    return best;
}

void drot(int n, double* x, int incx, double* y, int incy, double c, double s) {
    if (n <= 0)
        return;
    if (incx == 1 && incy == 1) {
        for (int i = 0; i < n; ++i) {
            double t = c * x[i] + s * y[i];
            y[i] = c * y[i] - s * x[i];
            x[i] = t;
        }
        return;
    }
    long ix = startOf(n, incx), iy = startOf(n, incy);
    for (int i = 0; i < n; ++i, ix += incx, iy += incy) {
        double t = c * x[ix] + s * y[iy];
        y[iy] = c * y[iy] - s * x[ix];
        x[ix] = t;
    }
}

void drotg(double* a, double* b, double* c, double* s) {
    double fa = *a, fb = *b;
    if (fb == 0.0) {
        *c = fa < 0.0 ? -1.0 : 1.0;
        *s = 0.0;
        *a = std::fabs(fa);
        return;
    }
    double r = std::hypot(fa, fb);
    *c = fa / r;
    *s = fb / r;
    *a = r;
    *b = 0.0;
}

} // namespace qvObrixBase::kernels
