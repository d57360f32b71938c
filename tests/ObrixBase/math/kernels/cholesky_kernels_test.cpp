// Cholesky kernels: pivoted factors reproduce the permuted matrix, semidefinite matrices stop
// at their rank, and updates, downdates and column shifts agree with factoring the changed
// problem afresh (the factor with a positive diagonal is unique).
#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

#include "ObrixBase/math/kernels/kernels.h"
#include "tests/ObrixBase/math/kernels/KernelTestSupport.h"

namespace k = qvObrixBase::kernels;
using namespace obrix::test;

namespace {

Mat upperOf(const Mat& a, int order) {
    Mat r(order, order);
    for (int j = 0; j < order; ++j)
        for (int i = 0; i <= j; ++i)
            r(i, j) = a(i, j);
    return r;
}

Mat permuted(const Mat& a, const std::vector<int>& jpvt, int order) {
    Mat p(order, order);
    for (int j = 0; j < order; ++j)
        for (int i = 0; i < order; ++i)
            p(i, j) = a(jpvt[i] - 1, jpvt[j] - 1);
    return p;
}

Mat choleskyOf(const Mat& a) {
    Mat r = a;
    std::vector<double> work(a.rows);
    int info = 0;
    k::dchdc(r.data(), r.ld(), a.rows, work.data(), nullptr, 0, &info);
    EXPECT_EQ(info, a.rows);
    Mat u = upperOf(r, a.rows);
    EXPECT_LE(diffNorm1(multiply(transpose(u), u), a), 1e-12 * norm1(a));
    return u;
}

} // namespace

TEST(CholeskyKernels, PivotedFactorsReproduceThePermutedMatrix) {
    std::mt19937 rng(31);
    for (int n : kSizes) {
        Mat a = gram(rng, n, n + 2), r = a;
        // The strict lower triangle is not the kernel's: it must survive untouched.
        for (int j = 0; j < n; ++j)
            for (int i = j + 1; i < n; ++i)
                r(i, j) = 777.0;
        std::vector<int> jpvt(n, 0);
        std::vector<double> work(n);
        int info = -1;
        k::dchdc(r.data(), r.ld(), n, work.data(), jpvt.data(), 1, &info);
        EXPECT_EQ(info, n);
        Mat rr = upperOf(r, n);
        EXPECT_LE(diffNorm1(multiply(transpose(rr), rr), permuted(a, jpvt, n)),
                  30 * n * norm1(a) * kEps + 1e-300);
        for (int i = 0; i + 1 < n; ++i)
            EXPECT_GE(rr(i, i), rr(i + 1, i + 1) * (1 - 1e-12)) << "pivots in decreasing order";
        for (int j = 0; j < n; ++j)
            for (int i = j + 1; i < n; ++i)
                ASSERT_EQ(r(i, j), 777.0);
    }
    // Columns marked initial (positive) lead and final (negative) ones close, in order.
    const int n = 8;
    Mat a = gram(rng, n, n), r = a;
    std::vector<int> jpvt = {0, -1, 0, 1, 0, 0, 1, 0};
    std::vector<double> work(n);
    int info = 0;
    k::dchdc(r.data(), n, n, work.data(), jpvt.data(), 1, &info);
    EXPECT_EQ(info, n);
    EXPECT_EQ(std::vector<int>({jpvt[0], jpvt[1], jpvt[n - 1]}), std::vector<int>({4, 7, 2}));
    Mat rr = upperOf(r, n);
    EXPECT_LE(diffNorm1(multiply(transpose(rr), rr), permuted(a, jpvt, n)), 1e-12 * norm1(a));
}

TEST(CholeskyKernels, SolveAgreesWithPlainSweepsAtEveryLengthAndDividesAtTheExtremes) {
    // Every order up to 40 walks each column length through the four- and eight-wide parts
    // and their tails; the factor sits in a wider array, as in a partial solve.
    std::mt19937 rng(37);
    std::uniform_real_distribution<double> u(-1, 1);
    for (int n = 1; n <= 40; ++n) {
        Mat r(n + 3, n), b = randomMat(rng, n, 1);
        for (int j = 0; j < n; ++j) {
            for (int i = 0; i < j; ++i)
                r(i, j) = u(rng) / n;
            r(j, j) = 1.5 + u(rng) / 2;
        }
        std::vector<double> ref(b.v), x(b.v);
        for (int k = 0; k < n; ++k) {
            for (int i = 0; i < k; ++i)
                ref[k] -= r(i, k) * ref[i];
            ref[k] /= r(k, k);
        }
        for (int k = n - 1; k >= 0; --k) {
            ref[k] /= r(k, k);
            for (int i = 0; i < k; ++i)
                ref[i] -= ref[k] * r(i, k);
        }
        k::dposl(r.data(), r.ld(), n, x.data());
        for (int i = 0; i < n; ++i)
            ASSERT_NEAR(x[i], ref[i], 1e-13 * (1 + std::fabs(ref[i]))) << n << " " << i;
    }
    // Diagonals whose reciprocals overflow or fall below the normal range still divide.
    const double cases[][2] = {{1e-310, 1e-300}, {1.7e308, 1e300}, {5e-324, 0.0}, {2.0, 3.0}};
    for (const auto& c : cases) {
        double d = c[0], x = c[1];
        k::dposl(&d, 1, 1, &x);
        EXPECT_EQ(x, c[1] / d / d) << d;
    }
}

