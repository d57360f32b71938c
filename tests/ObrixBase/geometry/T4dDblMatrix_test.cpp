#include "ObrixBase/geometry/T4dDblMatrix.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <numbers>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "tests/ObrixBase/geometry/GeometryTestUtil.h"

namespace {

T4dDblMatrix naiveProduct(const T4dDblMatrix& a, const T4dDblMatrix& b) {
    T4dDblMatrix r;
    for (short i = 0; i < 4; ++i)
        for (short j = 0; j < 4; ++j) {
            r(i, j) = 0.0;
            for (short k = 0; k < 4; ++k)
                r(i, j) += a(i, k) * b(k, j);
        }
    return r;
}

// The inversion steps as they stand: rows of eight doubles (matrix, then accumulator), whole-row
// swaps, every operation on every column, back substitution last column first.
T4dDblMatrix plainInverse(const T4dDblMatrix& m) {
    double a[4][8];
    for (short i = 0; i < 4; ++i)
        for (short j = 0; j < 4; ++j) {
            a[i][j] = m(i, j);
            a[i][4 + j] = i == j ? 1.0 : 0.0;
        }
    for (int k = 0; k < 3; ++k) {
        int p = k;
        for (int i = k + 1; i < 4; ++i)
            if (a[i][k] * a[i][k] > a[p][k] * a[p][k])
                p = i;
        for (int j = 0; j < 8; ++j)
            std::swap(a[k][j], a[p][j]);
        for (int i = k + 1; i < 4; ++i) {
            const double f = a[i][k] / a[k][k];
            for (int j = 0; j < 8; ++j)
                a[i][j] -= f * a[k][j];
            a[i][k] = 0.0;
        }
    }
    for (int r = 0; r < 4; ++r) {
        const double d = a[r][r];
        for (int j = 0; j < 8; ++j)
            a[r][j] /= d;
        a[r][r] = 1.0;
    }
    for (int c = 3; c > 0; --c)
        for (int r = 0; r < c; ++r) {
            const double f = a[r][c];
            for (int j = 0; j < 8; ++j)
                a[r][j] -= f * a[c][j];
            a[r][c] = 0.0;
        }
    T4dDblMatrix r;
    for (short i = 0; i < 4; ++i)
        for (short j = 0; j < 4; ++j)
            r(i, j) = a[i][4 + j];
    return r;
}

bool sameBits(const T4dDblMatrix& a, const T4dDblMatrix& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool allFinite(const T4dDblMatrix& m) {
    for (short i = 0; i < 16; ++i)
        if (!std::isfinite(m(i / 4, i % 4)))
            return false;
    return true;
}

std::string printed(const T4dDblMatrix& m) {
    testing::internal::CaptureStdout();
    m.print(stdout);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

} // namespace

TEST(T4dDblMatrix, DefaultIsTheIdentityAndPrintsRowByRow) {
    EXPECT_EQ(T4dDblMatrix(), T4dDblMatrix::identity);
    EXPECT_EQ(printed(T4dDblMatrix()), "1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n");
    const T4dDblMatrix m(1.5, -2, 1e-7, 0, 0, 1, 0, 0, 0, 0, 1, 0, 123456789, 0, 0, 1);
    EXPECT_EQ(printed(m), "1.5 -2 1e-07 0\n0 1 0 0\n0 0 1 0\n1.23457e+08 0 0 1\n");
    EXPECT_EQ(&m(1, 2), &m[0][0] + 6);
}

TEST(T4dDblMatrix, ProductsMatchTheDefinitionAndAreSafeInPlace) {
    obrix::test::GeometryRandom rnd;
    const T4dDblMatrix a = rnd.matrix(), b = rnd.matrix(), ab = a * b;
    EXPECT_TRUE(ab.equivalent(naiveProduct(a, b), 1e-12));
    T4dDblMatrix c = a, d = b, e = a, f = b;
    EXPECT_EQ(c.setToProduct(c, b), ab);
    EXPECT_EQ(d.setToProduct(a, d), ab);
    EXPECT_EQ(e *= e, a * a);
    EXPECT_EQ(f.premultBy(a), ab);
    // Row vectors apply a first, then b.
    const T4dDblPoint p(1, 2, 3, 1);
    EXPECT_TRUE((p * ab).equivalent(p * a * b, 1e-9));
    EXPECT_EQ(a.transpose()(1, 3), a(3, 1));
}

TEST(T4dDblMatrix, InverseUndoesATranslationAndLetsASingularMatrixGoNonFinite) {
    EXPECT_EQ(T4dDblMatrix(T4dDblVector(1, 2, 3)).inverse(),
              T4dDblMatrix(T4dDblVector(-1, -2, -3)));
    // No singularity test: a zero column comes out as infinities or NaNs, silently.
    T4dDblMatrix singular = obrix::test::GeometryRandom().matrix();
    for (short i = 0; i < 4; ++i)
        singular(i, 0) = 0.0;
    EXPECT_FALSE(allFinite(singular.invertIt()));
}

TEST(T4dDblMatrix, InverseRoundsExactlyAsThePlainStepsSignedZerosIncluded) {
    obrix::test::GeometryRandom rnd;
    int checked = 0;
    for (int n = 0; n < 3000; ++n) {
        T4dDblMatrix m;
        switch (n % 3) {
        case 0: // general
            m = rnd.matrix();
            break;
        case 1: // small integers: equal squares in a pivot column, exact zeros, negative pivots
            for (short i = 0; i < 16; ++i)
                m(i / 4, i % 4) = std::floor(rnd.uniform(-2.0, 3.0));
            break;
        default: // mirrored, scaled, rotated and shifted transforms, rows shuffled
            m.setToAxisRotate(n % 2 ? T4dDblVector(0, 0, 1) : rnd.unitVector(),
                              std::floor(rnd.uniform(0.0, 4.0)) * std::numbers::pi / 2);
            for (short i = 0; i < 3; ++i)
                for (short j = 0; j < 4; ++j)
                    m(i, j) *= (n / 3) % 4 == i ? -2.0 : 1.0;
            if (n % 5 == 0)
                m.postmultBy(T4dDblVector(std::floor(rnd.uniform(-3.0, 3.0)), 0, 1.5));
            for (short j = 0; j < 4; ++j)
                std::swap(m(static_cast<short>(n % 4), j), m(static_cast<short>(n / 7 % 4), j));
            break;
        }
        const T4dDblMatrix expected = plainInverse(m);
        if (!allFinite(expected))
            continue;
        ++checked;
        ASSERT_TRUE(sameBits(m.inverse(), expected)) << n;
    }
    EXPECT_GT(checked, 2500);

    // Where squares overflow or fall into the subnormals, different magnitudes give equal
    // squares: the search must still compare squares and keep the upper row on such ties.
    for (const double scale : {0x1p600, 0x1p-540})
        for (int n = 0; n < 300; ++n) {
            T4dDblMatrix m = rnd.matrix();
            for (short i = 0; i < 16; ++i)
                m(i / 4, i % 4) *= n % 2 ? scale : (i / 4 == n % 4 ? scale : 1.0);
            const T4dDblMatrix expected = plainInverse(m);
            if (!allFinite(expected))
                continue;
            ASSERT_TRUE(sameBits(m.inverse(), expected)) << scale << " " << n;
        }
}

TEST(T4dDblMatrix, AxisRotationIsOrthonormalWithUnitDeterminant) {
    obrix::test::GeometryRandom rnd;
    for (int n = 0; n < 100; ++n) {
        T4dDblMatrix r;
        r.setToAxisRotate(rnd.unitVector(), rnd.uniform(-7.0, 7.0));
        EXPECT_TRUE((r * r.transpose()).equivalent(T4dDblMatrix::identity, 1e-14));
        EXPECT_NEAR(r.det3x3(), 1.0, 1e-14);
    }
    T4dDblMatrix quarter;
    quarter.setToAxisRotate(T4dDblVector(0, 0, 1), std::numbers::pi / 2);
    EXPECT_TRUE((T4dDblPoint(1, 0, 0, 1) * quarter).equivalent(T4dDblPoint(0, 1, 0, 1), 1e-15));

    // axisRotateIt turns the row vector before the transform already there.
    const T4dDblMatrix shift = T4dDblVector(5, 0, 0);
    T4dDblMatrix m = shift;
    m.axisRotateIt(T4dDblVector(0, 0, 1), std::numbers::pi / 2);
    EXPECT_TRUE(m.equivalent(quarter * shift, 0.0));
    m = rnd.matrix();
    const T4dDblMatrix before = m;
    EXPECT_EQ(std::memcmp(&m.axisRotateIt(T4dDblVector(1, 0, 0), 0.0), &before, sizeof m), 0);
    EXPECT_EQ(T4dDblMatrix().setToAxisRotate(T4dDblVector(1, 2, 3), 0.0), T4dDblMatrix::identity);
}

TEST(T4dDblMatrix, ComparisonAndExchangeFormats) {
    T4dDblMatrix a, b;
    b(2, 1) = 0.25;
    EXPECT_TRUE(a.equivalent(b, 0.25) && !a.equivalent(b, 0.2) && !a.equivalent(b, 0.0));

    float f[4][4];
    const double d[4][4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 0.1}};
    T4dDblMatrix m;
    m.setFromDouble(d).copyToFloat(f);
    EXPECT_EQ(f[1][2], 7.0f);
    EXPECT_EQ(m.setFromFloat(f)(3, 3), static_cast<double>(0.1f));
}
