#include "ObrixBase/geometry/TxformMatrix.h"

#include "ObrixBase/geometry/TgenXformMatrix.h"

namespace {

// The inverse of an affine row-vector transform p·A + t: the block inverts through its
// adjugate (A⁻¹ = adj(A)/det A), and the translation becomes −t·A⁻¹.
T4dDblMatrix affineInverse(const T4dDblMatrix& m) {
    const double inv = 1.0 / m.det3x3();
    double a[3][3];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            // Cofactor of (j, i), from the cyclic neighbours of row j and column i.
            const short r1 = static_cast<short>((j + 1) % 3), r2 = static_cast<short>((j + 2) % 3);
            const short c1 = static_cast<short>((i + 1) % 3), c2 = static_cast<short>((i + 2) % 3);
            a[i][j] = (m(r1, c1) * m(r2, c2) - m(r1, c2) * m(r2, c1)) * inv;
        }
    const double tx = m(3, 0), ty = m(3, 1), tz = m(3, 2);
    return T4dDblMatrix(a[0][0], a[0][1], a[0][2], 0, a[1][0], a[1][1], a[1][2], 0, a[2][0],
                        a[2][1], a[2][2], 0, -(tx * a[0][0] + ty * a[1][0] + tz * a[2][0]),
                        -(tx * a[0][1] + ty * a[1][1] + tz * a[2][1]),
                        -(tx * a[0][2] + ty * a[1][2] + tz * a[2][2]), 1);
}

void affinePoints(const T4dDblMatrix& m, const double* in, double* out, std::size_t n) {
    for (std::size_t i = 0; i < 3 * n; i += 3) {
        const double x = in[i], y = in[i + 1], z = in[i + 2];
        out[i] = x * m(0, 0) + y * m(1, 0) + z * m(2, 0) + m(3, 0);
        out[i + 1] = x * m(0, 1) + y * m(1, 1) + z * m(2, 1) + m(3, 1);
        out[i + 2] = x * m(0, 2) + y * m(1, 2) + z * m(2, 2) + m(3, 2);
    }
}

} // namespace

TxformMatrix::TxformMatrix(const TgenXformMatrix& t) noexcept : m_(t.matrix()) {
    commit();
}

const T4dDblMatrix& TxformMatrix::inverseMatrix() const noexcept {
    if (!inverseValid_) {
        inverse_ = affineInverse(m_);
        inverseValid_ = true;
    }
    return inverse_;
}

TxformMatrix TxformMatrix::inverse() const noexcept {
    TxformMatrix r(*this);
    return r.invertIt();
}

TxformMatrix& TxformMatrix::invertIt() noexcept {
    const T4dDblMatrix inv = inverseMatrix();
    inverse_ = m_;
    m_ = inv;
    return *this;
}

void TxformMatrix::transformPoints(const double* in, double* out, std::size_t n) const noexcept {
    affinePoints(m_, in, out, n);
}

void TxformMatrix::inverseTransformPoints(const double* in, double* out,
                                          std::size_t n) const noexcept {
    affinePoints(inverseMatrix(), in, out, n);
}
