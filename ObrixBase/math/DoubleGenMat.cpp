#include "ObrixBase/math/DoubleGenMat.h"

#include <cmath>
#include <istream>
#include <ostream>

#include "ObrixBase/math/DoubleSymMat.h"
#include "ObrixBase/math/DoubleTriMat.h"
#include "ObrixBase/math/kernels/detail/dot_internal.h"
#include "ObrixBase/math/kernels/detail/product_internal.h"
#include "ObrixBase/math/strided_loops_internal.h"

using qvObrixBase::kernels::detail::reproducibleDot;
using qvObrixBase::kernels::detail::reproducibleProduct;

namespace {

template <class T>
constexpr const char* matName = obrix::NumericNames<T>::mat;

} // namespace

template <class T>
NumGenMat<T>::NumGenMat() : vec_(), ncols_(0), nrows_(0) {
}

template <class T>
NumGenMat<T>::NumGenMat(unsigned rows, unsigned cols)
    : vec_(rows * cols), ncols_(cols), nrows_(rows) {
}

template <class T>
NumGenMat<T>::NumGenMat(unsigned rows, unsigned cols, T value)
    : vec_(rows * cols, value), ncols_(cols), nrows_(rows) {
}

template <class T>
NumGenMat<T>::NumGenMat(const T* values, unsigned rows, unsigned cols)
    : vec_(values, rows * cols), ncols_(cols), nrows_(rows) {
}

