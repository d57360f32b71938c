#include "ObrixBase/geometry/T4dDblMatrix.h"

#include <cmath>

#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/math/kernels/detail/simd_internal.h"

const T4dDblMatrix T4dDblMatrix::identity;

int T4dDblMatrix::equivalent(const T4dDblMatrix& m, double tol) const noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (!(std::fabs(m_[i][j] - m.m_[i][j]) <= tol))
                return 0;
    return 1;
}

namespace {

using qvObrixBase::kernels::detail::load;
using qvObrixBase::kernels::detail::store;
using Pair = qvObrixBase::kernels::detail::Vec<2>;

// The inversion works on rows of eight doubles: columns 0..3 hold the matrix being reduced,
// columns 4..7 the accumulator that starts as the identity. Every quotient is a true division
// and every update a product rounded before its subtraction, two lanes at a time, so each
// element rounds exactly as in the one-at-a-time elimination; this file is compiled without
// contraction into fused multiply-adds for the same reason.
//
// The accumulator's columns are kept in pivot order: column j belongs to the input row that
// became pivot j. In that order it is lower triangular throughout the forward elimination
// (multipliers left of the diagonal, zeros right of it), and a row's 1 appears at column K
// only when it becomes pivot K, so pairs that are still exact zeros are neither loaded nor
// updated; for finite values every other element comes out as the full update would give it.
// The columns go back to their original order when the result is written out.

/// A row as four pairs: matrix columns 0-1 and 2-3, accumulator columns 0-1 and 2-3.
struct Row {
    Pair m01, m23, a01, a23;
};

/// Element E (0..7) of a row.
template <int E>
OBRIX_ALWAYS_INLINE double at(const Row& r) {
    if constexpr (E < 2)
        return r.m01[E];
    else if constexpr (E < 4)
        return r.m23[E - 2];
    else if constexpr (E < 6)
        return r.a01[E - 4];
    else
        return r.a23[E - 6];
}

/// x in both lanes.
OBRIX_ALWAYS_INLINE Pair both(double x) {
    return Pair{x, x};
}

/// Where the rows not yet chosen as pivots are read from: a pivot swap exchanges two
/// positions' sources, not the rows' contents. Before the first step the sources are the
/// matrix's own rows; after it, one scratch row per position.
struct Positions {
    const double* source[4];
    int origin[4]; // the input row at each position
    double scratch[4][8];
};

/// Column K at positions K..3 while column K is eliminated: `value` for the pivot search,
/// `low23` the values at positions 2 and 3 in one pair, as the elimination computes them.
struct Column {
    double value[4];
    Pair low23;
};

// Pivot search over column K at positions K..3: the largest square wins, a later position
// only when strictly larger, so ties keep the upper row. Gives the pivot value and the
// numerators of the multipliers as they stand after the swap (position p takes the value of
// position K): positions 2 and 3 in one pair (at K = 2 only its upper lane counts), position
// 1 apart. Branches, not masks: predicted, the search stays off the chain of divisions, where a
// mask-based one puts up to three compare-and-select steps before each; matrices whose pivot
// order changes from call to call pay in mispredictions instead.
template <int K>
OBRIX_ALWAYS_INLINE int choosePivot(const Column& c, Pair& pivotValue, Pair& numerators23,
                                    double& numerator1) {
    int p = K;
    double best = c.value[K] * c.value[K];
    for (int i = K + 1; i < 4; ++i) {
        const double sq = c.value[i] * c.value[i];
        if (sq > best) {
            best = sq;
            p = i;
        }
    }
    numerator1 = p == 1 ? c.value[0] : c.value[1];
    if (p == 2)
        numerators23 = Pair{c.value[K], c.low23[1]};
    else if (p == 3)
        numerators23 = Pair{c.low23[0], c.value[K]};
    else
        numerators23 = c.low23;
    pivotValue = both(p == K       ? c.value[K]
                      : p == K + 1 ? c.value[K + 1]
                      : p == K + 2 ? c.value[K + 2]
                                   : c.value[3]);
    return p;
}

// Element E of pivot row K after the division by its pivot, from the quotients of its
// elements K+1..K+4 (the elements right of the matrix diagonal and the accumulator up to its
// 1). The zeros left of the matrix diagonal and right of the accumulator's 1 become 0 / d, a
// zero with the pivot's sign, which the products of the back substitution carry into zero
// results; the diagonal is 1.
template <int K, int E>
OBRIX_ALWAYS_INLINE double scaled(const Pair& low, const Pair& high, double z) {
    if constexpr (E == K)
        return 1.0;
    else if constexpr (E < K || E > K + 4)
        return z;
    else if constexpr (E <= K + 2)
        return low[E - K - 1];
    else
        return high[E - K - 3];
}

template <int K>
OBRIX_ALWAYS_INLINE void scalePivotRow(Row& s, const Row& r, const Pair& d) {
    const Pair low = Pair{at<K + 1>(r), at<K + 2>(r)} / d;
    const Pair high = Pair{at<K + 3>(r), at<K + 4>(r)} / d;
    const double z = std::copysign(0.0, d[0]);
    s.m01 = Pair{scaled<K, 0>(low, high, z), scaled<K, 1>(low, high, z)};
    s.m23 = Pair{scaled<K, 2>(low, high, z), scaled<K, 3>(low, high, z)};
    s.a01 = Pair{scaled<K, 4>(low, high, z), scaled<K, 5>(low, high, z)};
    s.a23 = Pair{scaled<K, 6>(low, high, z), scaled<K, 7>(low, high, z)};
}

// Forward elimination of column K below the pivot row, and the scaling of the pivot row,
// which no later step changes. The row update covers the matrix pairs right of column K and
// the accumulator pairs up to column K, the only ones not exact zeros on both sides. Column
// K + 1 at positions 2 and 3, which the next pivot search and divisions wait for, is also
// computed straight from the multipliers' pair, with the same roundings.
template <int K>
OBRIX_ALWAYS_INLINE void eliminateColumn(Positions& pos, Column& c, Row (&scaledRows)[4]) {
    Pair d, numerators23;
    double numerator1;
    const int p = choosePivot<K>(c, d, numerators23, numerator1);
    const double* const x = pos.source[p];
    const int pivotOrigin = pos.origin[p];
    pos.source[p] = pos.source[K];
    pos.origin[p] = pos.origin[K];
    pos.source[K] = x;
    pos.origin[K] = pivotOrigin;

    // The multipliers: true quotients, not products with a reciprocal.
    const Pair f23 = numerators23 / d;
    double multiplier[4] = {0.0, 0.0, f23[0], f23[1]};
    if constexpr (K == 0)
        multiplier[1] = (both(numerator1) / d)[0];
    if constexpr (K < 2) {
        const double* const y2 = pos.source[2];
        const double* const y3 = pos.source[3];
        c.low23 = Pair{y2[K + 1], y3[K + 1]} - f23 * both(x[K + 1]);
        c.value[2] = c.low23[0];
        c.value[3] = c.low23[1];
        if constexpr (K == 0)
            c.value[1] = pos.source[1][1] - multiplier[1] * x[1];
    }

    // The pivot row, with the accumulator's 1 at column K and exact zeros right of it.
    Row pivot;
    load(pivot.m01, x);
    load(pivot.m23, x + 2);
    if constexpr (K == 0)
        pivot.a01 = Pair{1.0, 0.0};
    else if constexpr (K == 1)
        pivot.a01 = Pair{x[4], 1.0};
    else
        load(pivot.a01, x + 4);
    pivot.a23 = K == 2 ? Pair{1.0, 0.0} : Pair{0.0, 0.0};
    scalePivotRow<K>(scaledRows[K], pivot, d);

    for (int i = K + 1; i < 4; ++i) {
        const double* const y = pos.source[i];
        const double m = multiplier[i];
        Row r;
        load(r.m23, y + 2);
        r.m23 = r.m23 - pivot.m23 * m;
        if constexpr (K == 0) {
            load(r.m01, y);
            r.m01 = r.m01 - pivot.m01 * m;
            r.a01 = Pair{0.0, 0.0} - pivot.a01 * m;
        } else {
            load(r.a01, y + 4);
            r.a01 = r.a01 - pivot.a01 * m;
        }
        if constexpr (K < 2) {
            double* const out = pos.scratch[i];
            if constexpr (K == 0)
                store(out, r.m01);
            store(out + 2, r.m23);
            store(out + 4, r.a01);
            pos.source[i] = out;
        } else {
            // The last row, whose 1 can only be at column 3, is final: scale it from registers.
            r.a23 = Pair{0.0, 1.0} - pivot.a23 * m;
            scalePivotRow<3>(scaledRows[3], r, both(r.m23[1]));
        }
    }
}

// Back substitution step: the scaled row C, a unit row right of its diagonal, clears column C
// of row R above it. In the matrix this subtracts multiples of row C's signed zeros left of
// its diagonal: no nonzero element changes, but a zero one can change sign and later steps
// multiply with it, so the pairs holding such elements are updated too.
template <int C, int R>
OBRIX_ALWAYS_INLINE void clearAbove(Row (&s)[4]) {
    const double f = at<C>(s[R]);
    // A matrix pair is needed when it holds a column left of C other than R's own.
    if constexpr ((0 < C && R != 0) || (1 < C && R != 1))
        s[R].m01 = s[R].m01 - s[C].m01 * f;
    if constexpr ((2 < C && R != 2) || (3 < C && R != 3))
        s[R].m23 = s[R].m23 - s[C].m23 * f;
    s[R].a01 = s[R].a01 - s[C].a01 * f;
    s[R].a23 = s[R].a23 - s[C].a23 * f;
}

} // namespace

