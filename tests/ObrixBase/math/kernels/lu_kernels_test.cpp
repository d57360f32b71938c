// LU kernels: factors and pivots against LAPACK, solves in both directions, determinant,
// inverse and condition estimate, each against LAPACK's LU on the same matrices.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "ObrixBase/math/kernels/kernels.h"
#include "tests/ObrixBase/math/kernels/KernelTestSupport.h"

namespace k = qvObrixBase::kernels;
using namespace obrix::test;

namespace {

#ifdef OBRIX_TEST_HAVE_LAPACK
// The upper triangle, U of a packed LU: only the LAPACK comparison reads the factors whole.
Mat upper(const Mat& a) {
    Mat u(a.rows, a.cols);
    for (int j = 0; j < a.cols; ++j)
        for (int i = 0; i <= j && i < a.rows; ++i)
            u(i, j) = a(i, j);
    return u;
}
#endif

// A known spread of singular values: eigenvalues of a symmetric matrix, alternating in sign,
// from 1 down to 1e-8.
std::vector<double> spreadSpectrum(int n) {
    std::vector<double> lambda(n);
    for (int i = 0; i < n; ++i)
        lambda[i] = (i % 2 ? -1.0 : 1.0) * std::pow(1e-8, n > 1 ? double(i) / (n - 1) : 0.0);
    return lambda;
}

// Past the panel path the factorisation halves recursively; 170 reaches it.
std::vector<int> luSizes() {
    std::vector<int> sizes = kSizes;
    sizes.push_back(170);
    return sizes;
}

} // namespace

TEST(LuKernels, PivotsAndFactorsLikeLapack) {
    OBRIX_REQUIRE_LAPACK();
#ifdef OBRIX_TEST_HAVE_LAPACK
    std::mt19937 rng(11);
    for (int n : luSizes()) {
        Mat a = randomMat(rng, n, n), lu = a, l = a;
        std::vector<int> ipvt(n + 1), ref(n + 1);
        int info = -1, ld = l.ld(), lapackInfo = 0;
        k::dgefa(lu.data(), lu.ld(), n, ipvt.data(), &info);
        if (n > 0)
            dgetrf_(&n, &n, l.data(), &ld, ref.data(), &lapackInfo);
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(ipvt[i], ref[i]) << "n " << n << " step " << i;
        EXPECT_LE(diffNorm1(upper(l), upper(lu)), 30 * n * norm1(a) * kEps + 1e-300) << n;
    }
#endif
}

// A wrong interchange or multiplier anywhere in the factor shows in one of the two solves.
TEST(LuKernels, SolvesBothSystemsWithSmallScaledResiduals) {
    std::mt19937 rng(12);
    for (int n : luSizes()) {
        for (int job : {0, 1}) {
            Mat a = randomMat(rng, n, n), lu = a;
            std::vector<int> ipvt(n + 1);
            int info = 0;
            k::dgefa(lu.data(), lu.ld(), n, ipvt.data(), &info);
            Mat b = randomMat(rng, n, 1), x = b;
            k::dgesl(lu.data(), lu.ld(), n, ipvt.data(), x.data(), job);
            Mat r = multiply(job == 0 ? a : transpose(a), x);
            EXPECT_LE(diffNorm1(r, b), 30 * n * norm1(a) * norm1(x) * kEps + 1e-300)
                << n << " job " << job;
        }
    }
}

TEST(LuKernels, DeterminantInverseAndConditionMatchTheKnownSpectrum) {
    std::mt19937 rng(13);
    for (int n : {1, 2, 5, 10, 50, 130}) {
        const std::vector<double> lambda = spreadSpectrum(n);
        Mat a = withEigenvalues(rng, lambda), lu = a;
        std::vector<int> ipvt(n);
        std::vector<double> z(n);
        double rcond = -1.0, det[2] = {0, 0};
        k::dgeco(lu.data(), lu.ld(), n, ipvt.data(), &rcond, z.data());
        k::dgedi(lu.data(), lu.ld(), n, ipvt.data(), det, z.data(), 11);
        // Compared as sign and decimal logarithm: the product itself underflows.
        double logDet = 0.0, sign = 1.0;
        for (double v : lambda) {
            logDet += std::log10(std::fabs(v));
            sign *= v < 0 ? -1.0 : 1.0;
        }
        EXPECT_NEAR(std::log10(std::fabs(det[0])) + det[1], logDet, 1e-6) << n;
        EXPECT_EQ(det[0] < 0 ? -1.0 : 1.0, sign);
        EXPECT_TRUE(std::fabs(det[0]) >= 1.0 && std::fabs(det[0]) < 10.0) << det[0];
        Mat prod = multiply(a, lu);
        double cond = n > 1 ? 1e8 : 1.0;
        EXPECT_LE(diffNorm1(prod, identity(n)), 30 * n * cond * kEps) << n;
        // The estimate sees the ill-conditioning: the true reciprocal condition is 1e-8 in
        // the 2-norm and at most n times that in the 1-norm; an estimate is within 10 of it.
        EXPECT_LE(rcond, 10 * n / cond) << n;
#ifdef OBRIX_TEST_HAVE_LAPACK
        // LAPACK estimates the same quantity: the two agree within a small factor.
        Mat l = a;
        std::vector<int> piv(n), iwork(n);
        std::vector<double> work(4 * n);
        double anorm = norm1(a), ref = 0.0;
        int ld = l.ld(), info = 0;
        dgetrf_(&n, &n, l.data(), &ld, piv.data(), &info);
        dgecon_("1", &n, l.data(), &ld, &anorm, &ref, work.data(), iwork.data(), &info);
        EXPECT_LT(std::fabs(std::log10(rcond / ref)), 1.0) << n << " " << rcond << " " << ref;
#endif
    }
}

TEST(LuKernels, SingularAndNonFiniteInputAreReportedNotHidden) {
    // An exact zero pivot: the last one met is reported, the condition estimate is zero and
    // so is the determinant.
    double a[9] = {1, 2, 3, 2, 4, 6, 1, 0, 1};
    double lu[9];
    std::copy(a, a + 9, lu);
    int ipvt[3], info = 0;
    double z[3], rcond = 1.0, det[2];
    k::dgeco(lu, 3, 3, ipvt, &rcond, z);
    EXPECT_EQ(rcond, 0.0);
    k::dgefa(std::copy(a, a + 9, lu) - 9, 3, 3, ipvt, &info);
    EXPECT_EQ(info, 2);
    k::dgedi(lu, 3, 3, ipvt, det, z, 10);
    EXPECT_EQ(det[0], 0.0);

    // NaN and infinity flow through without hanging the determinant's normalisation.
    const double inf = std::numeric_limits<double>::infinity();
    double bad[4] = {inf, 1, 1, 1};
    k::dgefa(bad, 2, 2, ipvt, &info);
    k::dgedi(bad, 2, 2, ipvt, det, z, 10);
    EXPECT_FALSE(std::isfinite(det[0]));
    double nan[4] = {std::nan(""), 1, 1, 1};
    k::dgeco(nan, 2, 2, ipvt, &rcond, z);
    EXPECT_EQ(rcond, 0.0);
}
