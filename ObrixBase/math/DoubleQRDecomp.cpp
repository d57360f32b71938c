#include "ObrixBase/math/DoubleQRDecomp.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "ObrixBase/math/fact_internal.h"
#include "ObrixBase/math/kernels/kernels.h"

namespace k = qvObrixBase::kernels;

namespace {
int leading(const DoubleGenMat& a) {
    return a.rows() > 0 ? static_cast<int>(a.rows()) : 1;
}

// The argument rule of every caller of the apply kernel: y needs the m elements of a column
// (else `FACT_BADLENGTH` (0x5002) (length, m) and false); a reflector count kk outside [0, mn]
// means all mn of them.
bool applyArgumentsFit(const DoubleVec& y, unsigned m, int mn, int& kk) {
    if (y.length() != m) {
        mathErrorRaise(FACT_BADLENGTH, y.length(), m);
        return false;
    }
    if (kk < 0 || kk > mn)
        kk = mn;
    return true;
}

// The decimal job digits of the apply kernel.
constexpr int kQy = 10000, kQty = 1000, kCoef = 100, kResidual = 10, kFit = 1;
} // namespace

DoubleQRDecomp::DoubleQRDecomp() : qr_(), pivots_(), doPivoting_(1), qraux_() {
}

DoubleQRDecomp::DoubleQRDecomp(const DoubleGenMat& a) : DoubleQRDecomp() {
    factor(a);
}

DoubleQRDecomp::DoubleQRDecomp(const DoubleQRDecomp& other)
    : qr_(other.qr_), pivots_(other.pivots_), doPivoting_(other.doPivoting_), qraux_(other.qraux_) {
}

DoubleQRDecomp& DoubleQRDecomp::operator=(const DoubleQRDecomp& other) {
    qr_.reference(other.qr_);
    pivots_.reference(other.pivots_);
    doPivoting_ = other.doPivoting_;
    qraux_.reference(other.qraux_);
    return *this;
}

void DoubleQRDecomp::factor(const DoubleGenMat& a) {
    qr_.reference(a.copy());
    dofactor();
}

void DoubleQRDecomp::dofactor() {
    qr_.deepenShallowCopy();
    unsigned m = rows(), n = cols();
    if (doPivoting_) {
        pivots_.deepenShallowCopy();
        pivots_.resize(n);
    }
    qraux_.deepenShallowCopy();
    qraux_.resize(n);
    std::vector<double> work(n + 1);
    k::dqrdc(qr_.data(), leading(qr_), static_cast<int>(m), static_cast<int>(n), qraux_.data(),
             doPivoting_ ? pivots_.data() : nullptr, work.data(), doPivoting_ ? 1 : 0);
    if (doPivoting_)
        obrix::detail::toZeroBased(pivots_);
    else
        obrix::detail::identityPivots(pivots_, n);
}

int DoubleQRDecomp::doPivoting(int on) {
    int old = doPivoting_;
    doPivoting_ = on;
    return old;
}

int DoubleQRDecomp::diagonalCount() const {
    return static_cast<int>(std::min(rows(), cols()));
}

int DoubleQRDecomp::rank() const {
    int r = diagonalCount();
    for (int i = 0, n = r; i < n; ++i)
        if (qr_(i, i) == 0.0)
            --r;
    return r;
}

int DoubleQRDecomp::isSingular() const {
    int r = rank();
    return r != static_cast<int>(rows()) && r != static_cast<int>(cols());
}

DoubleVec DoubleQRDecomp::apply(const DoubleVec& y, int kk, int job) const {
    const unsigned m = rows();
    if (!applyArgumentsFit(y, m, diagonalCount(), kk))
        return DoubleVec();
    DoubleVec in = y.copy();
    DoubleVec out(job == kCoef ? static_cast<unsigned>(kk) : m, 0.0);
    std::vector<double> qty(m);
    int info = 0;
    if (m > 0)
        k::dqrsl(qr_.data(), leading(qr_), static_cast<int>(m), kk, qraux_.data(), in.data(),
                 out.data(), qty.data(), out.data(), out.data(), out.data(), job, &info);
    if (info != 0)
        mathErrorRaise(FACT_NOTFACTORED);
    return out;
}

