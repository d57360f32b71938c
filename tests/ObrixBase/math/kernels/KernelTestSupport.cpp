#include "tests/ObrixBase/math/kernels/KernelTestSupport.h"

#include <algorithm>
#include <cmath>

#include "ObrixBase/math/kernels/kernels.h"

namespace obrix::test {

Mat randomMat(std::mt19937& rng, int rows, int cols) {
    std::uniform_real_distribution<double> d(-1.0, 1.0);
    Mat a(rows, cols);
    for (double& x : a.v)
        x = d(rng);
    return a;
}

Mat multiply(const Mat& a, const Mat& b) {
    Mat c(a.rows, b.cols);
    for (int j = 0; j < b.cols; ++j)
        for (int l = 0; l < a.cols; ++l)
            for (int i = 0; i < a.rows; ++i)
                c(i, j) += a(i, l) * b(l, j);
    return c;
}

Mat transpose(const Mat& a) {
    Mat t(a.cols, a.rows);
    for (int j = 0; j < a.cols; ++j)
        for (int i = 0; i < a.rows; ++i)
            t(j, i) = a(i, j);
    return t;
}

Mat identity(int n) {
    Mat a(n, n);
    for (int i = 0; i < n; ++i)
        a(i, i) = 1.0;
    return a;
}

Mat withEigenvalues(std::mt19937& rng, const std::vector<double>& lambda) {
    int n = static_cast<int>(lambda.size());
    // Orthogonal Q from the QR factors of a random matrix.
    Mat q = randomMat(rng, n, n);
    std::vector<double> qraux(n), work(n);
    qvObrixBase::kernels::dqrdc(q.data(), q.ld(), n, n, qraux.data(), nullptr, work.data(), 0);
    Mat full = identity(n);
    for (int j = 0; j < n; ++j) {
        int info = 0;
        std::vector<double> col(&full(0, j), &full(0, j) + n);
        qvObrixBase::kernels::dqrsl(q.data(), q.ld(), n, n, qraux.data(), col.data(), &full(0, j),
                                    nullptr, nullptr, nullptr, nullptr, 10000, &info);
    }
    Mat d(n, n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            d(i, j) = full(i, j) * lambda[j];
    Mat a = multiply(d, transpose(full));
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < j; ++i)
            a(i, j) = a(j, i) = 0.5 * (a(i, j) + a(j, i));
    return a;
}

Mat gram(std::mt19937& rng, int n, int rank) {
    Mat b = randomMat(rng, rank, n);
    return multiply(transpose(b), b);
}

double norm1(const Mat& a) {
    double best = 0.0;
    for (int j = 0; j < a.cols; ++j) {
        double s = 0.0;
        for (int i = 0; i < a.rows; ++i)
            s += std::fabs(a(i, j));
        best = std::max(best, s);
    }
    return best;
}

double diffNorm1(const Mat& a, const Mat& b) {
    Mat d = a;
    for (size_t i = 0; i < d.v.size(); ++i)
        d.v[i] -= b.v[i];
    return norm1(d);
}

std::vector<double> packUpper(const Mat& a) {
    std::vector<double> ap;
    for (int j = 0; j < a.cols; ++j)
        for (int i = 0; i <= j; ++i)
            ap.push_back(a(i, j));
    return ap;
}

Mat unpackSymmetric(const std::vector<double>& ap, int n) {
    Mat a(n, n);
    size_t k = 0;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i, ++k)
            a(i, j) = a(j, i) = ap[k];
    return a;
}

} // namespace obrix::test
