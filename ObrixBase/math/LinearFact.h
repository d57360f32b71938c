// LU and symmetric indefinite factorisations as values: DoubleGenFact factors a square
// DoubleGenMat with partial pivoting, DoubleSymFact a packed DoubleSymMat by diagonal
// pivoting. Both keep a private copy of the factors and give solutions, the determinant, the
// inverse and, when asked at factoring time, a reciprocal condition estimate. A singular
// matrix is not an error when factored: it shows in rcond, fail() and isSingular(), and only
// solve() and inverse() report it. Include DoubleGenFact.h or DoubleSymFact.h.
#ifndef OBRIX_MATH_LINEARFACT_H
#define OBRIX_MATH_LINEARFACT_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleSymMat.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/FactError.h"

/// The factorisation of a DoubleGenMat (LU) or a DoubleSymMat (U*D*U'); M is the matrix
/// class. Copies share the factors; nothing a copy does changes them in place.
template <class M>
class OBRIX_API LinearFact {
public:
    /// Empty (0 x 0): fail() is 1.
    LinearFact();
    /// A private copy of `a`, factored; with estimateCondition non-zero rcond is estimated.
    explicit LinearFact(const M& a, int estimateCondition = 1);
    /// Shares the other's factors, pivots and rcond.
    LinearFact(const LinearFact& other);
    /// Rebinds to the other's factors and pivots (no element copy; the orders may differ).
    LinearFact& operator=(const LinearFact& other);
    ~LinearFact() = default;

    /// Re-factors a private copy of `a`.
    void factor(const M& a, int estimateCondition = 1);
    /// Factors the matrix held. A general matrix must be square: `FACT_NSQUARE` (0x500D) (rows,
    /// cols) otherwise, after which the factorisation is empty. Raises nothing for singularity.
    void dofactor(int estimateCondition);

    /// 1 for an empty factorisation, or when 1 + rcond == 1 (rcond 0 included).
    int fail() const;
    /// The negation of fail().
    int good() const { return !fail(); }
    /// 1 when 1 + rcond == 1.
    int isSingular() const;
    /// The reciprocal condition estimate in the 1-norm. When it was not computed (factored
    /// without the estimate and no zero pivot met) raises `FACT_NOCONDITION` (0x5001) (continue)
    /// and returns -1.
    double condition() const;
    /// The determinant, mantissa times power of ten from the factors; 0.0 for order 0.
    double determinant() const;
    /// The inverse. Raises `FACT_NOTFACTORED` (0x5011) when fail(), then computes what the factors
    /// give.
    M inverse() const;
    /// x with A x = b. Raises `FACT_BADLENGTH` (0x5002) (length, n) and returns an empty vector for
    /// a b of another length; raises `FACT_NOTFACTORED` (0x5011) when fail() and goes on.
    DoubleVec solve(const DoubleVec& b) const;

    /// The order n.
    unsigned order() const { return factors_.rows(); }
    /// The kernel's factors (shared; treat as read-only).
    const M& factors() const { return factors_; }
    /// The kernel's 1-based interchange record.
    const IntVec& pivots() const { return pivots_; }
    /// rcond as stored: the estimate, 0 for an exact zero pivot, -1 when not computed.
    double rcond() const { return rcond_; }

private:
    M factors_;
    IntVec pivots_;
    double rcond_;
};

// Both are instantiated once, in the library. GCC exports no inline members from a DLL, though,
// so on Windows a user instantiates those itself and takes only the out-of-line ones from it.
#if !defined(_WIN32) || defined(OBRIX_BUILDING)
extern template class LinearFact<DoubleGenMat>;
extern template class LinearFact<DoubleSymMat>;
#endif

#endif
