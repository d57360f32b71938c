// Singular value decomposition kernel: X = U S V' with orthogonal U and V for every job,
// economy vectors, the same values without vectors; NaN input ends at the iteration limit.
#include <cmath>
#include <utility>

#include <gtest/gtest.h>

#include "ObrixBase/math/kernels/kernels.h"
#include "tests/ObrixBase/math/kernels/KernelTestSupport.h"

namespace k = qvObrixBase::kernels;
using namespace obrix::test;

TEST(SvdKernels, VectorsReconstructAndValuesDecrease) {
    // Orthogonal U and V with U S V' = A pin the values; the values-only job must then give
    // the same ones to rounding.
    std::mt19937 rng(51);
    for (auto [n, p] : {std::pair{1, 1}, {3, 2}, {2, 3}, {5, 5}, {12, 7}, {7, 12}, {60, 40}}) {
        const Mat a = randomMat(rng, n, p);
        std::vector<double> valuesWithVectors;
        for (int job : {11, 21, 0}) {
            Mat x = a;
            int mn = std::min(n, p), ncu = job / 10 == 2 ? mn : n;
            std::vector<double> s(std::min(n + 1, p)), e(p), work(n);
            Mat u(n, ncu), v(p, p);
            int info = -1;
            k::dsvdc(x.data(), n, n, p, s.data(), e.data(), u.data(), n, v.data(), p, work.data(),
                     job, &info);
            ASSERT_EQ(info, 0);
            for (int i = 0; i < mn; ++i) // decreasing and never negative
                EXPECT_GE(s[i], i + 1 < mn ? s[i + 1] : 0.0);
            if (job == 0) {
                for (int i = 0; i < mn; ++i)
                    EXPECT_NEAR(s[i], valuesWithVectors[i], 30 * std::max(n, p) * kEps * s[0]);
                continue;
            }
            valuesWithVectors = s;
            Mat us(n, p);
            for (int j = 0; j < mn; ++j)
                for (int i = 0; i < n; ++i)
                    us(i, j) = u(i, j) * s[j];
            double tol = 30 * std::max(n, p) * kEps;
            EXPECT_LE(diffNorm1(multiply(us, transpose(v)), a), tol * norm1(a)) << n << p;
            EXPECT_LE(diffNorm1(multiply(transpose(u), u), identity(ncu)), tol);
            EXPECT_LE(diffNorm1(multiply(transpose(v), v), identity(p)), tol);
        }
    }
}

TEST(SvdKernels, RankDeficientAndGradedInputKeepTheirSmallValues) {
    std::mt19937 rng(52);
    // Known singular values 1 .. 1e-12 and two exact zeros from repeated columns.
    int n = 20;
    std::vector<double> lambda(n);
    for (int i = 0; i < n; ++i)
        lambda[i] = std::pow(10.0, -12.0 * i / (n - 1));
    Mat a = withEigenvalues(rng, lambda);
    std::vector<double> s(n), e(n), work(n);
    int info = -1;
    k::dsvdc(a.data(), n, n, n, s.data(), e.data(), nullptr, 1, nullptr, 1, work.data(), 0, &info);
    EXPECT_EQ(info, 0);
    for (int i = 0; i < n; ++i)
        EXPECT_NEAR(s[i], lambda[i], 1e-14 * 30) << i;

    Mat b = randomMat(rng, 6, 4);
    for (int i = 0; i < 6; ++i)
        b(i, 3) = b(i, 0);
    std::vector<double> sb(4), eb(4), wb(6);
    k::dsvdc(b.data(), 6, 6, 4, sb.data(), eb.data(), nullptr, 1, nullptr, 1, wb.data(), 0, &info);
    EXPECT_EQ(info, 0);
    EXPECT_LT(sb[3], 1e-14 * sb[0]);
}

TEST(Level1Kernels, NormStaysInRangeWhereTheSquaresWouldNot) {
    for (double scale : {1e-200, 1.0, 1e200}) {
        double x[3] = {3 * scale, 0.0, 4 * scale};
        EXPECT_NEAR(k::dnrm2(3, x, 1) / (5 * scale), 1.0, 1e-15) << scale;
        EXPECT_NEAR(k::dnrm2(2, x, 2) / (5 * scale), 1.0, 1e-15) << scale;
    }
    double nan[2] = {1.0, std::nan("")};
    EXPECT_TRUE(std::isnan(k::dnrm2(2, nan, 1)));
}

TEST(AllKernels, ReturnOnNanInput) {
    // Every factorisation gets a matrix with a NaN in it and must simply come back; the SVD
    // says it gave up.
    const int n = 6;
    std::mt19937 rng(53);
    Mat a = randomMat(rng, n, n);
    a(2, 3) = a(3, 2) = std::nan("");
    std::vector<int> piv(n, 0);
    std::vector<double> w(n), s(n + 1), e(n), det(2), b(n, 1.0), x(n, 1.0);
    int info = 0, inert[3];
    double rcond = 0.0;
    Mat m = a;
    k::dgeco(m.data(), n, n, piv.data(), &rcond, w.data());
    k::dgedi(m.data(), n, n, piv.data(), det.data(), w.data(), 11);
    std::vector<double> ap = packUpper(a);
    k::dspco(ap.data(), n, piv.data(), &rcond, w.data());
    k::dspdi(ap.data(), n, piv.data(), det.data(), inert, w.data(), 111);
    m = a;
    k::dchdc(m.data(), n, n, w.data(), piv.data(), 1, &info);
    k::dchud(m.data(), n, n, x.data(), nullptr, 1, 0, nullptr, nullptr, w.data(), s.data());
    k::dchdd(m.data(), n, n, x.data(), nullptr, 1, 0, nullptr, nullptr, w.data(), s.data(), &info);
    m = a;
    std::fill(piv.begin(), piv.end(), 0);
    k::dqrdc(m.data(), n, n, n, s.data(), piv.data(), w.data(), 1);
    k::dqrsl(m.data(), n, n, n, s.data(), b.data(), x.data(), x.data(), x.data(), nullptr, nullptr,
             11100, &info);
    m = a;
    Mat u(n, n), v(n, n);
    k::dsvdc(m.data(), n, n, n, s.data(), e.data(), u.data(), n, v.data(), n, w.data(), 11, &info);
    EXPECT_GT(info, 0);
}
