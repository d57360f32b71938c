#include "ObrixBase/math/DoubleTriMat.h"

DoubleLowerTriMat::DoubleLowerTriMat(unsigned n, unsigned m) : TriMatMembers(n, m) {
}

DoubleLowerTriMat::DoubleLowerTriMat(unsigned n, unsigned m, double value)
    : TriMatMembers(n, m, value) {
}

DoubleLowerTriMat::DoubleLowerTriMat(const DoubleVec& data, unsigned n, unsigned m)
    : TriMatMembers(data, n, m, "DoubleLowerTriMat") {
}

DoubleLowerTriMat& DoubleLowerTriMat::operator=(const DoubleLowerTriMat& other) {
    assign(other);
    return *this;
}

DoubleLowerTriMat& DoubleLowerTriMat::reference(const DoubleLowerTriMat& other) noexcept {
    return rebind(other);
}

DoubleLowerTriMat DoubleLowerTriMat::copy() const {
    return packedCopy();
}

double DoubleLowerTriMat::bcset(int i, int j, double x) {
    return checkedSet(i, j, x, "DoubleLowerTriMat");
}

DoubleLowerTriMat DoubleLowerTriMat::leadingSubmatrix(int k) const {
    return leadingBlock(k);
}

DoubleUpperTriMat::DoubleUpperTriMat(unsigned n, unsigned m) : TriMatMembers(n, m) {
}

DoubleUpperTriMat::DoubleUpperTriMat(unsigned n, unsigned m, double value)
    : TriMatMembers(n, m, value) {
}

DoubleUpperTriMat::DoubleUpperTriMat(const DoubleVec& data, unsigned n, unsigned m)
    : TriMatMembers(data, n, m, "DoubleUpperTriMat") {
}

DoubleUpperTriMat& DoubleUpperTriMat::operator=(const DoubleUpperTriMat& other) {
    assign(other);
    return *this;
}

DoubleUpperTriMat& DoubleUpperTriMat::reference(const DoubleUpperTriMat& other) noexcept {
    return rebind(other);
}

DoubleUpperTriMat DoubleUpperTriMat::copy() const {
    return packedCopy();
}

double DoubleUpperTriMat::bcset(int i, int j, double x) {
    return checkedSet(i, j, x, "DoubleUpperTriMat");
}

DoubleUpperTriMat DoubleUpperTriMat::leadingSubmatrix(int k) const {
    return leadingBlock(k);
}

namespace {

// The stored triangle of a square A. The lower triangle is walked row by row and the upper one
// column by column: both visit (line, k) for k <= line, in packed order.
template <class M>
M triangleOf(const DoubleGenMat& a) {
    if (a.rows() != a.cols())
        mathErrorRaise(MATX_NSQUARE, a.rows(), a.cols());
    const int n = static_cast<int>(a.rows());
    M t(a.rows(), a.rows());
    for (int line = 0; line < n; ++line)
        for (int k = 0; k <= line; ++k) {
            if (M::stores(line, k))
                t(line, k) = a(line, k);
            else
                t(k, line) = a(k, line);
        }
    return t;
}

} // namespace

DoubleLowerTriMat toLowerTriMat(const DoubleGenMat& a) {
    return triangleOf<DoubleLowerTriMat>(a);
}

DoubleUpperTriMat toUpperTriMat(const DoubleGenMat& a) {
    return triangleOf<DoubleUpperTriMat>(a);
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