T4dDblMatrix& T4dDblMatrix::invertIt() noexcept {
    // Gauss-Jordan elimination with partial pivoting: forward elimination, scaling to a unit
    // diagonal, back substitution; every row operation on the matrix is applied to the
    // accumulator, which ends as the inverse. There is no singularity test: a zero pivot
    // divides by zero and the infinities and NaNs spread into the result.
    Positions pos;
    Column c;
    for (int i = 0; i < 4; ++i) {
        pos.source[i] = m_[i];
        pos.origin[i] = i;
        c.value[i] = m_[i][0];
    }
    c.low23 = Pair{c.value[2], c.value[3]};
    Row s[4];
    eliminateColumn<0>(pos, c, s);
    eliminateColumn<1>(pos, c, s);
    eliminateColumn<2>(pos, c, s);
    clearAbove<3, 0>(s);
    clearAbove<3, 1>(s);
    clearAbove<3, 2>(s);
    clearAbove<2, 0>(s);
    clearAbove<2, 1>(s);
    clearAbove<1, 0>(s);

    // Accumulator column j belongs to the input row that became pivot j: output column
    // origin[j]. The result is gathered by column and stored in whole pairs, so that a
    // following read of the matrix takes its data straight from the store buffer.
    int from[4];
    for (int j = 0; j < 4; ++j)
        from[pos.origin[j]] = j;
    for (int i = 0; i < 4; ++i) {
        double* const acc = pos.scratch[i];
        store(acc, s[i].a01);
        store(acc + 2, s[i].a23);
        store(m_[i], Pair{acc[from[0]], acc[from[1]]});
        store(m_[i] + 2, Pair{acc[from[2]], acc[from[3]]});
    }
    return *this;
}

