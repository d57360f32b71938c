#include "ObrixBase/auto/containers/TtupleVector.h"

#include <cmath>
#include <cstdlib>

#include "Base/rpt/rpt.h"
#include "ObrixBase/ObrixBuildOptions.h"
#include "ObrixBase/auto/containers/tuple_check_internal.h"

namespace {

int atLeastOne(int tupleSize) {
    return tupleSize < 1 ? 1 : tupleSize;
}

unsigned elementCount(int tupleSize, int points) {
    return points > 0 ? static_cast<unsigned>(points) * static_cast<unsigned>(tupleSize) : 0u;
}

} // namespace

TtupleVector::TtupleVector() : tupleSize_(1), data_() {
}

TtupleVector::TtupleVector(int tupleSize, const DoubleVec& data)
    : tupleSize_(atLeastOne(tupleSize)), data_(data) {
}

TtupleVector::TtupleVector(int tupleSize, int points, double value)
    : tupleSize_(atLeastOne(tupleSize)), data_(elementCount(tupleSize_, points), value) {
}

TtupleVector::TtupleVector(int tupleSize, int points, const double* values)
    : tupleSize_(atLeastOne(tupleSize)), data_(values, elementCount(tupleSize_, points)) {
}

TtupleVector::TtupleVector(int tupleSize, int points, const double* const* pointers)
    : tupleSize_(atLeastOne(tupleSize)), data_(elementCount(tupleSize_, points)) {
    for (int i = 0; i < points; ++i)
        for (int k = 0; k < tupleSize_; ++k)
            data_(i * tupleSize_ + k) = pointers[i][k];
}

TtupleVector& TtupleVector::operator=(const TtupleVector& other) {
    return reference(other);
}

DoubleVec TtupleVector::operator[](int i) {
    boundsCheck(i);
    return (*this)(i);
}

DoubleVec TtupleVector::operator[](int i) const {
    boundsCheck(i);
    return (*this)(i);
}

DoubleVec TtupleVector::operator()(int i) {
    if constexpr (OBRIX_CHECKED_INDEXING)
        boundsCheck(i);
    return DoubleVec(data_, i * tupleSize_, static_cast<unsigned>(tupleSize_), 1);
}

DoubleVec TtupleVector::operator()(int i) const {
    if constexpr (OBRIX_CHECKED_INDEXING)
        boundsCheck(i);
    return DoubleVec(data_, i * tupleSize_, static_cast<unsigned>(tupleSize_), 1).copy();
}

void TtupleVector::boundsCheck(int i) const {
    if (!correctIndex(i))
        obrix::detail::tupleBoundsFailure("bad index", i, "auto/containers/TtupleVector.cpp", 36);
}

DoubleVec TtupleVector::component(int k) const {
    return DoubleVec(data_, k, static_cast<unsigned>(points()), tupleSize_);
}

TtupleVector TtupleVector::components(const IntVec& coordinates) const {
    const int n = static_cast<int>(coordinates.length()), count = points();
    TtupleVector out(n, count, 0.0);
    // Coordinates outside the tuple are left at 0.
    for (int i = 0; i < count; ++i)
        for (int c = 0; c < n; ++c)
            if (correctTuple(coordinates(c)))
                out.data_(i * out.tupleSize_ + c) = data_(i * tupleSize_ + coordinates(c));
    return out;
}

TtupleVector TtupleVector::components(int first, int last) const {
    return components(
        IntVec(static_cast<unsigned>(last >= first ? last - first + 1 : 0), first, 1));
}

TtupleVector TtupleVector::rPoints(int first, int last) const {
    return rPoints(IntVec(static_cast<unsigned>(last >= first ? last - first + 1 : 0), first, 1));
}

TtupleVector TtupleVector::rPoints(const IntVec& which) const {
    const int n = static_cast<int>(which.length());
    TtupleVector out(tupleSize_, n, 0.0);
    for (int p = 0; p < n; ++p)
        out(p) = (*this)[which(p)];
    return out;
}

TtupleVector TtupleVector::lPoints(int first, int last) {
    boundsCheck(first);
    boundsCheck(last);
    const unsigned n = last >= first ? elementCount(tupleSize_, last - first + 1) : 0u;
    return TtupleVector(tupleSize_, DoubleVec(data_, first * tupleSize_, n, 1));
}

int TtupleVector::setPoints(int first, int last, const TtupleVector& source) {
    if (last < first)
        return 0;
    return setPoints(IntVec(static_cast<unsigned>(last - first + 1), first, 1), source);
}

int TtupleVector::setPoints(const IntVec& which, const TtupleVector& source) {
    const int n = static_cast<int>(which.length());
    if (n == 0 || source.tupleSize_ != tupleSize_ || source.points() < n)
        return 0;
    for (int p = 0; p < n; ++p)
        if (!correctIndex(which(p)))
            return 0;
    // The source may share this storage: its points are copied out first.
    const TtupleVector from = source.copy();
    for (int p = 0; p < n; ++p)
        (*this)(which(p)) = from(p);
    return 1;
}

DoubleVec TtupleVector::vecLen() const {
    const int n = points();
    DoubleVec out(static_cast<unsigned>(n));
    for (int i = 0; i < n; ++i)
        out(i) = DoubleVec(data_, i * tupleSize_, static_cast<unsigned>(tupleSize_), 1).vecLen();
    return out;
}

void TtupleVector::resize(int points) {
    data_.resize(elementCount(tupleSize_, points));
}

TtupleVector TtupleVector::copy() const {
    return TtupleVector(tupleSize_, data_.copy());
}

TtupleVector& TtupleVector::reference(const TtupleVector& other) {
    tupleSize_ = other.tupleSize_;
    data_.reference(other.data_);
    return *this;
}
