#include "ObrixBase/math/DoubleSVDecomp.h"

#include <algorithm>
#include <vector>

#include "ObrixBase/math/kernels/kernels.h"

DoubleSVDecomp::DoubleSVDecomp() : s_(), e_(), u_(), v_(), job_(11), info_(0) {
}

DoubleSVDecomp::DoubleSVDecomp(const DoubleGenMat& a) : DoubleSVDecomp() {
    factor(a);
}

DoubleSVDecomp::DoubleSVDecomp(const DoubleSVDecomp& other)
    : s_(other.s_), e_(other.e_), u_(other.u_), v_(other.v_), job_(other.job_), info_(other.info_) {
}

DoubleSVDecomp& DoubleSVDecomp::operator=(const DoubleSVDecomp& other) {
    s_.reference(other.s_);
    e_.reference(other.e_);
    u_.reference(other.u_);
    v_.reference(other.v_);
    job_ = other.job_;
    info_ = other.info_;
    return *this;
}

int DoubleSVDecomp::computeLeftVecs(int on) {
    int a = job_ / 10, b = job_ % 10;
    int old = a != 0;
    if (on && a == 0)
        a = 1;
    else if (!on)
        a = 0;
    job_ = 10 * a + b;
    return old;
}

int DoubleSVDecomp::computeAllLeftVecs(int on) {
    int a = job_ / 10, b = job_ % 10;
    int old = a == 1;
    if (!on && a == 1)
        a = 2;
    else if (on && a == 2)
        a = 1;
    job_ = 10 * a + b;
    return old;
}

int DoubleSVDecomp::computeRightVecs(int on) {
    int old = job_ % 10 == 1;
    job_ = job_ / 10 * 10 + (on ? 1 : 0);
    return old;
}

void DoubleSVDecomp::factor(const DoubleGenMat& a) {
    unsigned m = a.rows(), n = a.cols(), mn = std::min(m, n);
    int left = job_ / 10, right = job_ % 10;
    // Fresh storage wherever a caller may still hold the previous result.
    if (left != 0) {
        u_.deepenShallowCopy();
        u_.resize(m, left == 1 ? m : mn);
    }
    if (right == 1) {
        v_.deepenShallowCopy();
        v_.resize(n, n);
    }
    s_.deepenShallowCopy();
    s_.resize(std::min(m + 1, n));
    e_.deepenShallowCopy();
    e_.resize(n);
    DoubleGenMat x = a.copy();
    std::vector<double> work(m + 1);
    int ld = m > 0 ? static_cast<int>(m) : 1;
    int ldv = n > 0 ? static_cast<int>(n) : 1;
    info_ = 0;
    qvObrixBase::kernels::dsvdc(x.data(), ld, static_cast<int>(m), static_cast<int>(n), s_.data(),
                                e_.data(), left ? u_.data() : nullptr, ld,
                                right ? v_.data() : nullptr, ldv, work.data(), job_, &info_);
    // The kernel zeroes the superdiagonal it iterates on (the first min(m + 1, n) entries);
    // for a wide matrix the entries past it still hold the row reflectors' working values,
    // which mean nothing to a caller: a successful factorisation hands out a zero e.
    if (info_ == 0)
        for (unsigned j = std::min(m + 1, n); j < n; ++j)
            e_(static_cast<int>(j)) = 0.0;
    s_.resize(mn);
}
