#include "ObrixBase/geometry/T4dDblMatrix.h"

#include <cmath>

#include "ObrixBase/geometry/T4dDblVector.h"

const T4dDblMatrix T4dDblMatrix::identity;

int T4dDblMatrix::equivalent(const T4dDblMatrix& m, double tol) const noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (!(std::fabs(m_[i][j] - m.m_[i][j]) <= tol))
                return 0;
    return 1;
}

T4dDblMatrix& T4dDblMatrix::invertIt() noexcept {
    // Gauss-Jordan elimination on the augmented block [A | I]: every row operation on the
    // matrix (columns 0..3) is applied to the accumulator (columns 4..7) in the same sweep.
    // Elements of A below the diagonal are never read again once eliminated, so only the
    // columns right of the pivot are updated; the accumulator is always updated whole, so a
    // singular matrix spreads its infinities and NaNs into the result instead of hiding them.
    double a[4][8];
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            a[i][j] = m_[i][j];
            a[i][j + 4] = i == j ? 1.0 : 0.0;
        }

    for (int k = 0; k < 3; ++k) {
        // Partial pivoting on the largest square; a later row wins only when strictly larger,
        // so ties keep the upper row.
        int p = k;
        double best = a[k][k] * a[k][k];
        for (int i = k + 1; i < 4; ++i) {
            const double sq = a[i][k] * a[i][k];
            if (sq > best) {
                best = sq;
                p = i;
            }
        }
        if (p != k)
            for (int j = 0; j < 8; ++j) {
                const double t = a[k][j];
                a[k][j] = a[p][j];
                a[p][j] = t;
            }
        for (int i = k + 1; i < 4; ++i) {
            const double f = a[i][k] / a[k][k];
            for (int j = k + 1; j < 8; ++j)
                a[i][j] -= f * a[k][j];
            a[i][k] = 0.0;
        }
    }

    // Unit diagonal: a true division, rounded once, rather than a multiplication by the
    // reciprocal, which rounds twice.
    for (int r = 0; r < 4; ++r) {
        const double d = a[r][r];
        for (int j = r + 1; j < 8; ++j)
            a[r][j] /= d;
        a[r][r] = 1.0;
    }

    // Back substitution from the top row down: each row clears its elements left to right
    // with the unit-diagonal rows below it.
    for (int r = 0; r < 3; ++r)
        for (int c = r + 1; c < 4; ++c) {
            const double f = a[r][c];
            for (int j = c + 1; j < 8; ++j)
                a[r][j] -= f * a[c][j];
            a[r][c] = 0.0;
        }

    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m_[i][j] = a[i][j + 4];
    return *this;
}

T4dDblMatrix& T4dDblMatrix::setToAxisRotate(const T4dDblVector& axis, double angle) noexcept {
    if (angle == 0.0)
        return setToIdentity();
    const double s = std::sin(angle), c = std::cos(angle), t = 1.0 - c;
    const double x = axis.x, y = axis.y, z = axis.z;
    *this = T4dDblMatrix(x * x * t + c, x * y * t + s * z, x * z * t - s * y, 0.0, //
                         x * y * t - s * z, y * y * t + c, y * z * t + s * x, 0.0, //
                         x * z * t + s * y, y * z * t - s * x, z * z * t + c, 0.0, //
                         0.0, 0.0, 0.0, 1.0);
    return *this;
}

T4dDblMatrix& T4dDblMatrix::axisRotateIt(const T4dDblVector& axis, double angle) noexcept {
    if (angle == 0.0)
        return *this;
    T4dDblMatrix r;
    r.setToAxisRotate(axis, angle);
    return premultBy(r);
}

void T4dDblMatrix::copyToFloat(float (*const f)[4]) const noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            f[i][j] = static_cast<float>(m_[i][j]);
}

T4dDblMatrix& T4dDblMatrix::setFromFloat(const float (*const f)[4]) noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m_[i][j] = f[i][j];
    return *this;
}

T4dDblMatrix& T4dDblMatrix::setFromDouble(const double (*const d)[4]) noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m_[i][j] = d[i][j];
    return *this;
}

void T4dDblMatrix::print(std::FILE* out) const {
    for (int i = 0; i < 4; ++i)
        std::fprintf(out, "%g %g %g %g\n", m_[i][0], m_[i][1], m_[i][2], m_[i][3]);
}
