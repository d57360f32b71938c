// The blocked rank-k update C -= op(A)*B in the usual three-level form: B is packed in panels
// of KC rows and NR-wide column slivers, A in MC x KC blocks of MR-high row slivers, and an
// MR x NR register tile accumulates each product. On x86-64 the tile loop is compiled for
// the baseline instruction set, for AVX2 with FMA and for AVX-512, and the first call picks
// what the processor supports, so the library stays portable without giving up wide units.
#include "ObrixBase/math/kernels/detail/blocked_internal.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "ObrixBase/math/kernels/detail/simd_internal.h"

namespace qvObrixBase::kernels::detail {

namespace {

constexpr int MR = 8;
constexpr int NR = 4;
constexpr int KC = 256;
constexpr int MC = 128;
constexpr int NC = 2048;

// Scratch panels, one pair per thread; they only grow.
struct Scratch {
    std::vector<double> a, b;
};
Scratch& scratch() {
    thread_local Scratch s;
    return s;
}

// Packs op(A)(i0 .. i0+mc, l0 .. l0+kc) into MR-high slivers, each stored l-major, padding the
// last sliver with zeros.
void packA(bool transA, int mc, int kc, const double* a, int lda, double* out) {
    for (int i = 0; i < mc; i += MR) {
        int mr = std::min(MR, mc - i);
        for (int l = 0; l < kc; ++l) {
            for (int ii = 0; ii < mr; ++ii)
                out[ii] = transA ? a[l + static_cast<long>(i + ii) * lda]
                                 : a[(i + ii) + static_cast<long>(l) * lda];
            for (int ii = mr; ii < MR; ++ii)
                out[ii] = 0.0;
            out += MR;
        }
    }
}

// Packs B(l0 .. l0+kc, j0 .. j0+nc) into NR-wide slivers, each stored l-major.
void packB(int kc, int nc, const double* b, int ldb, double* out) {
    for (int j = 0; j < nc; j += NR) {
        int nr = std::min(NR, nc - j);
        for (int l = 0; l < kc; ++l) {
            for (int jj = 0; jj < nr; ++jj)
                out[jj] = b[l + static_cast<long>(j + jj) * ldb];
            for (int jj = nr; jj < NR; ++jj)
                out[jj] = 0.0;
            out += NR;
        }
    }
}

// The product of one packed A sliver with `Slivers` consecutive packed B slivers over kc,
// into tile. V is the vector type; Rows is how many rows one pass keeps in registers, so that
// the accumulators fit the register file of the instruction set the caller is built for.
template <class V, int Rows, int Slivers>
OBRIX_ALWAYS_INLINE void tileProduct(int kc, const double* as, const double* bs, long sliverStride,
                                     double (&tile)[Slivers * NR][MR]) {
    constexpr int W = lanesOf<V>;
    for (int r0 = 0; r0 < MR; r0 += Rows) {
        V acc[Slivers * NR][Rows / W] = {};
        for (int l = 0; l < kc; ++l) {
            V a[Rows / W];
            for (int h = 0; h < Rows / W; ++h)
                load(a[h], as + l * MR + r0 + W * h);
            for (int sl = 0; sl < Slivers; ++sl)
                for (int jj = 0; jj < NR; ++jj) {
                    const double bv = bs[sl * sliverStride + l * NR + jj];
                    for (int h = 0; h < Rows / W; ++h)
                        acc[sl * NR + jj][h] += a[h] * bv;
                }
        }
        for (int jj = 0; jj < Slivers * NR; ++jj)
            for (int h = 0; h < Rows / W; ++h)
                store(&tile[jj][r0 + W * h], acc[jj][h]);
    }
}

template <int Cols>
OBRIX_ALWAYS_INLINE void subtractTile(const double (&tile)[Cols][MR], int mr, int nr, double* c,
                                      int ldc) {
    if (mr == MR && nr == Cols) {
        for (int jj = 0; jj < Cols; ++jj)
            for (int ii = 0; ii < MR; ++ii)
                c[ii + static_cast<long>(jj) * ldc] -= tile[jj][ii];
    } else {
        for (int jj = 0; jj < nr; ++jj)
            for (int ii = 0; ii < mr; ++ii)
                c[ii + static_cast<long>(jj) * ldc] -= tile[jj][ii];
    }
}

// C(mc x nc) -= packed A * packed B over kc, Slivers B slivers at a time where they remain.
template <class V, int Rows, int Slivers>
OBRIX_ALWAYS_INLINE void macroBody(int mc, int nc, int kc, const double* pa, const double* pb,
                                   double* c, int ldc) {
    const long sliverStride = static_cast<long>(NR) * kc;
    int j = 0;
    for (; Slivers > 1 && j + Slivers * NR <= nc; j += Slivers * NR) {
        const double* bs = pb + (j / NR) * sliverStride;
        for (int i = 0; i < mc; i += MR) {
            double tile[Slivers * NR][MR];
            tileProduct<V, Rows, Slivers>(kc, pa + (i / MR) * static_cast<long>(MR) * kc, bs,
                                          sliverStride, tile);
            subtractTile<Slivers * NR>(tile, std::min(MR, mc - i), Slivers * NR,
                                       c + i + static_cast<long>(j) * ldc, ldc);
        }
    }
    for (; j < nc; j += NR) {
        const double* bs = pb + (j / NR) * sliverStride;
        for (int i = 0; i < mc; i += MR) {
            double tile[NR][MR];
            tileProduct<V, (Rows < MR ? Rows : MR), 1>(
                kc, pa + (i / MR) * static_cast<long>(MR) * kc, bs, sliverStride, tile);
            subtractTile<NR>(tile, std::min(MR, mc - i), std::min(NR, nc - j),
                             c + i + static_cast<long>(j) * ldc, ldc);
        }
    }
}

// The register tile of each level: four-wide registers four rows at a time for the baseline
// (two SSE registers per vector), eight rows for AVX2, and two slivers of eight-wide registers
// for AVX-512, so that the accumulators fill each level's register file without spilling.
template <int Level>
OBRIX_ALWAYS_INLINE void macroKernelBody(int mc, int nc, int kc, const double* pa, const double* pb,
                                         double* c, int ldc) {
    if constexpr (Level == 2)
        macroBody<Vec<8>, 8, 2>(mc, nc, kc, pa, pb, c, ldc);
    else if constexpr (Level == 1)
        macroBody<Vec<4>, 8, 1>(mc, nc, kc, pa, pb, c, ldc);
    else
        macroBody<Vec<4>, 4, 1>(mc, nc, kc, pa, pb, c, ldc);
}

OBRIX_SIMD_DISPATCH(void, macroKernel,
                    (int mc, int nc, int kc, const double* pa, const double* pb, double* c,
                     int ldc),
                    (mc, nc, kc, pa, pb, c, ldc))

} // namespace

void gemmMinus(bool transA, int m, int n, int k, const double* a, int lda, const double* b, int ldb,
               double* c, int ldc) {
    if (m <= 0 || n <= 0 || k <= 0)
        return;
    Scratch& s = scratch();
    int ncMax = std::min(NC, (n + NR - 1) / NR * NR);
    int mcMax = std::min(MC, (m + MR - 1) / MR * MR);
    int kcMax = std::min(KC, k);
    if (s.b.size() < static_cast<size_t>(kcMax) * ncMax)
        s.b.resize(static_cast<size_t>(kcMax) * ncMax);
    if (s.a.size() < static_cast<size_t>(kcMax) * mcMax)
        s.a.resize(static_cast<size_t>(kcMax) * mcMax);
    for (int jc = 0; jc < n; jc += NC) {
        int nc = std::min(NC, n - jc);
        for (int pc = 0; pc < k; pc += KC) {
            int kc = std::min(KC, k - pc);
            packB(kc, nc, b + pc + static_cast<long>(jc) * ldb, ldb, s.b.data());
            for (int ic = 0; ic < m; ic += MC) {
                int mc = std::min(MC, m - ic);
                const double* ablk = transA ? a + pc + static_cast<long>(ic) * lda
                                            : a + ic + static_cast<long>(pc) * lda;
                packA(transA, mc, kc, ablk, lda, s.a.data());
                macroKernel(mc, nc, kc, s.a.data(), s.b.data(),
                            c + ic + static_cast<long>(jc) * ldc, ldc);
            }
        }
    }
}

void trsmLowerUnit(int m, int n, const double* l, int ldl, double* b, int ldb) {
    // Recursive halving puts all but the small diagonal solves into gemmMinus.
    if (m <= 32) {
        for (int j = 0; j < n; ++j) {
            double* bj = b + static_cast<long>(j) * ldb;
            for (int k = 0; k < m; ++k) {
                double t = bj[k];
                if (t == 0.0)
                    continue;
                const double* lk = l + static_cast<long>(k) * ldl;
                for (int i = k + 1; i < m; ++i)
                    bj[i] -= t * lk[i];
            }
        }
        return;
    }
    int m1 = m / 2;
    trsmLowerUnit(m1, n, l, ldl, b, ldb);
    gemmMinus(false, m - m1, n, m1, l + m1, ldl, b, ldb, b + m1, ldb);
    trsmLowerUnit(m - m1, n, l + m1 + static_cast<long>(m1) * ldl, ldl, b + m1, ldb);
}

} // namespace qvObrixBase::kernels::detail
