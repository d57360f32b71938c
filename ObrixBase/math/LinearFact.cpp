#include "ObrixBase/math/LinearFact.h"

#include <cmath>
#include <type_traits>
#include <vector>

#include "ObrixBase/math/kernels/kernels.h"

namespace k = qvObrixBase::kernels;

namespace {

int lda(const DoubleGenMat& a) {
    return a.rows() > 0 ? static_cast<int>(a.rows()) : 1;
}

} // namespace

template <class M>
LinearFact<M>::LinearFact() : factors_(), pivots_(), rcond_(0.0) {
}

template <class M>
LinearFact<M>::LinearFact(const M& a, int estimateCondition)
    : factors_(a.copy()), pivots_(), rcond_(0.0) {
    dofactor(estimateCondition);
}

template <class M>
LinearFact<M>::LinearFact(const LinearFact& other)
    : factors_(other.factors_), pivots_(other.pivots_), rcond_(other.rcond_) {
}

template <class M>
LinearFact<M>& LinearFact<M>::operator=(const LinearFact& other) {
    // Rebinding, not element assignment: the shapes of two factorisations need not agree.
    factors_.reference(other.factors_);
    pivots_.reference(other.pivots_);
    rcond_ = other.rcond_;
    return *this;
}

template <class M>
void LinearFact<M>::factor(const M& a, int estimateCondition) {
    factors_.reference(a.copy());
    dofactor(estimateCondition);
}

template <class M>
void LinearFact<M>::dofactor(int estimateCondition) {
    if constexpr (std::is_same_v<M, DoubleGenMat>) {
        if (factors_.rows() != factors_.cols()) {
            mathErrorRaise(FACT_NSQUARE, factors_.rows(), factors_.cols());
            // Going on with a handler that returns would run the n x n kernels past the end
            // of a wide array: the factorisation is left empty (and fails) instead.
            factors_.reference(DoubleGenMat());
            pivots_.reshape(0);
            rcond_ = 0.0;
            return;
        }
    }
    factors_.deepenShallowCopy();
    int n = static_cast<int>(order());
    pivots_.reshape(static_cast<unsigned>(n));
    pivots_.deepenShallowCopy();
    if (n == 0)
        return;
    int info = 0;
    if (estimateCondition) {
        std::vector<double> z(n);
        if constexpr (std::is_same_v<M, DoubleGenMat>)
            k::dgeco(factors_.data(), lda(factors_), n, pivots_.data(), &rcond_, z.data());
        else
            k::dspco(factors_.data(), n, pivots_.data(), &rcond_, z.data());
        return;
    }
    if constexpr (std::is_same_v<M, DoubleGenMat>)
        k::dgefa(factors_.data(), lda(factors_), n, pivots_.data(), &info);
    else
        k::dspfa(factors_.data(), n, pivots_.data(), &info);
    rcond_ = info > 0 ? 0.0 : -1.0;
}

template <class M>
int LinearFact<M>::fail() const {
    return order() == 0 || isSingular();
}

template <class M>
int LinearFact<M>::isSingular() const {
    return 1.0 + rcond_ == 1.0;
}

template <class M>
double LinearFact<M>::condition() const {
    if (rcond_ < 0.0) {
        mathErrorRaise(FACT_NOCONDITION);
        return -1.0;
    }
    return rcond_;
}

template <class M>
double LinearFact<M>::determinant() const {
    int n = static_cast<int>(order());
    if (n < 1)
        return 0.0;
    double det[2] = {0.0, 0.0};
    // Job 10 only reads the factors.
    double* a = const_cast<double*>(factors_.data());
    if constexpr (std::is_same_v<M, DoubleGenMat>) {
        k::dgedi(a, lda(factors_), n, pivots_.data(), det, nullptr, 10);
    } else {
        int inert[3];
        k::dspdi(a, n, pivots_.data(), det, inert, nullptr, 10);
    }
    return det[0] * std::pow(10.0, det[1]);
}

template <class M>
M LinearFact<M>::inverse() const {
    if (fail())
        mathErrorRaise(FACT_NOTFACTORED);
    M inv = factors_.copy();
    int n = static_cast<int>(order());
    if (n == 0)
        return inv;
    std::vector<double> work(n);
    double det[2];
    if constexpr (std::is_same_v<M, DoubleGenMat>) {
        k::dgedi(inv.data(), lda(inv), n, pivots_.data(), det, work.data(), 1);
    } else {
        int inert[3];
        k::dspdi(inv.data(), n, pivots_.data(), det, inert, work.data(), 1);
    }
    return inv;
}

template <class M>
DoubleVec LinearFact<M>::solve(const DoubleVec& b) const {
    unsigned n = order();
    if (b.length() != n) {
        mathErrorRaise(FACT_BADLENGTH, b.length(), n);
        return DoubleVec();
    }
    if (fail())
        mathErrorRaise(FACT_NOTFACTORED);
    DoubleVec x = b.copy();
    if (n == 0)
        return x;
    if constexpr (std::is_same_v<M, DoubleGenMat>)
        k::dgesl(factors_.data(), lda(factors_), static_cast<int>(n), pivots_.data(), x.data(), 0);
    else
        k::dspsl(factors_.data(), static_cast<int>(n), pivots_.data(), x.data());
    return x;
}

template class LinearFact<DoubleGenMat>;
template class LinearFact<DoubleSymMat>;
