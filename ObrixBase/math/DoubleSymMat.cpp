#include "ObrixBase/math/DoubleSymMat.h"

namespace {

void requireSquare(unsigned n, unsigned m) {
    if (n != m)
        mathErrorRaise(MATX_NSQUARE, n, m);
}

} // namespace

DoublePackedMat::DoublePackedMat(unsigned n, unsigned m) : vec_(packedLength(m)), n_(m) {
    requireSquare(n, m);
}

DoublePackedMat::DoublePackedMat(const DoubleVec& data, unsigned n, unsigned m,
                                 const char* className)
    : vec_(data), n_(m) {
    requireSquare(n, m);
    if (data.length() != packedLength(m))
        mathErrorRaise(MATX_NPOINTS, data.length(), m, m, className);
}

void DoublePackedMat::boundsCheck(int i, int j) const {
    if (i < 0 || static_cast<unsigned>(i) >= n_ || j < 0 || static_cast<unsigned>(j) >= n_)
        mathErrorRaise(MATX_BOUNDS, i, j, n_, n_);
}

void DoublePackedMat::shapeCheck(const DoublePackedMat& other) const {
    if (n_ != other.n_)
        mathErrorRaise(MATX_MATSIZE, n_, n_, other.n_, other.n_);
}

void DoublePackedMat::assign(const DoublePackedMat& other) {
    shapeCheck(other);
    vec_ = other.vec_;
}

void DoublePackedMat::resizePacked(unsigned n, unsigned m) {
    requireSquare(n, m);
    // The packing puts the leading block first, so keeping the leading elements keeps the
    // leading submatrix.
    vec_.resize(packedLength(m));
    n_ = m;
}

void DoublePackedMat::reshapePacked(unsigned n, unsigned m) {
    requireSquare(n, m);
    vec_.reshape(packedLength(m));
    n_ = m;
}

DoubleVec DoublePackedMat::leadingElements(int k) const {
    if (k < 0 || static_cast<unsigned>(k) > n_)
        mathErrorRaise(MATX_LEADSUB, k, n_);
    // A negative order taken as unsigned would describe an enormous matrix over a few
    // elements; when the handler lets it pass, the leading block is empty instead.
    const unsigned kk = k < 0 ? 0u : static_cast<unsigned>(k);
    return DoubleVec(vec_, 0, packedLength(kk), 1);
}

DoubleSymMat::DoubleSymMat(unsigned n, unsigned m) : PackedMatMembers(n, m) {
}

DoubleSymMat::DoubleSymMat(unsigned n, unsigned m, double value) : PackedMatMembers(n, m, value) {
}

DoubleSymMat::DoubleSymMat(const DoubleVec& data, unsigned n, unsigned m)
    : PackedMatMembers(data, n, m, "DoubleSymMat") {
}

DoubleSymMat& DoubleSymMat::operator=(const DoubleSymMat& other) {
    assign(other);
    return *this;
}

DoubleSymMat& DoubleSymMat::reference(const DoubleSymMat& other) noexcept {
    return rebind(other);
}

DoubleSymMat DoubleSymMat::copy() const {
    return packedCopy();
}

DoubleSymMat DoubleSymMat::leadingSubmatrix(int k) const {
    return leadingBlock(k);
}

DoubleSymMat toSymMat(const DoubleGenMat& a) {
    requireSquare(a.rows(), a.cols());
    const int n = static_cast<int>(a.rows());
    DoubleSymMat s(a.rows(), a.rows());
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i)
            s(i, j) = (a(i, j) + a(j, i)) * 0.5;
    return s;
}

DoubleVec product(const DoubleSymMat& a, const DoubleVec& v) {
    const unsigned n = a.order();
    if (v.length() != n)
        mathErrorRaise(MATX_MATVECPROD, "DoubleSymMat", n, n, v.length());
    DoubleVec y(n, 0.0);
    // Column j of the stored upper triangle contributes to rows i <= j and, by symmetry, the
    // off-diagonal elements to row j as well.
    for (int j = 0; j < static_cast<int>(n); ++j) {
        const double vj = v(j);
        double rowSum = 0.0;
        for (int i = 0; i < j; ++i) {
            const double aij = a(i, j);
            y(i) += aij * vj;
            rowSum += aij * v(i);
        }
        y(j) += a(j, j) * vj + rowSum;
    }
    return y;
}

DoubleVec product(const DoubleVec& v, const DoubleSymMat& a) {
    const unsigned n = a.order();
    if (v.length() != n)
        mathErrorRaise(MATX_VECMATPROD, v.length(), "DoubleSymMat", n, n);
    // v^T A = (A v)^T for a symmetric A.
    DoubleVec y(n, 0.0);
    for (int j = 0; j < static_cast<int>(n); ++j) {
        const double vj = v(j);
        double colSum = 0.0;
        for (int i = 0; i < j; ++i) {
            const double aij = a(i, j);
            colSum += v(i) * aij;
            y(i) += vj * aij;
        }
        y(j) += colSum + vj * a(j, j);
    }
    return y;
}

DoubleSymMat transpose(const DoubleSymMat& a) {
    return a;
}