template <class T>
NumGenMat<T>::NumGenMat(const NumVec<T>& data, unsigned rows, unsigned cols)
    : vec_(data), ncols_(cols), nrows_(rows) {
    if (data.length() != rows * cols)
        mathErrorRaise(MATX_NPOINTS, data.length(), rows, cols, matName<T>);
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U> NumGenMat<T>::NumGenMat(const NumGenMat<int>& other)
    : NumGenMat(other.rows(), other.cols()) {
    for (unsigned j = 0; j < ncols_; ++j)
        for (unsigned i = 0; i < nrows_; ++i)
            (*this)(static_cast<int>(i), static_cast<int>(j)) =
                other(static_cast<int>(i), static_cast<int>(j));
}

namespace {

// The full matrix of a packed one, read through its const element access.
template <class P>
void fillFromPacked(DoubleGenMat& full, const P& packed) {
    const int n = static_cast<int>(packed.order());
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
            full(i, j) = packed(i, j);
}

} // namespace

template <class T>
template <class U>
requires obrix::DoubleOnly<U> NumGenMat<T>::NumGenMat(const DoubleSymMat& m)
    : NumGenMat(m.order(), m.order()) {
    fillFromPacked(*this, m);
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U> NumGenMat<T>::NumGenMat(const DoubleLowerTriMat& m)
    : NumGenMat(m.order(), m.order()) {
    fillFromPacked(*this, m);
}

template <class T>
template <class U>
requires obrix::DoubleOnly<U> NumGenMat<T>::NumGenMat(const DoubleUpperTriMat& m)
    : NumGenMat(m.order(), m.order()) {
    fillFromPacked(*this, m);
}

template <class T>
NumGenMat<T>::NumGenMat(const NumGenMatPick<T>& pick) : NumGenMat(pick.rows(), pick.cols()) {
    for (unsigned j = 0; j < ncols_; ++j)
        for (unsigned i = 0; i < nrows_; ++i)
            (*this)(static_cast<int>(i), static_cast<int>(j)) =
                pick(static_cast<int>(i), static_cast<int>(j));
}

template <class T>
NumGenMat<T>& NumGenMat<T>::operator=(const NumGenMat& other) {
    shapeCheck(other);
    vec_ = other.vec_;
    return *this;
}

template <class T>
NumGenMat<T>& NumGenMat<T>::operator=(T value) {
    vec_ = value;
    return *this;
}

template <class T>
NumGenMat<T>& NumGenMat<T>::reference(const NumGenMat& other) noexcept {
    vec_.reference(other.vec_);
    ncols_ = other.ncols_;
    nrows_ = other.nrows_;
    return *this;
}

template <class T>
NumGenMat<T> NumGenMat<T>::copy() const {
    return NumGenMat(vec_.copy(), nrows_, ncols_);
}

template <class T>
void NumGenMat<T>::reshape(unsigned rows, unsigned cols) {
    vec_.reshape(rows * cols);
    nrows_ = rows;
    ncols_ = cols;
}

template <class T>
void NumGenMat<T>::resize(unsigned rows, unsigned cols) {
    NumGenMat fresh(rows, cols, T(0));
    const unsigned keptRows = rows < nrows_ ? rows : nrows_;
    const unsigned keptCols = cols < ncols_ ? cols : ncols_;
    for (unsigned j = 0; j < keptCols; ++j)
        for (unsigned i = 0; i < keptRows; ++i)
            fresh(static_cast<int>(i), static_cast<int>(j)) =
                (*this)(static_cast<int>(i), static_cast<int>(j));
    reference(fresh);
}

template <class T>
NumVec<T> NumGenMat<T>::diagonal(int k) const {
    const long long rows = nrows_, cols = ncols_;
    long long start, n;
    if (k > 0) {
        start = rows * k;
        n = rows < cols - k ? rows : cols - k;
    } else {
        start = -k;
        n = cols < rows + k ? cols : rows + k;
    }
    if (n < 0)
        n = 0;
    return NumVec<T>(vec_, static_cast<int>(start), static_cast<unsigned>(n),
                     static_cast<int>(nrows_ + 1));
}

template <class T>
NumVec<T> NumGenMat<T>::bcrow(int i) const {
    if (i < 0 || static_cast<unsigned>(i) >= nrows_)
        mathErrorRaise(MATX_ROWBOUNDS, i, nrows_);
    return row(i);
}

template <class T>
NumVec<T> NumGenMat<T>::bccol(int j) const {
    if (j < 0 || static_cast<unsigned>(j) >= ncols_)
        mathErrorRaise(MATX_COLBOUNDS, j, ncols_);
    return col(j);
}

template <class T>
NumVec<T> NumGenMat<T>::bcdiagonal(int k) const {
    if (!(static_cast<long long>(k) < static_cast<long long>(ncols_) &&
          -static_cast<long long>(k) < static_cast<long long>(nrows_)))
        mathErrorRaise(MATX_DIAGBOUNDS, k, matName<T>, nrows_, ncols_);
    return diagonal(k);
}

template <class T>
NumGenMatPick<T> NumGenMat<T>::operator()(const NumVec<int>& rowIndices,
                                          const NumVec<int>& colIndices) {
    return NumGenMatPick<T>(*this, rowIndices, colIndices);
}

template <class T>
void NumGenMat<T>::boundsCheck(int i, int j) const {
    if (i < 0 || static_cast<unsigned>(i) >= nrows_ || j < 0 || static_cast<unsigned>(j) >= ncols_)
        mathErrorRaise(MATX_BOUNDS, i, j, nrows_, ncols_);
}

template <class T>
void NumGenMat<T>::shapeCheck(const NumGenMat& other) const {
    if (nrows_ != other.nrows_ || ncols_ != other.ncols_)
        mathErrorRaise(MATX_MATSIZE, nrows_, ncols_, other.nrows_, other.ncols_);
}

template <class T>
bool NumGenMat<T>::operator==(const NumGenMat& other) const {
    return nrows_ == other.nrows_ && ncols_ == other.ncols_ && vec_ == other.vec_;
}

template <class T>
NumGenMat<T>& NumGenMat<T>::operator++() {
    ++vec_;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator--() {
    --vec_;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator+=(const NumGenMat& other) {
    shapeCheck(other);
    vec_ += other.vec_;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator-=(const NumGenMat& other) {
    shapeCheck(other);
    vec_ -= other.vec_;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator*=(const NumGenMat& other) {
    shapeCheck(other);
    vec_ *= other.vec_;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator/=(const NumGenMat& other) {
    shapeCheck(other);
    vec_ /= other.vec_;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator+=(T value) {
    vec_ += value;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator-=(T value) {
    vec_ -= value;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator*=(T value) {
    vec_ *= value;
    return *this;
}
template <class T>
NumGenMat<T>& NumGenMat<T>::operator/=(T value) {
    vec_ /= value;
    return *this;
}

template <class T>
NumGenMat<T> NumGenMat<T>::apply(T (*f)(T)) const {
    return NumGenMat(vec_.apply(f), nrows_, ncols_);
}

template <class T>
void NumGenMat<T>::printOn(std::ostream& out) const {
    const std::streamsize width = out.width(0);
    out << nrows_ << 'x' << ncols_ << " [\n";
    for (unsigned i = 0; i < nrows_; ++i) {
        for (unsigned j = 0; j < ncols_; ++j) {
            out.width(width);
            out << (*this)(static_cast<int>(i), static_cast<int>(j));
            out << ' ';
        }
        out << '\n';
    }
    out << ']';
}

template <class T>
void NumGenMat<T>::scanFrom(std::istream& in) {
    // The dimensions are read wide, so that a sign or an overflow is malformed input rather
    // than a wrapped unsigned count.
    long long rows = -1, cols = -1;
    char times = 0;
    constexpr long long maxDimension = 0xFFFFFFFFLL;
    if (!(in >> rows >> times >> cols) || times != 'x' || rows < 0 || cols < 0 ||
        rows > maxDimension || cols > maxDimension) {
        in.setstate(std::ios::failbit);
        return;
    }
    // The elements are read before the shape is taken, so that a header announcing more
    // than the text holds never allocates for it and malformed input changes nothing.
    NumVec<T> elements;
    elements.scanFrom(in);
    if (!in || static_cast<unsigned long long>(rows) * static_cast<unsigned long long>(cols) !=
                   elements.length()) {
        in.setstate(std::ios::failbit);
        return;
    }
    const unsigned r = static_cast<unsigned>(rows), c = static_cast<unsigned>(cols);
    NumGenMat fresh(r, c);
    // Column by column: a matrix without columns (but perhaps very many rows) costs nothing.
    for (unsigned j = 0; j < c; ++j)
        for (unsigned i = 0; i < r; ++i)
            fresh(static_cast<int>(i), static_cast<int>(j)) = elements(static_cast<int>(i * c + j));
    reference(fresh);
}

// ---- picks ----

template <class T>
NumGenMatPick<T>::NumGenMatPick(const NumGenMat<T>& matrix, const NumVec<int>& rowIndices,
                                const NumVec<int>& colIndices)
    : matrix_(matrix), rows_(rowIndices), cols_(colIndices) {
    for (int k = static_cast<int>(rows_.length()) - 1; k >= 0; --k)
        if (rows_(k) < 0 || static_cast<unsigned>(rows_(k)) >= matrix_.rows())
            mathErrorRaise(MATX_PICKRANGE, rows_(k), static_cast<int>(matrix_.rows()) - 1);
    for (int k = static_cast<int>(cols_.length()) - 1; k >= 0; --k)
        if (cols_(k) < 0 || static_cast<unsigned>(cols_(k)) >= matrix_.cols())
            mathErrorRaise(MATX_PICKRANGE, cols_(k), static_cast<int>(matrix_.cols()) - 1);
}

template <class T>
NumGenMatPick<T>& NumGenMatPick<T>::operator=(const NumGenMat<T>& values) {
    if (values.rows() != rows() || values.cols() != cols())
        mathErrorRaise(MATX_MATSIZE, rows(), cols(), values.rows(), values.cols());
    // Values from the picked matrix's own block are copied out before scattering.
    NumGenMat<T> source =
        values.dataVec().block() == matrix_.dataVec().block() ? values.copy() : values;
    for (unsigned c = 0; c < cols(); ++c)
        for (unsigned r = 0; r < rows(); ++r)
            (*this)(static_cast<int>(r), static_cast<int>(c)) =
                source(static_cast<int>(r), static_cast<int>(c));
    return *this;
}

template <class T>
NumGenMatPick<T>& NumGenMatPick<T>::operator=(T value) {
    for (unsigned c = 0; c < cols(); ++c)
        for (unsigned r = 0; r < rows(); ++r)
            (*this)(static_cast<int>(r), static_cast<int>(c)) = value;
    return *this;
}

// ---- free functions ----

namespace {

template <class T>
NumGenMat<T> withShapeOf(const NumGenMat<T>& m, const NumVec<T>& data) {
    return NumGenMat<T>(data, m.rows(), m.cols());
}

} // namespace

template <class T>
NumGenMat<T> operator-(const NumGenMat<T>& m) {
    return withShapeOf(m, -m.dataVec());
}
template <class T>
NumGenMat<T> operator+(const NumGenMat<T>& a, const NumGenMat<T>& b) {
    a.shapeCheck(b);
    return withShapeOf(a, a.dataVec() + b.dataVec());
}
template <class T>
NumGenMat<T> operator-(const NumGenMat<T>& a, const NumGenMat<T>& b) {
    a.shapeCheck(b);
    return withShapeOf(a, a.dataVec() - b.dataVec());
}
template <class T>
NumGenMat<T> operator*(const NumGenMat<T>& a, const NumGenMat<T>& b) {
    a.shapeCheck(b);
    return withShapeOf(a, a.dataVec() * b.dataVec());
}
template <class T>
NumGenMat<T> operator/(const NumGenMat<T>& a, const NumGenMat<T>& b) {
    a.shapeCheck(b);
    return withShapeOf(a, a.dataVec() / b.dataVec());
}
template <class T>
NumGenMat<T> operator+(const NumGenMat<T>& a, std::type_identity_t<T> s) {
    return withShapeOf(a, a.dataVec() + s);
}
template <class T>
NumGenMat<T> operator+(std::type_identity_t<T> s, const NumGenMat<T>& a) {
    return withShapeOf(a, s + a.dataVec());
}
template <class T>
NumGenMat<T> operator-(const NumGenMat<T>& a, std::type_identity_t<T> s) {
    return withShapeOf(a, a.dataVec() - s);
}
template <class T>
NumGenMat<T> operator-(std::type_identity_t<T> s, const NumGenMat<T>& a) {
    return withShapeOf(a, s - a.dataVec());
}
template <class T>
NumGenMat<T> operator*(const NumGenMat<T>& a, std::type_identity_t<T> s) {
    return withShapeOf(a, a.dataVec() * s);
}
template <class T>
NumGenMat<T> operator*(std::type_identity_t<T> s, const NumGenMat<T>& a) {
    return withShapeOf(a, s * a.dataVec());
}
template <class T>
NumGenMat<T> operator/(const NumGenMat<T>& a, std::type_identity_t<T> s) {
    return withShapeOf(a, a.dataVec() / s);
}
template <class T>
NumGenMat<T> operator/(std::type_identity_t<T> s, const NumGenMat<T>& a) {
    return withShapeOf(a, s / a.dataVec());
}

template <class T>
NumGenMat<T> abs(const NumGenMat<T>& m) {
    return m.apply([](T x) { return obrix::detail::absoluteValue(x); });
}

namespace {

// The rows of `a` copied into one contiguous block, row i at offset i * a.cols(): the left
// operand of every product is read row by row many times.
template <class T>
NumVec<T> copyRows(const NumGenMat<T>& a) {
    const unsigned rows = a.rows(), cols = a.cols();
    NumVec<T> out(rows * cols);
    T* p = out.data();
    for (unsigned j = 0; j < cols; ++j)
        for (unsigned i = 0; i < rows; ++i)
            p[static_cast<std::size_t>(i) * cols + j] = a(static_cast<int>(i), static_cast<int>(j));
    return out;
}

// The columns of `b` as one contiguous block when its storage is strided.
template <class T>
NumVec<T> contiguousColumns(const NumGenMat<T>& b) {
    return b.stride() == 1 ? b.dataVec() : b.dataVec().copy();
}

} // namespace

namespace {

// When a returning handler lets a mismatched product go on, the inner products run over the
// shorter of the two lengths, so that nothing is read outside either operand.
unsigned innerLength(unsigned left, unsigned right) {
    return left < right ? left : right;
}

} // namespace

template <class T>
NumGenMat<T> product(const NumGenMat<T>& a, const NumGenMat<T>& b) {
    if (a.cols() != b.rows())
        mathErrorRaise(MATX_MATMATPROD, matName<T>, a.rows(), a.cols(), b.rows(), b.cols());
    const unsigned m = a.rows(), n = b.cols(), k = innerLength(a.cols(), b.rows());
    NumGenMat<T> c(m, n);
    const NumVec<T> rows = copyRows(a);
    const NumVec<T> cols = contiguousColumns(b);
    reproducibleProduct(rows.data(), a.cols(), cols.data(), b.rows(), m, n, k, c.data());
    return c;
}

template <class T>
NumGenMat<T> transposeProduct(const NumGenMat<T>& a, const NumGenMat<T>& b) {
    if (a.rows() != b.rows())
        mathErrorRaise(MATX_MATMATPROD, matName<T>, a.rows(), a.cols(), b.rows(), b.cols());
    // Row i of A^T is column i of A, already contiguous in A's storage.
    const unsigned m = a.cols(), n = b.cols(), k = innerLength(a.rows(), b.rows());
    NumGenMat<T> c(m, n);
    const NumVec<T> rows = contiguousColumns(a);
    const NumVec<T> cols = contiguousColumns(b);
    reproducibleProduct(rows.data(), a.rows(), cols.data(), b.rows(), m, n, k, c.data());
    return c;
}

template <class T>
NumGenMat<T> transProduct(const NumGenMat<T>& a, const NumGenMat<T>& b) {
    if (a.cols() != b.cols())
        mathErrorRaise(MATX_MATMATPROD, matName<T>, a.rows(), a.cols(), b.rows(), b.cols());
    // Column j of B^T is row j of B: both operands are taken row by row.
    const unsigned m = a.rows(), n = b.rows(), k = innerLength(a.cols(), b.cols());
    NumGenMat<T> c(m, n);
    const NumVec<T> rows = copyRows(a);
    const NumVec<T> cols = copyRows(b);
    reproducibleProduct(rows.data(), a.cols(), cols.data(), b.cols(), m, n, k, c.data());
    return c;
}

template <class T>
NumVec<T> product(const NumGenMat<T>& a, const NumVec<T>& v) {
    if (a.cols() != v.length())
        mathErrorRaise(MATX_MATVECPROD, matName<T>, a.rows(), a.cols(), v.length());
    NumVec<T> result(a.rows());
    const unsigned k = innerLength(a.cols(), v.length());
    for (unsigned i = 0; i < a.rows(); ++i) {
        const NumVec<T> row = a.row(static_cast<int>(i));
        result(static_cast<int>(i)) =
            reproducibleDot(row.data(), row.stride(), v.data(), v.stride(), k);
    }
    return result;
}

template <class T>
NumVec<T> product(const NumVec<T>& v, const NumGenMat<T>& a) {
    if (a.rows() != v.length())
        mathErrorRaise(MATX_VECMATPROD, v.length(), matName<T>, a.rows(), a.cols());
    NumVec<T> result(a.cols());
    const unsigned k = innerLength(a.rows(), v.length());
    for (unsigned j = 0; j < a.cols(); ++j) {
        const NumVec<T> col = a.col(static_cast<int>(j));
        result(static_cast<int>(j)) =
            reproducibleDot(v.data(), v.stride(), col.data(), col.stride(), k);
    }
    return result;
}

template <class T>
NumGenMat<T> transpose(const NumGenMat<T>& a) {
    NumGenMat<T> t(a.cols(), a.rows());
    for (unsigned j = 0; j < a.cols(); ++j)
        for (unsigned i = 0; i < a.rows(); ++i)
            t(static_cast<int>(j), static_cast<int>(i)) =
                a(static_cast<int>(i), static_cast<int>(j));
    return t;
}

template <class T>
NumGenMat<T> kronecker(const NumGenMat<T>& a, const NumGenMat<T>& b) {
    const unsigned br = b.rows(), bc = b.cols();
    NumGenMat<T> k(a.rows() * br, a.cols() * bc);
    for (unsigned j = 0; j < a.cols(); ++j)
        for (unsigned i = 0; i < a.rows(); ++i) {
            const T s = a(static_cast<int>(i), static_cast<int>(j));
            for (unsigned l = 0; l < bc; ++l)
                for (unsigned r = 0; r < br; ++r)
                    k(static_cast<int>(i * br + r), static_cast<int>(j * bc + l)) =
                        static_cast<T>(s * b(static_cast<int>(r), static_cast<int>(l)));
        }
    return k;
}

IntGenMat toInt(const DoubleGenMat& m) {
    IntGenMat out(m.rows(), m.cols());
    for (unsigned j = 0; j < m.cols(); ++j)
        for (unsigned i = 0; i < m.rows(); ++i)
            out(static_cast<int>(i), static_cast<int>(j)) =
                obrix::detail::truncateToInt(m(static_cast<int>(i), static_cast<int>(j)));
    return out;
}

template <class T>
std::ostream& operator<<(std::ostream& out, const NumGenMat<T>& m) {
    m.printOn(out);
    return out;
}

template <class T>
std::istream& operator>>(std::istream& in, NumGenMat<T>& m) {
    m.scanFrom(in);
    return in;
}

#define OBRIX_INSTANTIATE_MATRIX(T)                                                                \
    template class OBRIX_INSTANTIATION_API NumGenMat<T>;                                           \
    template class OBRIX_INSTANTIATION_API NumGenMatPick<T>;                                       \
    template NumGenMat<T> operator-(const NumGenMat<T>&);                                          \
    template NumGenMat<T> operator+(const NumGenMat<T>&, const NumGenMat<T>&);                     \
    template NumGenMat<T> operator-(const NumGenMat<T>&, const NumGenMat<T>&);                     \
    template NumGenMat<T> operator*(const NumGenMat<T>&, const NumGenMat<T>&);                     \
    template NumGenMat<T> operator/(const NumGenMat<T>&, const NumGenMat<T>&);                     \
    template NumGenMat<T> operator+(const NumGenMat<T>&, std::type_identity_t<T>);                 \
    template NumGenMat<T> operator+(std::type_identity_t<T>, const NumGenMat<T>&);                 \
    template NumGenMat<T> operator-(const NumGenMat<T>&, std::type_identity_t<T>);                 \
    template NumGenMat<T> operator-(std::type_identity_t<T>, const NumGenMat<T>&);                 \
    template NumGenMat<T> operator*(const NumGenMat<T>&, std::type_identity_t<T>);                 \
    template NumGenMat<T> operator*(std::type_identity_t<T>, const NumGenMat<T>&);                 \
    template NumGenMat<T> operator/(const NumGenMat<T>&, std::type_identity_t<T>);                 \
    template NumGenMat<T> operator/(std::type_identity_t<T>, const NumGenMat<T>&);                 \
    template NumGenMat<T> abs(const NumGenMat<T>&);                                                \
    template NumGenMat<T> product(const NumGenMat<T>&, const NumGenMat<T>&);                       \
    template NumGenMat<T> transposeProduct(const NumGenMat<T>&, const NumGenMat<T>&);              \
    template NumGenMat<T> transProduct(const NumGenMat<T>&, const NumGenMat<T>&);                  \
    template NumVec<T> product(const NumGenMat<T>&, const NumVec<T>&);                             \
    template NumVec<T> product(const NumVec<T>&, const NumGenMat<T>&);                             \
    template NumGenMat<T> transpose(const NumGenMat<T>&);                                          \
    template NumGenMat<T> kronecker(const NumGenMat<T>&, const NumGenMat<T>&);                     \
    template std::ostream& operator<<(std::ostream&, const NumGenMat<T>&);                         \
    template std::istream& operator>>(std::istream&, NumGenMat<T>&);

OBRIX_INSTANTIATE_MATRIX(double)
OBRIX_INSTANTIATE_MATRIX(int)

template OBRIX_MEMBER_TEMPLATE_API DoubleGenMat::NumGenMat(const IntGenMat&);
template OBRIX_MEMBER_TEMPLATE_API DoubleGenMat::NumGenMat(const DoubleSymMat&);
template OBRIX_MEMBER_TEMPLATE_API DoubleGenMat::NumGenMat(const DoubleLowerTriMat&);
template OBRIX_MEMBER_TEMPLATE_API DoubleGenMat::NumGenMat(const DoubleUpperTriMat&);
