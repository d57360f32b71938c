// Singular value decomposition A = U S V' of a general m x n DoubleGenMat, with the left and
// right singular vectors on request. Non-convergence is not raised: it shows in info(),
// fail() and numSVsFound(). Rank decisions from the values are the caller's.
#ifndef OBRIX_MATH_DOUBLESVDECOMP_H
#define OBRIX_MATH_DOUBLESVDECOMP_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/FactError.h"

/// The job is 10a + b: a = 0 no left vectors, 1 all m (U is m x m), 2 the first min(m, n)
/// (U is m x min(m, n)); b = 0 no right vectors, 1 right vectors (V is n x n). Initially 11.
class OBRIX_API DoubleSVDecomp {
public:
    /// Empty, job 11 (all left vectors, right vectors), info 0.
    DoubleSVDecomp();
    /// Job 11, then factor(a).
    explicit DoubleSVDecomp(const DoubleGenMat& a);
    /// Shares the other's values and vectors; takes its job and info.
    DoubleSVDecomp(const DoubleSVDecomp& other);
    /// Rebinds to the other's values and vectors (no element copy); takes its job and info.
    DoubleSVDecomp& operator=(const DoubleSVDecomp& other);
    ~DoubleSVDecomp() = default;

    /// Returns 1 when left vectors were on; on from none selects all m of them.
    int computeLeftVecs(int on);
    /// Returns 1 when all m left vectors were selected; off selects the economy set,
    /// on (from the economy set) all of them.
    int computeAllLeftVecs(int on);
    /// Returns 1 when right vectors were on.
    int computeRightVecs(int on);

    /// Decomposes a private copy of `a`. Vectors not asked for keep their previous shapes
    /// and contents; results of earlier calls already handed out are never overwritten.
    void factor(const DoubleGenMat& a);

    /// The singular values in decreasing order (min(m, n) of them).
    DoubleVec singularValues() const { return s_; }
    /// The superdiagonal left over (zero on success).
    DoubleVec eValues() const { return e_; }
    /// U, the left singular vectors as columns (a shallow copy).
    DoubleGenMat leftVecs() const { return u_; }
    /// V, the right singular vectors as columns (a shallow copy).
    DoubleGenMat rightVecs() const { return v_; }
    /// The number of trustworthy values: the trailing length(s) - info.
    int numSVsFound() const { return static_cast<int>(s_.length()) - info_; }
    /// The kernel's status: 0, or the index (from 0) of the first value known correct.
    int info() const { return info_; }
    /// The job code 10a + b for the next factor.
    int job() const { return job_; }
    /// 1 when there are no values or the iteration did not converge.
    int fail() const { return s_.length() == 0 || info_ != 0; }
    /// The negation of fail().
    int good() const { return !fail(); }

private:
    DoubleVec s_;
    DoubleVec e_;
    DoubleGenMat u_;
    DoubleGenMat v_;
    int job_;
    int info_;
};

#endif
