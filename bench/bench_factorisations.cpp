// Factor + solve for LU, Cholesky, QR with column pivoting (on 2n x n) and the SVD, ours
// beside LAPACK (the BLAS chosen at link time: reference or OpenBLAS) and Eigen, on the same
// matrices in the same run. Every iteration copies the matrix first, for every contender.
#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include <Eigen/Cholesky>
#include <Eigen/Dense>
#include <Eigen/LU>
#include <Eigen/QR>
#include <Eigen/SVD>

#include "ObrixBase/math/DoubleChDecomp.h"
#include "ObrixBase/math/kernels/kernels.h"

extern "C" {
void dgetrf_(const int*, const int*, double*, const int*, int*, int*);
void dgetrs_(const char*, const int*, const int*, const double*, const int*, const int*, double*,
             const int*, int*);
void dpotrf_(const char*, const int*, double*, const int*, int*);
void dpotrs_(const char*, const int*, const int*, const double*, const int*, double*, const int*,
             int*);
void dgeqp3_(const int*, const int*, double*, const int*, int*, double*, double*, const int*, int*);
void dormqr_(const char*, const char*, const int*, const int*, const int*, const double*,
             const int*, const double*, double*, const int*, double*, const int*, int*);
void dtrtrs_(const char*, const char*, const char*, const int*, const int*, const double*,
             const int*, double*, const int*, int*);
void dgesvd_(const char*, const char*, const int*, const int*, double*, const int*, double*,
             double*, const int*, double*, const int*, double*, const int*, int*);
}

namespace k = qvObrixBase::kernels;

namespace {

std::vector<double> randomMatrix(int m, int n, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> d(-1, 1);
    std::vector<double> a(size_t(m) * n);
    for (double& x : a)
        x = d(rng);
    return a;
}

// A'A + n I: symmetric positive definite and well conditioned.
std::vector<double> spdMatrix(int n) {
    std::vector<double> b = randomMatrix(n, n, 7), a(size_t(n) * n, 0.0);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            double s = 0;
            for (int l = 0; l < n; ++l)
                s += b[l + size_t(i) * n] * b[l + size_t(j) * n];
            a[i + size_t(j) * n] = s + (i == j ? n : 0.0);
        }
    return a;
}

using EMat = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic>;
using EVec = Eigen::VectorXd;

// ---- LU ----
void LU_ours(benchmark::State& st) {
    int n = int(st.range(0));
    auto a0 = randomMatrix(n, n, 1), b0 = randomMatrix(n, 1, 2);
    std::vector<double> a(a0.size()), b(n);
    std::vector<int> piv(n);
    for (auto _ : st) {
        std::copy(a0.begin(), a0.end(), a.begin());
        std::copy(b0.begin(), b0.end(), b.begin());
        int info;
        k::dgefa(a.data(), n, n, piv.data(), &info);
        k::dgesl(a.data(), n, n, piv.data(), b.data(), 0);
        benchmark::DoNotOptimize(b.data());
    }
}
void LU_lapack(benchmark::State& st) {
    int n = int(st.range(0)), one = 1, info;
    auto a0 = randomMatrix(n, n, 1), b0 = randomMatrix(n, 1, 2);
    std::vector<double> a(a0.size()), b(n);
    std::vector<int> piv(n);
    for (auto _ : st) {
        std::copy(a0.begin(), a0.end(), a.begin());
        std::copy(b0.begin(), b0.end(), b.begin());
        dgetrf_(&n, &n, a.data(), &n, piv.data(), &info);
        dgetrs_("N", &n, &one, a.data(), &n, piv.data(), b.data(), &n, &info);
        benchmark::DoNotOptimize(b.data());
    }
}
void LU_eigen(benchmark::State& st) {
    int n = int(st.range(0));
    auto a0 = randomMatrix(n, n, 1), b0 = randomMatrix(n, 1, 2);
    Eigen::Map<EMat> A0(a0.data(), n, n);
    Eigen::Map<EVec> B0(b0.data(), n);
    EMat a(n, n);
    EVec x(n);
    Eigen::PartialPivLU<EMat> lu(n);
    for (auto _ : st) {
        a = A0;
        lu.compute(a);
        x = lu.solve(B0);
        benchmark::DoNotOptimize(x.data());
    }
}