DoubleVec DoubleQRDecomp::computeQTy(const DoubleVec& y, int kk) const {
    // Q'y comes back in the qty argument; route it through the output vector.
    const unsigned m = rows();
    if (!applyArgumentsFit(y, m, diagonalCount(), kk))
        return DoubleVec();
    DoubleVec out = y.copy();
    int info = 0;
    if (m > 0)
        k::dqrsl(qr_.data(), leading(qr_), static_cast<int>(m), kk, qraux_.data(), out.data(),
                 nullptr, out.data(), nullptr, nullptr, nullptr, kQty, &info);
    return out;
}

DoubleVec DoubleQRDecomp::computeQy(const DoubleVec& y, int kk) const {
    return apply(y, kk, kQy);
}
DoubleVec DoubleQRDecomp::computeXb(const DoubleVec& y, int kk) const {
    return apply(y, kk, kFit);
}
DoubleVec DoubleQRDecomp::computeResidualVec(const DoubleVec& y, int kk) const {
    return apply(y, kk, kResidual);
}
DoubleVec DoubleQRDecomp::partialSolve(const DoubleVec& y, int kk) const {
    return apply(y, kk, kCoef);
}

DoubleVec DoubleQRDecomp::solve(const DoubleVec& b) const {
    DoubleVec x = partialSolve(b, diagonalCount());
    x.resize(cols());
    return unpermute(x);
}

DoubleVec DoubleQRDecomp::permute(const DoubleVec& v) const {
    return obrix::detail::reorderChecked(pivots_, v, cols(), true);
}

DoubleVec DoubleQRDecomp::unpermute(const DoubleVec& v) const {
    return obrix::detail::reorderChecked(pivots_, v, cols(), false);
}

DoubleLeastSqQR::DoubleLeastSqQR() : DoubleQRDecomp(), tolerance_(0.0) {
}

DoubleLeastSqQR::DoubleLeastSqQR(const DoubleGenMat& a) : DoubleQRDecomp(a), tolerance_(0.0) {
}

DoubleLeastSqQR& DoubleLeastSqQR::operator=(const DoubleLeastSqQR& other) {
    DoubleQRDecomp::operator=(other);
    tolerance_ = other.tolerance_;
    return *this;
}

void DoubleLeastSqQR::factor(const DoubleGenMat& a) {
    DoubleQRDecomp::factor(a);
    tolerance_ = 0.0;
}

double DoubleLeastSqQR::setTolerance(double t) {
    double old = tolerance_;
    tolerance_ = t;
    return old;
}

int DoubleLeastSqQR::numFreeCols() const {
    int m = static_cast<int>(rows()), n = static_cast<int>(cols());
    int free = n > m ? n - m : 0;
    for (int i = diagonalCount() - 1; i >= 0; --i) {
        if (!(std::fabs(qr_(i, i)) <= tolerance_))
            break;
        ++free;
    }
    return free;
}

bool DoubleLeastSqQR::checkRhs(const DoubleVec& b) const {
    if (b.length() != rows()) {
        mathErrorRaise(FACT_BADLENGTH, b.length(), rows());
        return false;
    }
    if (cols() == 0) {
        mathErrorRaise(FACT_NOTFACTORED);
        return false;
    }
    return true;
}

DoubleVec DoubleLeastSqQR::solve(const DoubleVec& b) const {
    if (!checkRhs(b))
        return DoubleVec();
    int free = numFreeCols();
    if (free == 0)
        return DoubleQRDecomp::solve(b);
    DoubleVec x = partialSolve(b, static_cast<int>(cols()) - free);
    x.resize(cols());
    return unpermute(x);
}

DoubleVec DoubleLeastSqQR::residual(const DoubleVec& b) const {
    if (!checkRhs(b))
        return DoubleVec();
    return computeResidualVec(b, static_cast<int>(cols()) - numFreeCols());
}