TEST(CholeskyKernels, SemidefiniteMatricesStopAtTheirRank) {
    // At least the rank factors, and the factored part reproduces.
    std::mt19937 rng(33);
    int n = 30, rank = 12, info = -1;
    Mat g = gram(rng, n, rank), r = g;
    std::vector<int> piv(n, 0);
    std::vector<double> w(n);
    k::dchdc(r.data(), n, n, w.data(), piv.data(), 1, &info);
    EXPECT_GE(info, rank);
    Mat rr(info, n);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < info && i <= j; ++i)
            rr(i, j) = r(i, j);
    Mat lead = multiply(transpose(rr), rr);
    Mat p = permuted(g, piv, n);
    for (int j = 0; j < rank; ++j)
        for (int i = 0; i < rank; ++i)
            EXPECT_NEAR(lead(i, j), p(i, j), 1e-10 * norm1(g));
}

TEST(CholeskyKernels, UpdatesAndDowndatesFollowTheLeastSquaresProblem) {
    // Rows are added one by one to an empty factor with the data column y; R b = z must
    // solve the normal equations and rho be the residual norm. Then they are removed again.
    std::mt19937 rng(34);
    int m = 25, p = 6;
    Mat x = randomMat(rng, m, p), y = randomMat(rng, m, 1);
    Mat r(p, p), z(p, 1);
    double rho = 0.0;
    std::vector<double> c(p), s(p), row(p);
    auto check = [&](int rows) {
        Mat xr(rows, p), yr(rows, 1);
        for (int i = 0; i < rows; ++i) {
            for (int j = 0; j < p; ++j)
                xr(i, j) = x(i, j);
            yr(i, 0) = y(i, 0);
        }
        Mat ata = multiply(transpose(xr), xr);
        Mat b = z;
        for (int j = p - 1; j >= 0; --j) {
            for (int l = j + 1; l < p; ++l)
                b(j, 0) -= r(j, l) * b(l, 0);
            b(j, 0) /= r(j, j);
        }
        Mat lhs = multiply(ata, b), rhs = multiply(transpose(xr), yr);
        EXPECT_LE(diffNorm1(lhs, rhs), 1e-10 * norm1(ata) * norm1(b)) << rows;
        Mat res = multiply(xr, b);
        double ss = 0;
        for (int i = 0; i < rows; ++i)
            ss += (yr(i, 0) - res(i, 0)) * (yr(i, 0) - res(i, 0));
        EXPECT_NEAR(rho, std::sqrt(ss), 1e-10) << rows;
        EXPECT_LE(diffNorm1(multiply(transpose(r), r), ata), 1e-12 * norm1(ata) * rows);
        for (int j = 0; j < p; ++j)
            EXPECT_GE(r(j, j), 0.0);
    };
    for (int i = 0; i < m; ++i) {
        for (int j = 0; j < p; ++j)
            row[j] = x(i, j);
        k::dchud(r.data(), p, p, row.data(), z.data(), p, 1, &y(i, 0), &rho, c.data(), s.data());
        if (i + 1 >= p + 2)
            check(i + 1);
    }
    Mat full = r;
    for (int i = m - 1; i >= p + 2; --i) {
        for (int j = 0; j < p; ++j)
            row[j] = x(i, j);
        int info = -2;
        k::dchdd(r.data(), p, p, row.data(), z.data(), p, 1, &y(i, 0), &rho, c.data(), s.data(),
                 &info);
        EXPECT_EQ(info, 0);
        check(i);
    }
    // Removing a row that was never there makes R'R indefinite: refused, R unchanged.
    Mat before = r;
    std::vector<double> big(p, 100.0);
    int info = 0;
    k::dchdd(r.data(), p, p, big.data(), nullptr, p, 0, nullptr, nullptr, c.data(), s.data(),
             &info);
    EXPECT_EQ(info, -1);
    EXPECT_EQ(r.v, before.v);
}

TEST(CholeskyKernels, ColumnShiftsMatchRefactoringThePermutedMatrix) {
    std::mt19937 rng(35);
    int p = 7;
    Mat a = gram(rng, p, p + 3);
    for (int job : {1, 2}) {
        for (auto [kk, ll] : {std::pair{1, 7}, {2, 5}, {3, 4}, {6, 7}}) {
            Mat r = choleskyOf(a);
            std::vector<int> order(p);
            std::iota(order.begin(), order.end(), 1);
            if (job == 1)
                std::rotate(order.begin() + kk - 1, order.begin() + ll - 1, order.begin() + ll);
            else
                std::rotate(order.begin() + kk - 1, order.begin() + kk, order.begin() + ll);
            // z carries R's columns in the new order; the rotations turn it into the new R.
            Mat z(p, p);
            for (int j = 0; j < p; ++j)
                for (int i = 0; i < p; ++i)
                    z(i, j) = r(i, order[j] - 1);
            for (int j = 0; j < p; ++j)
                for (int i = j + 1; i < p; ++i)
                    r(i, j) = -5.0;
            std::vector<double> c(p), s(p);
            k::dchex(r.data(), p, p, kk, ll, z.data(), p, p, c.data(), s.data(), job);
            // Pure rotations fix each new row only up to its sign; R'R and the data follow.
            Mat got = upperOf(r, p);
            EXPECT_LE(diffNorm1(z, got), 1e-12 * norm1(a));
            for (int i = 0; i < p; ++i)
                if (got(i, i) < 0)
                    for (int j = 0; j < p; ++j)
                        got(i, j) = -got(i, j);
            Mat fresh = choleskyOf(permuted(a, order, p));
            EXPECT_LE(diffNorm1(got, fresh), 1e-12 * norm1(a)) << job << " " << kk << " " << ll;
            for (int j = 0; j < p; ++j)
                for (int i = j + 1; i < p; ++i)
                    ASSERT_EQ(r(i, j), -5.0);
        }
    }
}
