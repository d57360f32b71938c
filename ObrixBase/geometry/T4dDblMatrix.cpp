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

namespace {

// The inversion works on four rows of eight doubles, reached through row pointers so that a
// pivot swap exchanges two pointers instead of the rows' contents. Columns 0..3 hold the matrix
// being reduced, columns 4..7 the accumulator that starts as the identity. The accumulator's
// columns are kept in pivot order: column 4 + j belongs to the original row that became pivot
// j. In that order it is lower triangular throughout the forward elimination (negated
// multipliers below the diagonal, an implicit 1 on it, zeros above), so the updates of its
// exact zeros are skipped; for finite values every other element comes out as the full update
// would give it. The columns go back to their original order when the result is written out.
using Rows = double* [4];

// Forward elimination of column K. K is a template argument so every loop has a fixed trip
// count and unrolls into straight-line code.
template <int K>
inline void eliminateColumn(Rows& row, double (&col)[4]) noexcept {
    // col holds column K of rows K..3 in registers, so the pivot search waits on those values
    // only, not on the stores of the whole rows. The pivot is the row with the largest square in
    // column K; a later row wins only when strictly larger, so ties keep the upper row.
    int p = K;
    double* pivot = row[K];
    double pivotValue = col[K];
    double best = col[K] * col[K];
    for (int i = K + 1; i < 4; ++i) {
        const double sq = col[i] * col[i];
        if (sq > best) {
            best = sq;
            p = i;
            pivot = row[i];
            pivotValue = col[i];
        }
    }
    for (int i = K + 1; i < 4; ++i) {
        row[i] = p == i ? row[K] : row[i];
        col[i] = p == i ? col[K] : col[i];
    }
    row[K] = pivot;

    // The multipliers are true quotients, not products with a reciprocal: one rounding each.
    for (int i = K + 1; i < 4; ++i) {
        double* const r = row[i];
        const double f = col[i] / pivotValue;
        for (int j = K + 1; j < 4; ++j)
            r[j] -= f * pivot[j];
        for (int j = 0; j < K; ++j)
            r[4 + j] -= f * pivot[4 + j];
        r[4 + K] = 0.0 - f; // 0 − f times the pivot row's implicit 1: +0 when f is +0
        if constexpr (K < 3)
            col[i] = r[K + 1];
    }
}

} // namespace

T4dDblMatrix& T4dDblMatrix::invertIt() noexcept {
    // Gauss-Jordan elimination with partial pivoting: forward elimination, scaling to a unit
    // diagonal, back substitution; every row operation on the matrix is applied to the
    // accumulator, which ends as the inverse. There is no singularity test: a zero pivot
    // divides by zero and the infinities and NaNs spread into the result.
    double a[4][8];
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            a[i][j] = m_[i][j];
    Rows row = {a[0], a[1], a[2], a[3]};
    double col[4] = {a[0][0], a[1][0], a[2][0], a[3][0]};

    eliminateColumn<0>(row, col);
    eliminateColumn<1>(row, col);
    eliminateColumn<2>(row, col);

    // Unit diagonal, by true divisions. The accumulator's implicit 1 becomes the reciprocal of
    // the pivot; its zeros above the diagonal, and the matrix's below it, become 0 / pivot, a
    // zero with the pivot's sign, which the products below carry into zero results.
    for (int r = 0; r < 4; ++r) {
        double* const x = row[r];
        const double d = x[r];
        const double z = std::copysign(0.0, d);
        for (int j = 0; j < r; ++j)
            x[j] = z;
        for (int j = r + 1; j < 4; ++j)
            x[j] /= d;
        for (int j = 0; j < r; ++j)
            x[4 + j] /= d;
        x[4 + r] = 1.0 / d;
        for (int j = r + 1; j < 4; ++j)
            x[4 + j] = z;
    }

    // Back substitution, last column first: a row whose elements right of the diagonal are
    // already cleared is a unit row. In the matrix, clearing with it subtracts multiples of its
    // signed zeros left of the diagonal: no nonzero element changes, but a zero one can change
    // sign, and the later passes multiply with it, so those few elements are still updated.
    for (int c = 3; c > 0; --c)
        for (int r = 0; r < c; ++r) {
            const double f = row[r][c];
            for (int j = 0; j < c; ++j)
                if (j != r)
                    row[r][j] -= f * row[c][j];
            for (int j = 0; j < 4; ++j)
                row[r][4 + j] -= f * row[c][4 + j];
        }

    // Accumulator column j belongs to the original row that became pivot j. The result is
    // gathered from those columns and stored row by row: whole-row stores let a following read
    // of the matrix take its data straight from the store buffer.
    int column[4];
    for (int j = 0; j < 4; ++j)
        column[(row[j] - a[0]) / 8] = 4 + j;
    for (int i = 0; i < 4; ++i)
        for (int c = 0; c < 4; ++c)
            m_[i][c] = row[i][column[c]];
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
