// Helpers shared by the factorisation classes: pivot bookkeeping and contiguous scratch
// copies of caller vectors and matrices whose storage the kernels cannot address directly.
#ifndef OBRIX_MATH_FACT_INTERNAL_H
#define OBRIX_MATH_FACT_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "fact_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cstddef>
#include <vector>

#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/FactError.h"

namespace obrix::detail {

/// Turns the kernels' 1-based pivot record into 0-based indices.
inline void toZeroBased(IntVec& pivots) {
    for (unsigned i = 0; i < pivots.length(); ++i)
        pivots(static_cast<int>(i)) -= 1;
}

/// Pivots 0..n-1: the record of a factorisation made without pivoting.
inline void identityPivots(IntVec& pivots, unsigned n) {
    pivots.reshape(n);
    // reshape keeps the block when the length is unchanged, and copies of a factorisation
    // share it: the copy's pivot record must not change under it.
    pivots.deepenShallowCopy();
    for (unsigned i = 0; i < n; ++i)
        pivots(static_cast<int>(i)) = static_cast<int>(i);
}

/// The body of the factorisations' permute() (toFactored: out[k] = v[pivots[k]]) and
/// unpermute() (out[pivots[k]] = v[k]) over the `length` elements of v at `stride`, into
/// `length` contiguous doubles at out (not overlapping v). A length other than the n the pivots
/// describe raises FACT_PERMUTELENGTH (length, n) and, when the handler returns, copies v as
/// it is: reordering by pivots of another length would index past one end.
inline void reorderInto(const IntVec& pivots, unsigned n, const double* v, int stride,
                        unsigned length, double* out, bool toFactored) {
    const std::ptrdiff_t s = stride;
    if (length != n) {
        mathErrorRaise(FACT_PERMUTELENGTH, length, n);
        for (unsigned k = 0; k < length; ++k)
            out[k] = v[k * s];
    } else if (toFactored) {
        for (unsigned k = 0; k < n; ++k)
            out[k] = v[pivots(static_cast<int>(k)) * s];
    } else {
        for (unsigned k = 0; k < n; ++k)
            out[pivots(static_cast<int>(k))] = v[k * s];
    }
}

/// reorderInto with a new vector of v's length as the result.
inline DoubleVec reorderChecked(const IntVec& pivots, const DoubleVec& v, unsigned n,
                                bool toFactored) {
    DoubleVec r(v.length());
    reorderInto(pivots, n, v.data(), v.stride(), v.length(), r.data(), toFactored);
    return r;
}

/// A contiguous working copy of an optional caller vector that is written back on request;
/// strided views are handled without touching the caller's storage layout.
class ScratchVec {
public:
    ScratchVec(DoubleVec* v, unsigned n) : v_(v), buf_(v ? v->length() : n, 0.0) {
        if (v_)
            for (unsigned i = 0; i < v_->length(); ++i)
                buf_[i] = (*v_)(static_cast<int>(i));
    }
    double* data() { return buf_.empty() ? nullptr : buf_.data(); }
    void writeBack() {
        if (v_)
            for (unsigned i = 0; i < v_->length(); ++i)
                (*v_)(static_cast<int>(i)) = buf_[i];
    }

private:
    DoubleVec* v_;
    std::vector<double> buf_;
};

} // namespace obrix::detail

#endif
