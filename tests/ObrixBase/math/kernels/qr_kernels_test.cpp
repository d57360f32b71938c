// QR kernels: X*P = Q*R with an orthogonal Q, pivots that bring the largest remaining column
// forward, and every apply job of dqrsl, down to the least-squares solution.
#include <cmath>
#include <utility>

#include <gtest/gtest.h>

#include "ObrixBase/math/kernels/kernels.h"
#include "tests/ObrixBase/math/kernels/KernelTestSupport.h"

namespace k = qvObrixBase::kernels;
using namespace obrix::test;

namespace {

struct Qr {
    Mat x;
    std::vector<double> qraux;
    std::vector<int> jpvt;
};

Qr factor(const Mat& a, int job, std::vector<int> jpvt = {}) {
    Qr f{a, std::vector<double>(a.cols + 1), jpvt};
    f.jpvt.resize(a.cols + 1, 0);
    std::vector<double> work(a.cols + 1);
    k::dqrdc(f.x.data(), f.x.ld(), a.rows, a.cols, f.qraux.data(), f.jpvt.data(), work.data(), job);
    return f;
}

Mat apply(const Qr& f, int kcols, const Mat& y, int job) {
    Mat out(y.rows, 1);
    int info = 0;
    Mat scratch(y.rows, 1);
    k::dqrsl(f.x.data(), f.x.ld(), y.rows, kcols, f.qraux.data(), y.v.data(), out.data(),
             out.data(), scratch.data(), scratch.data(), scratch.data(), job, &info);
    return out;
}

} // namespace

TEST(QrKernels, FactorsReproduceThePivotedMatrixWithOrthogonalQ) {
    std::mt19937 rng(41);
    for (int n : kSizes) {
        for (auto [m, p] : {std::pair{2 * n, n}, {n, n}, {n / 2, n}}) {
            for (int job : {0, 1}) {
                Mat a = randomMat(rng, m, p);
                Qr f = factor(a, job);
                int kq = std::min(m, p);
                Mat q(m, m);
                for (int j = 0; j < m; ++j) {
                    Mat e(m, 1);
                    e(j, 0) = 1.0;
                    Mat col = apply(f, kq, e, 10000);
                    for (int i = 0; i < m; ++i)
                        q(i, j) = col(i, 0);
                }
                Mat r(m, p), ap(m, p);
                for (int j = 0; j < p; ++j)
                    for (int i = 0; i < m; ++i) {
                        r(i, j) = i <= j ? f.x(i, j) : 0.0;
                        ap(i, j) = a(i, job ? f.jpvt[j] - 1 : j);
                    }
                double tol = 30 * std::max(m, p) * kEps;
                EXPECT_LE(diffNorm1(multiply(q, r), ap), tol * (norm1(a) + 1e-300)) << m << p;
                EXPECT_LE(diffNorm1(multiply(transpose(q), q), identity(m)), tol) << m << p;
                for (int i = 0; job && i + 1 < kq; ++i) {
                    EXPECT_GE(std::fabs(r(i, i)), std::fabs(r(i + 1, i + 1)) * (1 - 1e-12));
                }
            }
        }
    }
}

TEST(QrKernels, PivotingMovesZeroColumnsLastAndKeepsFrozenColumns) {
    std::mt19937 rng(42);
    Mat a = randomMat(rng, 6, 4);
    for (int i = 0; i < 6; ++i)
        a(i, 1) = 0.0;
    Qr f = factor(a, 1);
    EXPECT_EQ(f.jpvt[3], 2);
    EXPECT_EQ(f.x(3, 3), 0.0);
    Qr g = factor(a, 1, {-1, 0, 1, 0});
    EXPECT_EQ(g.jpvt[0], 3);
    EXPECT_EQ(g.jpvt[3], 1);
}

TEST(QrKernels, ApplyJobsAreConsistentAndAllowTheClassicAliasings) {
    // A full-rank fit whose residual is orthogonal to every column is the least-squares
    // solution, so these checks pin the coefficients as well as any reference solver would.
    std::mt19937 rng(43);
    for (auto [m, p] : {std::pair{1, 1}, {3, 2}, {10, 4}, {60, 25}, {130, 60}}) {
        Mat a = randomMat(rng, m, p), y = randomMat(rng, m, 1);
        Qr f = factor(a, 1);
        Mat qty(m, 1), b(p, 1), rsd(m, 1), xb(m, 1), qy(m, 1);
        int info = -1;
        k::dqrsl(f.x.data(), m, m, p, f.qraux.data(), y.data(), qy.data(), qty.data(), b.data(),
                 rsd.data(), xb.data(), 11111, &info);
        EXPECT_EQ(info, 0);
        // Q'(Qy) = y.
        Mat back = apply(f, p, qy, 1000);
        EXPECT_LE(diffNorm1(back, y), 1e-13 * m);
        for (int i = 0; i < m; ++i)
            EXPECT_NEAR(rsd(i, 0) + xb(i, 0), y(i, 0), 1e-13);
        Mat coef(p, 1);
        for (int j = 0; j < p; ++j)
            coef(f.jpvt[j] - 1, 0) = b(j, 0);
        Mat fit = multiply(a, coef);
        EXPECT_LE(diffNorm1(fit, xb), 1e-12 * m);
        // The residual of a least-squares fit is orthogonal to every column.
        EXPECT_LE(norm1(multiply(transpose(a), rsd)), 1e-12 * m * norm1(a)) << m;
        // The aliasings the classic interface allows: b and rsd over qty.
        Mat alias = y;
        k::dqrsl(f.x.data(), m, m, p, f.qraux.data(), alias.data(), nullptr, alias.data(),
                 alias.data(), nullptr, nullptr, 1100, &info);
        for (int j = 0; j < p; ++j)
            EXPECT_NEAR(alias(j, 0), b(j, 0), 1e-12);
    }
}

TEST(QrKernels, ZeroDiagonalStopsTheSolveWithItsIndex) {
    Mat a(3, 2);
    a(0, 0) = 1.0;
    a(1, 0) = 2.0; // the second column is zero
    Qr f = factor(a, 0);
    Mat y(3, 1, 1.0), b(2, 1), qty(3, 1);
    int info = 0;
    k::dqrsl(f.x.data(), 3, 3, 2, f.qraux.data(), y.data(), nullptr, qty.data(), b.data(), nullptr,
             nullptr, 100, &info);
    EXPECT_EQ(info, 2);
}
