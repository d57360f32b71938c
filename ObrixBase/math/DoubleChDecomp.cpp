#include "ObrixBase/math/DoubleChDecomp.h"

#include <algorithm>
#include <vector>

#include "ObrixBase/math/fact_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace k = qvObrixBase::kernels;
using obrix::detail::ScratchVec;

namespace {

int leading(const DoubleGenMat& a) {
    return a.rows() > 0 ? static_cast<int>(a.rows()) : 1;
}

// A contiguous working copy of an optional data matrix, written back after the kernel.
class ScratchMat {
public:
    explicit ScratchMat(DoubleGenMat* m) : m_(m) {
        if (m_ && m_->stride() != 1)
            copy_.reference(m_->copy());
    }
    double* data() {
        if (!m_)
            return nullptr;
        return m_->stride() != 1 ? copy_.data() : m_->data();
    }
    int ld() const { return m_ ? leading(*m_) : 1; }
    int cols() const { return m_ ? static_cast<int>(m_->cols()) : 0; }
    void writeBack() {
        if (m_ && m_->stride() != 1)
            *m_ = copy_;
    }

private:
    DoubleGenMat* m_;
    DoubleGenMat copy_;
};

} // namespace

DoubleChDecomp::DoubleChDecomp() : factor_(), lastPosFactor_(-1), pivots_(), doPivoting_(1) {
}

DoubleChDecomp::DoubleChDecomp(const DoubleGenMat& a) : DoubleChDecomp() {
    factor(a);
}

DoubleChDecomp::DoubleChDecomp(const DoubleChDecomp& other)
    : factor_(other.factor_), lastPosFactor_(other.lastPosFactor_), pivots_(other.pivots_),
      doPivoting_(other.doPivoting_) {
}

DoubleChDecomp& DoubleChDecomp::operator=(const DoubleChDecomp& other) {
    factor_.reference(other.factor_);
    lastPosFactor_ = other.lastPosFactor_;
    pivots_.reference(other.pivots_);
    doPivoting_ = other.doPivoting_;
    return *this;
}

void DoubleChDecomp::factor(const DoubleGenMat& a) {
    factor_.reference(a.copy());
    dofactor();
}

void DoubleChDecomp::dofactor() {
    if (factor_.rows() < factor_.cols()) {
        mathErrorRaise(FACT_FEWROWS, static_cast<int>(factor_.rows()),
                       static_cast<int>(factor_.cols()));
        // Going on would run the kernels past the end of the array (the order is the column
        // count, the leading dimension the smaller row count), here and in every later
        // solve, shift or update: the factorisation is left empty instead.
        factor_.reference(DoubleGenMat());
        lastPosFactor_ = -1;
        return;
    }
    factor_.deepenShallowCopy();
    unsigned n = order();
    if (doPivoting_) {
        pivots_.deepenShallowCopy();
        pivots_.resize(n);
    }
    // The kernel's scratch comes from the stack at the small orders that are factored most
    // often, where a heap allocation would be a noticeable part of the whole.
    constexpr unsigned kStackWork = 64;
    double stackWork[kStackWork + 1];
    std::vector<double> heapWork(n > kStackWork ? n + 1 : 0);
    double* work = n > kStackWork ? heapWork.data() : stackWork;
    int info = 0;
    k::dchdc(factor_.data(), leading(factor_), static_cast<int>(n), work,
             doPivoting_ ? pivots_.data() : nullptr, doPivoting_ ? 1 : 0, &info);
    lastPosFactor_ = info;
    if (doPivoting_)
        obrix::detail::toZeroBased(pivots_);
    else
        obrix::detail::identityPivots(pivots_, n);
}

int DoubleChDecomp::doPivoting(int on) {
    int old = doPivoting_;
    doPivoting_ = on;
    return old;
}

void DoubleChDecomp::setPivoting(int column, int where) {
    if (where < -1 || where > 1) {
        mathErrorRaise(FACT_PIVOTCLASS, where);
        return;
    }
    if (column < 0)
        return;
    pivots_.deepenShallowCopy();
    if (static_cast<unsigned>(column) >= pivots_.length())
        pivots_.resize(static_cast<unsigned>(column) + 1);
    pivots_(column) = where;
}

int DoubleChDecomp::fail() const {
    unsigned n = std::min(factor_.rows(), factor_.cols());
    for (unsigned i = 0; i < n; ++i)
        if (factor_(static_cast<int>(i), static_cast<int>(i)) < 0.0)
            return 1;
    return 0;
}

double DoubleChDecomp::condition() const {
    if (!doPivoting_) {
        mathErrorRaise(FACT_NOCONDITION);
        return -1.0;
    }
    int n = static_cast<int>(order());
    if (n == 0 || lastPosFactor_ != n)
        return 0.0;
    double ratio = factor_(n - 1, n - 1) / factor_(0, 0);
    return ratio * ratio;
}

DoubleVec DoubleChDecomp::permute(const DoubleVec& b) const {
    return obrix::detail::reorderChecked(pivots_, b, order(), true);
}

DoubleVec DoubleChDecomp::unpermute(const DoubleVec& x) const {
    return obrix::detail::reorderChecked(pivots_, x, order(), false);
}

void DoubleChDecomp::solveInPlace(double* x, unsigned length, int kk) const {
    if (length != order()) {
        mathErrorRaise(FACT_BADLENGTH, length, order());
        return;
    }
    if (kk > lastPosFactor_)
        mathErrorRaise(FACT_NOTFACTORED);
    // A handler that returns lets the solve go on with the k asked for, as after every
    // check; only the order bounds it, since the factor has no columns past it.
    kk = std::min(kk, static_cast<int>(order()));
    if (kk > 0)
        k::dposl(factor_.data(), leading(factor_), kk, x);
}

