// Packed symmetric indefinite kernels: solves, determinant, inertia and inverse on matrices
// of known eigenvalues, including ones that force 2x2 pivots, and the condition estimate
// against LAPACK's for the same packed matrix.
#include <cmath>

#include <gtest/gtest.h>

#include "ObrixBase/math/kernels/kernels.h"
#include "tests/ObrixBase/math/kernels/KernelTestSupport.h"

namespace k = qvObrixBase::kernels;
using namespace obrix::test;

namespace {

// Eigenvalues alternating in sign and spread over the given number of decades; with
// zeroDiagonal the matrix is rebuilt with a zero diagonal so that 1x1 pivots are useless.
std::vector<double> spread(int n, double decades) {
    std::vector<double> l(n);
    for (int i = 0; i < n; ++i)
        l[i] = (i % 3 == 1 ? -1.0 : 1.0) * std::pow(10.0, -decades * i / std::max(1, n - 1));
    return l;
}

} // namespace

TEST(SymmetricKernels, SolveDeterminantInertiaAndInverseMatchTheEigenvalues) {
    std::mt19937 rng(21);
    for (int n : kSizes) {
        std::vector<double> lambda = spread(n, 6.0);
        Mat a = withEigenvalues(rng, lambda);
        std::vector<double> ap = packUpper(a);
        std::vector<int> kpvt(n + 1);
        std::vector<double> work(n + 1);
        int info = -1;
        k::dspfa(ap.data(), n, kpvt.data(), &info);
        EXPECT_EQ(info, 0);
        Mat b = randomMat(rng, n, 1), x = b;
        k::dspsl(ap.data(), n, kpvt.data(), x.data());
        double cond = 1e6;
        EXPECT_LE(diffNorm1(multiply(a, x), b), 30 * n * norm1(a) * norm1(x) * kEps + 1e-300);

        double det[2] = {0, 0};
        int inert[3] = {-1, -1, -1};
        k::dspdi(ap.data(), n, kpvt.data(), det, inert, work.data(), 111);
        double logDet = 0.0, sign = 1.0;
        int pos = 0;
        for (double v : lambda) {
            logDet += std::log10(std::fabs(v));
            sign *= v < 0 ? -1.0 : 1.0;
            pos += v > 0;
        }
        EXPECT_NEAR(std::log10(std::fabs(det[0])) + det[1], logDet, 1e-6) << n;
        EXPECT_EQ(det[0] < 0 ? -1.0 : 1.0, sign);
        EXPECT_EQ(inert[0], pos);
        EXPECT_EQ(inert[1], n - pos);
        EXPECT_EQ(inert[2], 0);
        Mat inv = unpackSymmetric(ap, n);
        EXPECT_LE(diffNorm1(multiply(a, inv), identity(n)), 30 * n * cond * kEps) << n;
    }
}

TEST(SymmetricKernels, ZeroDiagonalForcesTwoByTwoPivotsThatStillSolve) {
    std::mt19937 rng(22);
    for (int n : {2, 4, 7, 40}) {
        Mat a = randomMat(rng, n, n);
        for (int j = 0; j < n; ++j) {
            a(j, j) = 0.0;
            for (int i = 0; i < j; ++i)
                a(j, i) = a(i, j);
        }
        std::vector<double> ap = packUpper(a);
        std::vector<int> kpvt(n);
        std::vector<double> work(n);
        int info = 0;
        k::dspfa(ap.data(), n, kpvt.data(), &info);
        EXPECT_EQ(info, 0);
        EXPECT_LT(kpvt[n - 1], 0) << "a zero diagonal must start with a 2x2 block";
        Mat b = randomMat(rng, n, 1), x = b;
        k::dspsl(ap.data(), n, kpvt.data(), x.data());
        Mat r = multiply(a, x);
        EXPECT_LE(diffNorm1(r, b), 1e-9 * norm1(a) * norm1(x));
        double det[2];
        int inert[3];
        k::dspdi(ap.data(), n, kpvt.data(), det, inert, work.data(), 1);
        EXPECT_LE(diffNorm1(multiply(a, unpackSymmetric(ap, n)), identity(n)), 1e-8);
    }
}

TEST(SymmetricKernels, ConditionEstimateSeesIllConditioningAndZeroPivotsGiveZero) {
    // Nine decades between the extreme eigenvalues: the reciprocal condition is 1e-9 in the
    // 2-norm and at most n times that in the 1-norm; an estimate stays within 10 of it.
    std::mt19937 rng(23);
    for (int n : {3, 10, 50}) {
        Mat a = withEigenvalues(rng, spread(n, 9.0));
        std::vector<double> ap = packUpper(a), z(n);
        std::vector<int> kpvt(n);
        double rcond = -1.0;
        k::dspco(ap.data(), n, kpvt.data(), &rcond, z.data());
        EXPECT_GT(rcond, 0.0) << n;
        EXPECT_LE(rcond, 10 * n * 1e-9) << n;
#ifdef OBRIX_TEST_HAVE_LAPACK
        // LAPACK's estimate for the same packed matrix agrees within a small factor.
        std::vector<double> lp = packUpper(a), work(2 * n);
        std::vector<int> ipiv(n), iwork(n);
        int info = 0;
        double anorm = norm1(a), ref = 0.0;
        dsptrf_("U", &n, lp.data(), ipiv.data(), &info);
        dspcon_("U", &n, lp.data(), ipiv.data(), &anorm, &ref, work.data(), iwork.data(), &info);
        EXPECT_LT(std::fabs(std::log10(rcond / ref)), 1.0) << n << " " << rcond << " " << ref;
#endif
    }
    // A zero row and column: a zero 1x1 block, reported by index, with rcond 0.
    std::vector<double> ap = {2, 0, 0, 1, 0, 3};
    std::vector<int> kpvt(3);
    std::vector<double> z(3);
    double rcond = 1.0;
    k::dspco(ap.data(), 3, kpvt.data(), &rcond, z.data());
    EXPECT_EQ(rcond, 0.0);
    ap = {2, 0, 0, 1, 0, 3};
    int info = 0;
    k::dspfa(ap.data(), 3, kpvt.data(), &info);
    EXPECT_EQ(info, 2);
}
