// The blocked rank-k update C -= op(A)*B in the usual three-level form: B is packed in panels
// of KC rows and NR-wide column slivers, A in MC x KC blocks of MR-high row slivers, and an
// MR x NR register tile accumulates each product. The tile loop is compiled twice on x86-64,
// for the baseline instruction set and for AVX2 with FMA, and the loader picks the clone the
// processor supports, so the library stays portable without giving up the wide units.
#include "ObrixBase/math/kernels/blocked_internal.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace qvObrixBase::kernels::detail {

namespace {

constexpr int MR = 8;
constexpr int NR = 4;
constexpr int KC = 256;
constexpr int MC = 128;
constexpr int NC = 2048;

#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__)
#define OBRIX_WIDE_CLONES __attribute__((target_clones("arch=haswell", "default")))
#else
#define OBRIX_WIDE_CLONES
#endif

#if defined(__GNUC__)
typedef double Vec4 __attribute__((vector_size(32)));
#endif

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

} // namespace

// C(mc x nc) -= packed A * packed B over kc. External linkage: the clone resolver needs it.
OBRIX_WIDE_CLONES
void macroKernel(int mc, int nc, int kc, const double* pa, const double* pb, double* c, int ldc) {
    for (int j = 0; j < nc; j += NR) {
        int nr = std::min(NR, nc - j);
        const double* bs = pb + static_cast<long>(j / NR) * NR * kc;
        for (int i = 0; i < mc; i += MR) {
            int mr = std::min(MR, mc - i);
            const double* as = pa + static_cast<long>(i / MR) * MR * kc;
            double tile[NR][MR];
#if defined(__GNUC__)
            Vec4 acc[NR][2] = {};
            for (int l = 0; l < kc; ++l) {
                Vec4 a0, a1;
                std::memcpy(&a0, as + l * MR, sizeof a0);
                std::memcpy(&a1, as + l * MR + 4, sizeof a1);
                for (int jj = 0; jj < NR; ++jj) {
                    double bv = bs[l * NR + jj];
                    acc[jj][0] += a0 * bv;
                    acc[jj][1] += a1 * bv;
                }
            }
            for (int jj = 0; jj < NR; ++jj) {
                std::memcpy(&tile[jj][0], &acc[jj][0], sizeof(Vec4));
                std::memcpy(&tile[jj][4], &acc[jj][1], sizeof(Vec4));
            }
#else
            for (int jj = 0; jj < NR; ++jj)
                for (int ii = 0; ii < MR; ++ii)
                    tile[jj][ii] = 0.0;
            for (int l = 0; l < kc; ++l)
                for (int jj = 0; jj < NR; ++jj)
                    for (int ii = 0; ii < MR; ++ii)
                        tile[jj][ii] += as[l * MR + ii] * bs[l * NR + jj];
#endif
            double* cij = c + i + static_cast<long>(j) * ldc;
            if (mr == MR && nr == NR) {
                for (int jj = 0; jj < NR; ++jj)
                    for (int ii = 0; ii < MR; ++ii)
                        cij[ii + static_cast<long>(jj) * ldc] -= tile[jj][ii];
            } else {
                for (int jj = 0; jj < nr; ++jj)
                    for (int ii = 0; ii < mr; ++ii)
                        cij[ii + static_cast<long>(jj) * ldc] -= tile[jj][ii];
            }
        }
    }
}

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