DoubleVec DoubleChDecomp::partialSolve(const DoubleVec& b, int kk) const {
    DoubleVec x = b.copy();
    solveInPlace(x.data(), x.length(), kk);
    return x;
}

DoubleVec DoubleChDecomp::solve(const DoubleVec& b) const {
    // permute, partialSolve and unpermute, each with its own checks and reports, through one
    // scratch array, from the stack at the small orders solved most often, so that the result
    // is the only allocation.
    const unsigned length = b.length();
    constexpr unsigned kStackOrder = 64;
    double stackWork[kStackOrder];
    std::vector<double> heapWork(length > kStackOrder ? length : 0);
    double* y = length > kStackOrder ? heapWork.data() : stackWork;
    obrix::detail::reorderInto(pivots_, order(), b.data(), b.stride(), length, y, true);
    solveInPlace(y, length, static_cast<int>(order()));
    DoubleVec x(length);
    obrix::detail::reorderInto(pivots_, order(), y, 1, length, x.data(), false);
    return x;
}

bool DoubleChDecomp::checkRotationData(DoubleGenMat* z, DoubleVec* c, DoubleVec* s,
                                       unsigned rotations) {
    if (z && z->rows() != order()) {
        mathErrorRaise(FACT_DATAHEIGHT, z->rows(), order());
        return false;
    }
    for (DoubleVec* v : {c, s})
        if (v && v->length() != rotations) {
            mathErrorRaise(FACT_ROTLENGTH, v->length(), rotations);
            return false;
        }
    return true;
}

void DoubleChDecomp::shift(int l, int kk, int direction, DoubleGenMat* z, DoubleVec* c,
                           DoubleVec* s) {
    if (direction != 0 && direction != 1) {
        mathErrorRaise(FACT_SHIFTDIR);
        return;
    }
    int n = static_cast<int>(order());
    if (l < 0 || l >= kk || kk >= n) {
        mathErrorRaise(FACT_SHIFTCOLS, l, kk);
        return;
    }
    if (!checkRotationData(z, c, s, static_cast<unsigned>(kk - l)))
        return;
    factor_.deepenShallowCopy();
    // The kernel wants room for the order in c and s; the caller's get the k - l used.
    std::vector<double> cw(n), sw(n);
    ScratchMat zw(z);
    k::dchex(factor_.data(), leading(factor_), n, l + 1, kk + 1, zw.data(), zw.ld(), zw.cols(),
             cw.data(), sw.data(), direction == 1 ? 1 : 2);
    zw.writeBack();
    for (int i = 0; i < kk - l; ++i) {
        if (c)
            (*c)(i) = cw[i];
        if (s)
            (*s)(i) = sw[i];
    }
    if (pivots_.length() == order()) {
        pivots_.deepenShallowCopy();
        int* p = pivots_.data();
        if (direction == 1)
            std::rotate(p + l, p + kk, p + kk + 1);
        else
            std::rotate(p + l, p + l + 1, p + kk + 1);
    }
}

int DoubleChDecomp::rowChange(bool add, const DoubleVec& x, DoubleGenMat* z, const DoubleVec* y,
                              DoubleVec* rho, DoubleVec* c, DoubleVec* s) {
    unsigned n = order();
    if (x.length() != n) {
        mathErrorRaise(FACT_BADLENGTH, x.length(), n);
        return -1;
    }
    if (!checkRotationData(z, c, s, n))
        return -1;
    unsigned nz = z ? z->cols() : 0;
    for (const DoubleVec* v : {y, static_cast<const DoubleVec*>(rho)})
        if (z && v && v->length() != nz) {
            mathErrorRaise(FACT_RESIDUALS, v->length(), nz);
            return -1;
        }
    factor_.deepenShallowCopy();
    DoubleVec xc = x.copy();
    std::vector<double> yw(nz, 0.0);
    if (y && z)
        for (unsigned j = 0; j < nz; ++j)
            yw[j] = (*y)(static_cast<int>(j));
    ScratchVec rw(z ? rho : nullptr, nz), cw(c, n), sw(s, n);
    ScratchMat zw(z);
    int info = 0;
    if (add)
        k::dchud(factor_.data(), leading(factor_), static_cast<int>(n), xc.data(), zw.data(),
                 zw.ld(), static_cast<int>(nz), yw.data(), rw.data(), cw.data(), sw.data());
    else
        k::dchdd(factor_.data(), leading(factor_), static_cast<int>(n), xc.data(), zw.data(),
                 zw.ld(), static_cast<int>(nz), yw.data(), rw.data(), cw.data(), sw.data(), &info);
    if (info != -1) {
        zw.writeBack();
        rw.writeBack();
    }
    cw.writeBack();
    sw.writeBack();
    return info;
}

void DoubleChDecomp::update(const DoubleVec& x, DoubleGenMat* z, const DoubleVec* y, DoubleVec* rho,
                            DoubleVec* c, DoubleVec* s) {
    rowChange(true, x, z, y, rho, c, s);
}

int DoubleChDecomp::downdate(const DoubleVec& x, DoubleGenMat* z, const DoubleVec* y,
                             DoubleVec* rho, DoubleVec* c, DoubleVec* s) {
    return rowChange(false, x, z, y, rho, c, s);
}
