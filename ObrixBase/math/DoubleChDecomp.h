// Cholesky factorisation with optional diagonal pivoting of a symmetric positive (semi-)
// definite DoubleGenMat, kept current under added and removed rows and cyclic column shifts.
// A matrix that is not positive definite is not an error: factoring stops at the first
// non-positive pivot, lastPosFactor() says where, and partialSolve() works up to there.
#ifndef OBRIX_MATH_DOUBLECHDECOMP_H
#define OBRIX_MATH_DOUBLECHDECOMP_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/FactError.h"

/// P'AP = R'R with R upper triangular in the upper triangle of the factor matrix (its strict
/// lower triangle keeps the input's). Copies share the factor until one of them changes it.
class OBRIX_API DoubleChDecomp {
public:
    /// Empty, lastPosFactor -1, pivoting on.
    DoubleChDecomp();
    /// Pivoting on, then factor(a).
    explicit DoubleChDecomp(const DoubleGenMat& a);
    /// Shares the other's factor and pivots; takes its flags.
    DoubleChDecomp(const DoubleChDecomp& other);
    /// Rebinds to the other's factor and pivots (no element copy); takes its flags.
    DoubleChDecomp& operator=(const DoubleChDecomp& other);
    ~DoubleChDecomp() = default;

    /// Factors a private copy of `a` (only its upper triangle is read).
    void factor(const DoubleGenMat& a);
    /// Factors the matrix held: `FACT_FEWROWS` (0x5010) (rows, cols) when it has fewer rows than
    /// columns, after which the factorisation is empty (order 0, lastPosFactor -1). With pivoting
    /// on, pivot classes set by setPivoting are honoured; off, the pivots are the identity order.
    void dofactor();
    /// Sets pivoting for the next factor; returns the previous setting.
    int doPivoting(int on);
    /// Marks `column` (0-based, in the input's order) as initial (1: moved to the front),
    /// free (0) or final (-1: moved to the end) for the next factor; another `where` raises
    /// `FACT_PIVOTCLASS` (0x5012). The pivot vector grows to column + 1 when needed.
    void setPivoting(int column, int where);

    /// The pivot order, 0-based: position k of the factor holds input column pivots()[k].
    const IntVec& pivots() const { return pivots_; }
    /// The order of the leading part factored with positive pivots; -1 before factoring.
    int lastPosFactor() const { return lastPosFactor_; }
    /// 1 when every pivot was positive.
    int isPD() const { return lastPosFactor_ == static_cast<int>(order()); }
    /// 1 when a diagonal element of the factor is negative.
    int fail() const;
    /// The negation of fail().
    int good() const { return !fail(); }
    /// (R(n-1,n-1)/R(0,0))^2 for a complete pivoted factor; 0.0 for an incomplete one;
    /// without pivoting raises `FACT_NOCONDITION` (0x5001) (continue) and returns -1.0.
    double condition() const;

    /// x with A x = b: permute, partialSolve to the order, unpermute (so a b of the wrong
    /// length reports `FACT_PERMUTELENGTH` (0x5004) first).
    DoubleVec solve(const DoubleVec& b) const;
    /// Solves with the leading k x k factor, in the factored order. b must have the order's
    /// length (`FACT_BADLENGTH` (0x5002)) and k must not exceed lastPosFactor (`FACT_NOTFACTORED`
    /// (0x5011); when the handler returns, the solve goes on with k, at most the order, over the
    /// unfinished factor). Elements from k on are returned as given.
    DoubleVec partialSolve(const DoubleVec& b, int k) const;
    /// The vector in the factored order (`FACT_PERMUTELENGTH` (0x5004) (length, order) for another
    /// length).
    DoubleVec permute(const DoubleVec& b) const;
    /// Back to the input's order (`FACT_PERMUTELENGTH` (0x5004) for another length).
    DoubleVec unpermute(const DoubleVec& x) const;

    /// Cyclic shift of the factored columns l..k (0-based, 0 <= l < k < order, else
    /// `FACT_SHIFTCOLS` (0x5006)) and re-triangularisation by plane rotations. direction 1: column
    /// k moves to l; direction 0: column l moves to k; another value raises `FACT_SHIFTDIR`
    /// (0x5005). The pivots follow, so solve() keeps answering the same system. z, when given, has
    /// `order` rows (`FACT_DATAHEIGHT` (0x5007)) that are rotated along; c and s, when given,
    /// receive the k - l rotations and must have that length (`FACT_ROTLENGTH` (0x5008)). The
    /// rotations alone fix the signs: a diagonal element of R may turn negative (R'R is kept),
    /// which fail() then reports.
    void shift(int l, int k, int direction, DoubleGenMat* z = nullptr, DoubleVec* c = nullptr,
               DoubleVec* s = nullptr);
    /// Adds the row x (in the factored column order) to the data: R'R becomes R'R + xx'.
    /// x must have the order's length (`FACT_BADLENGTH` (0x5002)). z (order rows, `FACT_DATAHEIGHT`
    /// (0x5007)) with the scalars y and the residual norms rho (one per column of z,
    /// `FACT_RESIDUALS` (0x5009)) are carried along; c and s receive the order's rotations
    /// (`FACT_ROTLENGTH` (0x5008) for another length).
    void update(const DoubleVec& x, DoubleGenMat* z = nullptr, const DoubleVec* y = nullptr,
                DoubleVec* rho = nullptr, DoubleVec* c = nullptr, DoubleVec* s = nullptr);
    /// Removes the row x; arguments and checks as update. Returns 0 on success, -1 when
    /// R'R - xx' would not be positive definite (nothing changes), 1 when some rho could not
    /// be downdated (that rho is set to -1).
    int downdate(const DoubleVec& x, DoubleGenMat* z = nullptr, const DoubleVec* y = nullptr,
                 DoubleVec* rho = nullptr, DoubleVec* c = nullptr, DoubleVec* s = nullptr);

    /// The order n of the factored matrix (its column count); 0 before factoring.
    unsigned order() const { return factor_.cols(); }
    /// The factor matrix (shared; treat as read-only).
    const DoubleGenMat& factorMatrix() const { return factor_; }

private:
    /// partialSolve's checks and solve on `length` contiguous doubles at x, in place.
    void solveInPlace(double* x, unsigned length, int k) const;
    bool checkRotationData(DoubleGenMat* z, DoubleVec* c, DoubleVec* s, unsigned rotations);
    int rowChange(bool add, const DoubleVec& x, DoubleGenMat* z, const DoubleVec* y, DoubleVec* rho,
                  DoubleVec* c, DoubleVec* s);

    DoubleGenMat factor_;
    int lastPosFactor_;
    IntVec pivots_;
    int doPivoting_;
};

#endif