// ---- Cholesky ----
template <int Job>
void Chol_ours(benchmark::State& st) {
    int n = int(st.range(0));
    auto a0 = spdMatrix(n), b0 = randomMatrix(n, 1, 2);
    std::vector<double> a(a0.size()), b(n), work(n);
    std::vector<int> piv(n);
    for (auto _ : st) {
        std::copy(a0.begin(), a0.end(), a.begin());
        std::copy(b0.begin(), b0.end(), b.begin());
        std::fill(piv.begin(), piv.end(), 0);
        int info;
        k::dchdc(a.data(), n, n, work.data(), piv.data(), Job, &info);
        k::dposl(a.data(), n, n, b.data());
        benchmark::DoNotOptimize(b.data());
    }
}
// The solve alone with a pivoted factor, and the class's whole path (private copy, pivoted
// factor, permute, solve, unpermute) as callers use it.
void Chol_solve_ours(benchmark::State& st) {
    int n = int(st.range(0)), info;
    auto a = spdMatrix(n), b0 = randomMatrix(n, 1, 2);
    std::vector<double> b(n), work(n);
    std::vector<int> piv(n, 0);
    k::dchdc(a.data(), n, n, work.data(), piv.data(), 1, &info);
    for (auto _ : st) {
        std::copy(b0.begin(), b0.end(), b.begin());
        k::dposl(a.data(), n, n, b.data());
        benchmark::DoNotOptimize(b.data());
    }
}
void Chol_solve_lapack(benchmark::State& st) {
    int n = int(st.range(0)), one = 1, info;
    auto a = spdMatrix(n), b0 = randomMatrix(n, 1, 2);
    std::vector<double> b(n);
    dpotrf_("U", &n, a.data(), &n, &info);
    for (auto _ : st) {
        std::copy(b0.begin(), b0.end(), b.begin());
        dpotrs_("U", &n, &one, a.data(), &n, b.data(), &n, &info);
        benchmark::DoNotOptimize(b.data());
    }
}
void Chol_class(benchmark::State& st) {
    int n = int(st.range(0));
    auto a0 = spdMatrix(n), b0 = randomMatrix(n, 1, 2);
    DoubleGenMat a(a0.data(), unsigned(n), unsigned(n));
    DoubleVec b(b0.data(), unsigned(n));
    DoubleChDecomp ch;
    for (auto _ : st) {
        ch.factor(a);
        DoubleVec x = ch.solve(b);
        benchmark::DoNotOptimize(x.data());
    }
}
void Chol_lapack(benchmark::State& st) {
    int n = int(st.range(0)), one = 1, info;
    auto a0 = spdMatrix(n), b0 = randomMatrix(n, 1, 2);
    std::vector<double> a(a0.size()), b(n);
    for (auto _ : st) {
        std::copy(a0.begin(), a0.end(), a.begin());
        std::copy(b0.begin(), b0.end(), b.begin());
        dpotrf_("U", &n, a.data(), &n, &info);
        dpotrs_("U", &n, &one, a.data(), &n, b.data(), &n, &info);
        benchmark::DoNotOptimize(b.data());
    }
}
void Chol_eigen(benchmark::State& st) {
    int n = int(st.range(0));
    auto a0 = spdMatrix(n), b0 = randomMatrix(n, 1, 2);
    Eigen::Map<EMat> A0(a0.data(), n, n);
    Eigen::Map<EVec> B0(b0.data(), n);
    EMat a(n, n);
    EVec x(n);
    Eigen::LLT<EMat> llt(n);
    for (auto _ : st) {
        a = A0;
        llt.compute(a);
        x = llt.solve(B0);
        benchmark::DoNotOptimize(x.data());
    }
}

// ---- QR with column pivoting, least squares on 2n x n ----
void QR_ours(benchmark::State& st) {
    int n = int(st.range(0)), m = 2 * n;
    auto a0 = randomMatrix(m, n, 3), y0 = randomMatrix(m, 1, 4);
    std::vector<double> a(a0.size()), qraux(n), work(n), qty(m), b(n);
    std::vector<int> piv(n);
    for (auto _ : st) {
        std::copy(a0.begin(), a0.end(), a.begin());
        std::fill(piv.begin(), piv.end(), 0);
        k::dqrdc(a.data(), m, m, n, qraux.data(), piv.data(), work.data(), 1);
        int info;
        k::dqrsl(a.data(), m, m, n, qraux.data(), y0.data(), nullptr, qty.data(), b.data(), nullptr,
                 nullptr, 100, &info);
        benchmark::DoNotOptimize(b.data());
    }
}
void QR_lapack(benchmark::State& st) {
    int n = int(st.range(0)), m = 2 * n, one = 1, info;
    auto a0 = randomMatrix(m, n, 3), y0 = randomMatrix(m, 1, 4);
    std::vector<double> a(a0.size()), tau(n), y(m);
    std::vector<int> piv(n);
    int lwork = -1;
    double q;
    dgeqp3_(&m, &n, a.data(), &m, piv.data(), tau.data(), &q, &lwork, &info);
    lwork = std::max(int(q), 64 * (m + n));
    std::vector<double> work(lwork);
    for (auto _ : st) {
        std::copy(a0.begin(), a0.end(), a.begin());
        std::copy(y0.begin(), y0.end(), y.begin());
        std::fill(piv.begin(), piv.end(), 0);
        dgeqp3_(&m, &n, a.data(), &m, piv.data(), tau.data(), work.data(), &lwork, &info);
        dormqr_("L", "T", &m, &one, &n, a.data(), &m, tau.data(), y.data(), &m, work.data(), &lwork,
                &info);
        dtrtrs_("U", "N", "N", &n, &one, a.data(), &m, y.data(), &m, &info);
        benchmark::DoNotOptimize(y.data());
    }
}
void QR_eigen(benchmark::State& st) {
    int n = int(st.range(0)), m = 2 * n;
    auto a0 = randomMatrix(m, n, 3), y0 = randomMatrix(m, 1, 4);
    Eigen::Map<EMat> A0(a0.data(), m, n);
    Eigen::Map<EVec> Y0(y0.data(), m);
    EMat a(m, n);
    EVec x(n);
    Eigen::ColPivHouseholderQR<EMat> qr(m, n);
    for (auto _ : st) {
        a = A0;
        qr.compute(a);
        x = qr.solve(Y0);
        benchmark::DoNotOptimize(x.data());
    }
}