T4dDblMatrix& T4dDblMatrix::setToAxisRotate(const T4dDblVector& axis, double angle) noexcept {
    if (angle == 0.0)
        return setToIdentity();
    const double s = std::sin(angle), c = std::cos(angle), t = 1.0 - c;
    const double x = axis.x, y = axis.y, z = axis.z;
    *this = T4dDblMatrix(x * x * t + c, x * y * t + s * z, x * z * t - s * y, 0.0, //
                         x * y * t - s * z, y * y * t + c, y * z * t + s * x, 0.0, //
                         x * z * t + s * y, y * z * t - s * x, z * z * t + c, 0.0, //
                         0.0, 0.0, 0.0, 1.0);
    return *this;
}

T4dDblMatrix& T4dDblMatrix::axisRotateIt(const T4dDblVector& axis, double angle) noexcept {
    if (angle == 0.0)
        return *this;
    T4dDblMatrix r;
    r.setToAxisRotate(axis, angle);
    return premultBy(r);
}

void T4dDblMatrix::copyToFloat(float (*const f)[4]) const noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            f[i][j] = static_cast<float>(m_[i][j]);
}

T4dDblMatrix& T4dDblMatrix::setFromFloat(const float (*const f)[4]) noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m_[i][j] = f[i][j];
    return *this;
}

T4dDblMatrix& T4dDblMatrix::setFromDouble(const double (*const d)[4]) noexcept {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m_[i][j] = d[i][j];
    return *this;
}

void T4dDblMatrix::print(std::FILE* out) const {
    for (int i = 0; i < 4; ++i)
        std::fprintf(out, "%g %g %g %g\n", m_[i][0], m_[i][1], m_[i][2], m_[i][3]);
}
