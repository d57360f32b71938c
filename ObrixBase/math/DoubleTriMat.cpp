#include "ObrixBase/math/DoubleTriMat.h"

DoubleLowerTriMat::DoubleLowerTriMat(unsigned n, unsigned m) : DoublePackedMat(n, m) {
}

DoubleLowerTriMat::DoubleLowerTriMat(unsigned n, unsigned m, double value) : DoublePackedMat(n, m) {
    vec_ = value;
}

DoubleLowerTriMat::DoubleLowerTriMat(const DoubleVec& data, unsigned n, unsigned m)
    : DoublePackedMat(data, n, m, "DoubleLowerTriMat") {
}

DoubleLowerTriMat& DoubleLowerTriMat::operator=(const DoubleLowerTriMat& other) {
    assign(other);
    return *this;
}

DoubleLowerTriMat& DoubleLowerTriMat::reference(const DoubleLowerTriMat& other) noexcept {
    vec_.reference(other.vec_);
    n_ = other.n_;
    return *this;
}

DoubleLowerTriMat DoubleLowerTriMat::copy() const {
    return DoubleLowerTriMat(vec_.copy(), n_, n_);
}

double DoubleLowerTriMat::bcset(int i, int j, double x) {
    boundsCheck(i, j);
    if (i < j)
        mathErrorRaise(MATX_CHANGEELEMENT, i, j, "DoubleLowerTriMat");
    (*this)(i, j) = x;
    return x;
}

DoubleLowerTriMat DoubleLowerTriMat::leadingSubmatrix(int k) const {
    const DoubleVec leading = leadingElements(k);
    const unsigned order = k < 0 ? 0u : static_cast<unsigned>(k);
    return DoubleLowerTriMat(leading, order, order);
}

DoubleUpperTriMat::DoubleUpperTriMat(unsigned n, unsigned m) : DoublePackedMat(n, m) {
}

DoubleUpperTriMat::DoubleUpperTriMat(unsigned n, unsigned m, double value) : DoublePackedMat(n, m) {
    vec_ = value;
}

DoubleUpperTriMat::DoubleUpperTriMat(const DoubleVec& data, unsigned n, unsigned m)
    : DoublePackedMat(data, n, m, "DoubleUpperTriMat") {
}

DoubleUpperTriMat& DoubleUpperTriMat::operator=(const DoubleUpperTriMat& other) {
    assign(other);
    return *this;
}

DoubleUpperTriMat& DoubleUpperTriMat::reference(const DoubleUpperTriMat& other) noexcept {
    vec_.reference(other.vec_);
    n_ = other.n_;
    return *this;
}

DoubleUpperTriMat DoubleUpperTriMat::copy() const {
    return DoubleUpperTriMat(vec_.copy(), n_, n_);
}

double DoubleUpperTriMat::bcset(int i, int j, double x) {
    boundsCheck(i, j);
    if (i > j)
        mathErrorRaise(MATX_CHANGEELEMENT, i, j, "DoubleUpperTriMat");
    (*this)(i, j) = x;
    return x;
}

DoubleUpperTriMat DoubleUpperTriMat::leadingSubmatrix(int k) const {
    const DoubleVec leading = leadingElements(k);
    const unsigned order = k < 0 ? 0u : static_cast<unsigned>(k);
    return DoubleUpperTriMat(leading, order, order);
}

DoubleLowerTriMat toLowerTriMat(const DoubleGenMat& a) {
    if (a.rows() != a.cols())
        mathErrorRaise(MATX_NSQUARE, a.rows(), a.cols());
    const int n = static_cast<int>(a.rows());
    DoubleLowerTriMat l(a.rows(), a.rows());
    for (int i = 0; i < n; ++i)
        for (int j = 0; j <= i; ++j)
            l(i, j) = a(i, j);
    return l;
}

DoubleUpperTriMat toUpperTriMat(const DoubleGenMat& a) {
    if (a.rows() != a.cols())
        mathErrorRaise(MATX_NSQUARE, a.rows(), a.cols());
    const int n = static_cast<int>(a.rows());
    DoubleUpperTriMat u(a.rows(), a.rows());
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i)
            u(i, j) = a(i, j);
    return u;
}

DoubleUpperTriMat transpose(const DoubleLowerTriMat& a) {
    return DoubleUpperTriMat(a.dataVec(), a.order(), a.order());
}

DoubleLowerTriMat transpose(const DoubleUpperTriMat& a) {
    return DoubleLowerTriMat(a.dataVec(), a.order(), a.order());
}

namespace {

// y = L v for the lower triangle held in `m` (row i holds columns 0..i); `transposed` gives
// y = L^T v. An upper-triangular matrix is the transpose of the lower one over its storage.
DoubleVec lowerProduct(const DoublePackedMat& m, const DoubleVec& v, bool transposed) {
    const int n = static_cast<int>(m.order());
    const DoubleVec& packed = m.dataVec();
    DoubleVec y(m.order(), 0.0);
    for (int i = 0; i < n; ++i) {
        const std::ptrdiff_t rowStart = static_cast<std::ptrdiff_t>(i) * (i + 1) / 2;
        if (!transposed) {
            double sum = 0.0;
            for (int j = 0; j <= i; ++j)
                sum += packed(static_cast<int>(rowStart + j)) * v(j);
            y(i) = sum;
        } else {
            const double vi = v(i);
            for (int j = 0; j <= i; ++j)
                y(j) += packed(static_cast<int>(rowStart + j)) * vi;
        }
    }
    return y;
}

void checkMatVec(const DoublePackedMat& m, const DoubleVec& v, const char* name) {
    if (v.length() != m.order())
        mathErrorRaise(MATX_MATVECPROD, name, m.order(), m.order(), v.length());
}

void checkVecMat(const DoubleVec& v, const DoublePackedMat& m, const char* name) {
    if (v.length() != m.order())
        mathErrorRaise(MATX_VECMATPROD, v.length(), name, m.order(), m.order());
}

} // namespace

DoubleVec product(const DoubleLowerTriMat& a, const DoubleVec& v) {
    checkMatVec(a, v, "DoubleLowerTriMat");
    return lowerProduct(a, v, false);
}

DoubleVec product(const DoubleVec& v, const DoubleLowerTriMat& a) {
    checkVecMat(v, a, "DoubleLowerTriMat");
    return lowerProduct(a, v, true);
}

DoubleVec product(const DoubleUpperTriMat& a, const DoubleVec& v) {
    checkMatVec(a, v, "DoubleUpperTriMat");
    return lowerProduct(a, v, true);
}

DoubleVec product(const DoubleVec& v, const DoubleUpperTriMat& a) {
    checkVecMat(v, a, "DoubleUpperTriMat");
    return lowerProduct(a, v, false);
}