// ---- SVD with both sets of vectors, n x n ----
void SVD_ours(benchmark::State& st) {
    int n = int(st.range(0)), info;
    auto a0 = randomMatrix(n, n, 5);
    std::vector<double> a(a0.size()), s(n + 1), e(n), u(a0.size()), v(a0.size()), work(n);
    for (auto _ : st) {
        std::copy(a0.begin(), a0.end(), a.begin());
        k::dsvdc(a.data(), n, n, n, s.data(), e.data(), u.data(), n, v.data(), n, work.data(), 11,
                 &info);
        benchmark::DoNotOptimize(s.data());
    }
}
void SVD_lapack(benchmark::State& st) {
    int n = int(st.range(0)), info;
    auto a0 = randomMatrix(n, n, 5);
    std::vector<double> a(a0.size()), s(n), u(a0.size()), vt(a0.size());
    int lwork = -1;
    double q;
    dgesvd_("A", "A", &n, &n, a.data(), &n, s.data(), u.data(), &n, vt.data(), &n, &q, &lwork,
            &info);
    lwork = int(q);
    std::vector<double> work(lwork);
    for (auto _ : st) {
        std::copy(a0.begin(), a0.end(), a.begin());
        dgesvd_("A", "A", &n, &n, a.data(), &n, s.data(), u.data(), &n, vt.data(), &n, work.data(),
                &lwork, &info);
        benchmark::DoNotOptimize(s.data());
    }
}
template <class Svd>
void SVD_eigen(benchmark::State& st) {
    int n = int(st.range(0));
    auto a0 = randomMatrix(n, n, 5);
    Eigen::Map<EMat> A0(a0.data(), n, n);
    for (auto _ : st) {
        Svd svd(A0, Eigen::ComputeFullU | Eigen::ComputeFullV);
        benchmark::DoNotOptimize(svd.singularValues().data());
    }
}

void sizes(benchmark::internal::Benchmark* b) {
    for (int n : {4, 8, 16, 32, 64, 128, 256, 512, 1024})
        b->Arg(n);
    b->Unit(benchmark::kMicrosecond);
}
void svdSizes(benchmark::internal::Benchmark* b) {
    for (int n : {4, 8, 16, 32, 64, 128, 256, 512})
        b->Arg(n);
    b->Unit(benchmark::kMicrosecond);
}

} // namespace

BENCHMARK(LU_ours)->Apply(sizes);
BENCHMARK(LU_lapack)->Apply(sizes);
BENCHMARK(LU_eigen)->Apply(sizes);
BENCHMARK(Chol_ours<1>)->Name("Chol_ours_pivoted")->Apply(sizes);
BENCHMARK(Chol_ours<0>)->Name("Chol_ours")->Apply(sizes);
BENCHMARK(Chol_lapack)->Apply(sizes);
BENCHMARK(Chol_eigen)->Apply(sizes);
BENCHMARK(Chol_class)->Apply(sizes);
BENCHMARK(Chol_solve_ours)->Apply(sizes);
BENCHMARK(Chol_solve_lapack)->Apply(sizes);
BENCHMARK(QR_ours)->Apply(sizes);
BENCHMARK(QR_lapack)->Apply(sizes);
BENCHMARK(QR_eigen)->Apply(sizes);
BENCHMARK(SVD_ours)->Apply(svdSizes);
BENCHMARK(SVD_lapack)->Apply(svdSizes);
BENCHMARK_TEMPLATE(SVD_eigen, Eigen::BDCSVD<EMat>)->Apply(svdSizes);
BENCHMARK_TEMPLATE(SVD_eigen, Eigen::JacobiSVD<EMat>)->Apply(svdSizes);
