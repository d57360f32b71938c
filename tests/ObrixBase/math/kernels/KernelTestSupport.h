// Helpers of the factorisation kernel tests: column-major matrices, random and structured
// inputs, norms for scaled residuals, and the LAPACK routines used as the reference.
#ifndef OBRIX_TESTS_MATH_KERNELS_KERNELTESTSUPPORT_H
#define OBRIX_TESTS_MATH_KERNELS_KERNELTESTSUPPORT_H

#include <random>
#include <vector>

#include <gtest/gtest.h>

#ifdef OBRIX_TEST_HAVE_LAPACK
extern "C" {
void dgetrf_(const int* m, const int* n, double* a, const int* lda, int* ipiv, int* info);
void dgecon_(const char* norm, const int* n, const double* a, const int* lda, const double* anorm,
             double* rcond, double* work, int* iwork, int* info);
void dspcon_(const char* uplo, const int* n, const double* ap, const int* ipiv, const double* anorm,
             double* rcond, double* work, int* iwork, int* info);
void dsptrf_(const char* uplo, const int* n, double* ap, int* ipiv, int* info);
}
#define OBRIX_REQUIRE_LAPACK() (void)0
#else
#define OBRIX_REQUIRE_LAPACK()                                                                     \
    GTEST_SKIP() << "LAPACK was not found when this test was built; install it with "              \
                    "scripts/deps.sh test to compare the kernels with it"
#endif

namespace obrix::test {

/// Column-major rows x cols matrix with leading dimension rows.
struct Mat {
    int rows = 0, cols = 0;
    std::vector<double> v;
    Mat(int r, int c, double fill = 0.0) : rows(r), cols(c), v(size_t(r) * c, fill) {}
    double& operator()(int i, int j) { return v[i + size_t(j) * rows]; }
    double operator()(int i, int j) const { return v[i + size_t(j) * rows]; }
    double* data() { return v.data(); }
    const double* data() const { return v.data(); }
    int ld() const { return rows > 0 ? rows : 1; }
};

Mat randomMat(std::mt19937& rng, int rows, int cols);
/// Symmetric matrix with the given eigenvalues (Q diag(lambda) Q' with a random orthogonal Q).
Mat withEigenvalues(std::mt19937& rng, const std::vector<double>& lambda);
/// A'A for a random A of the given rank: positive semidefinite of order n.
Mat gram(std::mt19937& rng, int n, int rank);
Mat multiply(const Mat& a, const Mat& b);
Mat transpose(const Mat& a);
Mat identity(int n);
/// Largest absolute column sum.
double norm1(const Mat& a);
/// |a - b|_1.
double diffNorm1(const Mat& a, const Mat& b);
/// Upper triangle of a symmetric matrix packed column by column.
std::vector<double> packUpper(const Mat& a);
Mat unpackSymmetric(const std::vector<double>& ap, int n);
/// Machine epsilon.
constexpr double kEps = 2.220446049250313e-16;
/// The sizes every kernel is tried on.
inline const std::vector<int> kSizes = {0, 1, 2, 3, 5, 10, 50, 130};

} // namespace obrix::test

#endif
