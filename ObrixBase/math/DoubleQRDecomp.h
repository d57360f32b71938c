// Householder QR factorisation, with optional column pivoting, of a rectangular DoubleGenMat,
// and its applications: Q y, Q'y, least-squares coefficients, residuals and fitted values.
// DoubleLeastSqQR adds a rank tolerance for over- and under-determined problems. Rank
// deficiency is not an error: it shows in rank(), isSingular() and numFreeCols().
#ifndef OBRIX_MATH_DOUBLEQRDECOMP_H
#define OBRIX_MATH_DOUBLEQRDECOMP_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/FactError.h"

/// X P = Q R for an m x n X. Copies share the factors; nothing changes them in place.
class OBRIX_API DoubleQRDecomp {
public:
    /// Empty, pivoting on.
    DoubleQRDecomp();
    /// Pivoting on, then factor(a).
    explicit DoubleQRDecomp(const DoubleGenMat& a);
    /// Shares the other's factors, pivots and qraux; takes its pivoting flag.
    DoubleQRDecomp(const DoubleQRDecomp& other);
    /// Rebinds to the other's factors, pivots and qraux (no element copy).
    DoubleQRDecomp& operator=(const DoubleQRDecomp& other);
    virtual ~DoubleQRDecomp() = default;

    /// Factors a private copy of `a`.
    void factor(const DoubleGenMat& a);
    /// Factors the matrix held. With pivoting on, entries already in the pivot vector act as
    /// column classes (positive initial, negative final, 0 free); off, the pivots are the
    /// identity order.
    void dofactor();
    /// Sets pivoting for the next factor; returns the previous setting.
    int doPivoting(int on);
    /// The column order, 0-based: column k of R belongs to input column pivots()[k].
    const IntVec& pivots() const { return pivots_; }
    /// min(m, n) less the number of exactly zero diagonal elements of R.
    int rank() const;
    /// 1 when rank() is neither m nor n.
    int isSingular() const;

    // Applications with the first k columns (k < 0 or beyond min(m, n) means min(m, n)); y
    // must have length m (`FACT_BADLENGTH` (0x5002) (length, m)). A zero diagonal element met while
    // solving raises `FACT_NOTFACTORED` (0x5011).
    /// Q'y (length m).
    DoubleVec computeQTy(const DoubleVec& y, int k = -1) const;
    /// Q y (length m).
    DoubleVec computeQy(const DoubleVec& y, int k = -1) const;
    /// The fitted values X b (length m).
    DoubleVec computeXb(const DoubleVec& y, int k = -1) const;
    /// The residual y - X b (length m).
    DoubleVec computeResidualVec(const DoubleVec& y, int k = -1) const;
    /// The least-squares coefficients b (length k) in the factored column order.
    DoubleVec partialSolve(const DoubleVec& y, int k) const;
    /// The least-squares coefficients for all columns, in the input's column order; the
    /// coefficients past min(m, n) are 0.
    DoubleVec solve(const DoubleVec& b) const;
    /// A length-n vector from the input's column order to the factored one (`FACT_PERMUTELENGTH`
    /// (0x5004)).
    DoubleVec permute(const DoubleVec& v) const;
    /// Back to the input's column order (`FACT_PERMUTELENGTH` (0x5004)).
    DoubleVec unpermute(const DoubleVec& v) const;

    /// m, the row count of the factored matrix.
    unsigned rows() const { return qr_.rows(); }
    /// n, its column count.
    unsigned cols() const { return qr_.cols(); }
    /// R above the diagonal and the reflectors below (shared; treat as read-only).
    const DoubleGenMat& factorMatrix() const { return qr_; }
    /// The reflectors' leading elements, one per column (shared; treat as read-only).
    const DoubleVec& qraux() const { return qraux_; }

protected:
    /// One call of the apply kernel with `job` on a copy of y (length m, else `FACT_BADLENGTH`
    /// (0x5002) and an empty result); k as for the applications. Raises `FACT_NOTFACTORED` (0x5011)
    /// for a non-zero status.
    DoubleVec apply(const DoubleVec& y, int k, int job) const;
    /// min(m, n), the length of R's diagonal.
    int diagonalCount() const;

    /// The factored matrix: R on and above the diagonal, the Householder vectors below it.
    DoubleGenMat qr_;
    /// The column order, 0-based: column k of X P is column pivots_(k) of X (the identity
    /// order without pivoting).
    IntVec pivots_;
    /// 1 when the factorisation pivoted columns.
    int doPivoting_;
    /// The reflectors' leading elements, one per column (the kernel's qraux).
    DoubleVec qraux_;
};

/// QR least squares with a rank tolerance: trailing diagonal elements of R no larger than
/// the tolerance free their columns, whose coefficients the solution sets to 0.
class OBRIX_API DoubleLeastSqQR : public DoubleQRDecomp {
public:
    /// Empty, pivoting on, tolerance 0.
    DoubleLeastSqQR();
    /// Pivoting on, then factor(a); tolerance 0.
    explicit DoubleLeastSqQR(const DoubleGenMat& a);
    /// Shares the other's factors; takes its tolerance.
    DoubleLeastSqQR(const DoubleLeastSqQR& other) = default;
    /// Rebinds to the other's factors; takes its tolerance.
    DoubleLeastSqQR& operator=(const DoubleLeastSqQR& other);

    /// Factors a private copy of `a` and resets the tolerance to 0.
    void factor(const DoubleGenMat& a);
    /// Sets the tolerance; returns the previous one.
    double setTolerance(double t);
    /// The tolerance below which trailing diagonal elements of R free their columns.
    double tolerance() const { return tolerance_; }
    /// (n - m when n > m) plus the trailing diagonal elements of R, counted back from the
    /// last, with magnitude at most the tolerance.
    int numFreeCols() const;
    /// 1 when numFreeCols() is not 0.
    int isUnderDetermined() const { return numFreeCols() != 0; }
    /// The basic solution: free coefficients 0. b must have length m (`FACT_BADLENGTH` (0x5002));
    /// an empty factorisation (n = 0) raises `FACT_NOTFACTORED` (0x5011).
    DoubleVec solve(const DoubleVec& b) const;
    /// The residual of that basic solution (same checks).
    DoubleVec residual(const DoubleVec& b) const;

private:
    bool checkRhs(const DoubleVec& b) const;
    double tolerance_;
};

#endif
