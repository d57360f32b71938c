#include "ObrixBase/auto/containers/TtupleMatrix.h"

#include "ObrixBase/ObrixBuildOptions.h"
#include "ObrixBase/auto/containers/tuple_check_internal.h"

namespace {

int atLeastOne(int tupleSize) {
    return tupleSize < 1 ? 1 : tupleSize;
}

unsigned elementCount(int tupleSize, int rows, int cols) {
    return rows > 0 && cols > 0 ? static_cast<unsigned>(rows) * static_cast<unsigned>(cols) *
                                      static_cast<unsigned>(tupleSize)
                                : 0u;
}

} // namespace

TtupleMatrix::TtupleMatrix() : tupleSize_(1), rows_(0), cols_(0), data_() {
}

TtupleMatrix::TtupleMatrix(int tupleSize, int rows, int cols, const DoubleVec& data)
    : tupleSize_(atLeastOne(tupleSize)), rows_(rows), cols_(cols), data_(data) {
}

TtupleMatrix::TtupleMatrix(int tupleSize, int rows, int cols, double value)
    : tupleSize_(atLeastOne(tupleSize)), rows_(rows), cols_(cols),
      data_(elementCount(tupleSize_, rows, cols), value) {
}

TtupleMatrix& TtupleMatrix::operator=(const TtupleMatrix& other) {
    return reference(other);
}

DoubleVec TtupleMatrix::operator()(int r, int c) {
    if constexpr (OBRIX_CHECKED_INDEXING)
        boundsCheck(r, c);
    return DoubleVec(data_, start(r, c), static_cast<unsigned>(tupleSize_), 1);
}

DoubleVec TtupleMatrix::operator()(int r, int c) const {
    if constexpr (OBRIX_CHECKED_INDEXING)
        boundsCheck(r, c);
    return DoubleVec(data_, start(r, c), static_cast<unsigned>(tupleSize_), 1).copy();
}

DoubleVec TtupleMatrix::bcref(int r, int c) {
    boundsCheck(r, c);
    return (*this)(r, c);
}

DoubleVec TtupleMatrix::bcval(int r, int c) const {
    boundsCheck(r, c);
    return (*this)(r, c);
}

void TtupleMatrix::boundsCheck(int r, int c) const {
    if (!correctRow(r))
        obrix::detail::tupleBoundsFailure("bad row", r, "auto/containers/TtupleMatrix.cpp", 37);
    if (!correctCol(c))
        obrix::detail::tupleBoundsFailure("bad column", c, "auto/containers/TtupleMatrix.cpp", 41);
}

DoubleVec TtupleMatrix::row(int r) const {
    DoubleVec out(elementCount(tupleSize_, 1, cols_));
    for (int c = 0; c < cols_; ++c)
        DoubleVec(out, c * tupleSize_, static_cast<unsigned>(tupleSize_), 1) = (*this)(r, c);
    return out;
}

DoubleVec TtupleMatrix::column(int c) const {
    return DoubleVec(data_, start(0, c), elementCount(tupleSize_, rows_, 1), 1);
}

TtupleVector TtupleMatrix::rowVector(int r) const {
    return TtupleVector(tupleSize_, row(r));
}

TtupleVector TtupleMatrix::columnVector(int c) const {
    return TtupleVector(tupleSize_, column(c));
}

TtupleMatrix TtupleMatrix::rows(const IntVec& which) const {
    const int n = static_cast<int>(which.length());
    TtupleMatrix out(tupleSize_, n, cols_, 0.0);
    for (int c = 0; c < cols_; ++c)
        for (int k = 0; k < n; ++k)
            out(k, c) = bcval(which(k), c);
    return out;
}

TtupleMatrix TtupleMatrix::cols(const IntVec& which) const {
    const int n = static_cast<int>(which.length());
    TtupleMatrix out(tupleSize_, rows_, n, 0.0);
    for (int k = 0; k < n; ++k)
        for (int r = 0; r < rows_; ++r)
            out(r, k) = bcval(r, which(k));
    return out;
}

DoubleGenMat TtupleMatrix::component(int k) const {
    DoubleGenMat out(elementCount(1, rows_, 1), elementCount(1, 1, cols_), 0.0);
    if (!correctTuple(k))
        return out;
    for (int c = 0; c < cols_; ++c)
        for (int r = 0; r < rows_; ++r)
            out(r, c) = data_(start(r, c) + k);
    return out;
}

int TtupleMatrix::setComponent(int k, const DoubleGenMat& values) {
    if (!correctTuple(k) || static_cast<int>(values.rows()) != rows_ ||
        static_cast<int>(values.cols()) != cols_)
        return 0;
    for (int c = 0; c < cols_; ++c)
        for (int r = 0; r < rows_; ++r)
            data_(start(r, c) + k) = values(r, c);
    return 1;
}

DoubleGenMat TtupleMatrix::vecLen() const {
    DoubleGenMat out(elementCount(1, rows_, 1), elementCount(1, 1, cols_));
    for (int c = 0; c < cols_; ++c)
        for (int r = 0; r < rows_; ++r)
            out(r, c) =
                DoubleVec(data_, start(r, c), static_cast<unsigned>(tupleSize_), 1).vecLen();
    return out;
}

TtupleMatrix TtupleMatrix::copy() const {
    return TtupleMatrix(tupleSize_, rows_, cols_, data_.copy());
}

TtupleMatrix& TtupleMatrix::reference(const TtupleMatrix& other) {
    tupleSize_ = other.tupleSize_;
    rows_ = other.rows_;
    cols_ = other.cols_;
    data_.reference(other.data_);
    return *this;
}
