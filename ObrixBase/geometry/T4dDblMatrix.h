// T4dDblMatrix: the homogeneous 4x4 transform of the geometry layer. Sixteen doubles in
// row-major order; points and vectors are row vectors multiplied on the left (p' = p·M), so a
// transform's translation lies in row 3 and a product A·B applies A first, then B.
// Every operation is allocation-free and every in-place form is safe on itself.
#ifndef OBRIX_GEOMETRY_T4DDBLMATRIX_H
#define OBRIX_GEOMETRY_T4DDBLMATRIX_H

#include <cstddef>
#include <cstdio>

#include "ObrixBase/ObrixExport.h"

class T4dDblVector;

/// A 4x4 matrix of doubles, element (r, c) stored at index 4r + c. A plain, trivially
/// copyable value class. No operation checks indices, reports an error or allocates.
class OBRIX_API T4dDblMatrix {
public:
    /// The identity matrix, set up when the library loads.
    static const T4dDblMatrix identity;

    /// The identity.
    constexpr T4dDblMatrix() noexcept
        : m_{{1.0, 0.0, 0.0, 0.0},
             {0.0, 1.0, 0.0, 0.0},
             {0.0, 0.0, 1.0, 0.0},
             {0.0, 0.0, 0.0, 1.0}} {}

    /// The sixteen elements, row by row.
    constexpr T4dDblMatrix(double m00, double m01, double m02, double m03, double m10, double m11,
                           double m12, double m13, double m20, double m21, double m22, double m23,
                           double m30, double m31, double m32, double m33) noexcept
        : m_{{m00, m01, m02, m03},
             {m10, m11, m12, m13},
             {m20, m21, m22, m23},
             {m30, m31, m32, m33}} {}

    /// Element (r, c); no range check.
    constexpr double& operator()(short r, short c) noexcept { return m_[r][c]; }
    /// Element (r, c); no range check.
    constexpr const double& operator()(short r, short c) const noexcept { return m_[r][c]; }

    /// The four elements of row r, in column order; no range check.
    constexpr double* operator[](std::size_t r) noexcept { return m_[r]; }
    /// The four elements of row r, in column order; no range check.
    constexpr const double* operator[](std::size_t r) const noexcept { return m_[r]; }

    /// 1 when all sixteen elements are exactly equal (0.0 equals -0.0, NaN equals nothing).
    constexpr int operator==(const T4dDblMatrix& m) const noexcept {
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                if (m_[i][j] != m.m_[i][j])
                    return 0;
        return 1;
    }
    /// The negation of ==.
    constexpr int operator!=(const T4dDblMatrix& m) const noexcept { return !(*this == m); }

    /// 1 when every element differs from its partner by at most tol (inclusive); elementwise,
    /// not a matrix norm, so tol = 0 is the same as ==.
    int equivalent(const T4dDblMatrix& m, double tol) const noexcept;

    /// Makes this the identity. Returns *this.
    constexpr T4dDblMatrix& setToIdentity() noexcept {
        *this = T4dDblMatrix();
        return *this;
    }

    /// Stores a·b (element (i, j) = sum over k of a(i, k)·b(k, j)); either operand may be
    /// *this. Returns *this.
    constexpr T4dDblMatrix& setToProduct(const T4dDblMatrix& a, const T4dDblMatrix& b) noexcept {
        // Formed in a local first: safe when *this is an operand, and the compiler keeps the
        // whole result in registers instead of storing through a pointer that may alias.
        double r[4][4];
        for (int i = 0; i < 4; ++i) {
            const double a0 = a.m_[i][0], a1 = a.m_[i][1], a2 = a.m_[i][2], a3 = a.m_[i][3];
            for (int j = 0; j < 4; ++j)
                r[i][j] = a0 * b.m_[0][j] + a1 * b.m_[1][j] + a2 * b.m_[2][j] + a3 * b.m_[3][j];
        }
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                m_[i][j] = r[i][j];
        return *this;
    }

    /// *this = *this·m: m is applied after this transform. Returns *this.
    constexpr T4dDblMatrix& postmultBy(const T4dDblMatrix& m) noexcept {
        return setToProduct(*this, m);
    }
    /// *this = *this·m, as postmultBy.
    constexpr T4dDblMatrix& operator*=(const T4dDblMatrix& m) noexcept {
        return setToProduct(*this, m);
    }
    /// *this = m·*this: m is applied before this transform. Returns *this.
    constexpr T4dDblMatrix& premultBy(const T4dDblMatrix& m) noexcept {
        return setToProduct(m, *this);
    }
    /// The product *this·m.
    constexpr T4dDblMatrix operator*(const T4dDblMatrix& m) const noexcept {
        T4dDblMatrix r;
        r.setToProduct(*this, m);
        return r;
    }

    /// The transposed copy.
    constexpr T4dDblMatrix transpose() const noexcept {
        T4dDblMatrix r(*this);
        r.transposeIt();
        return r;
    }
    /// Swaps (i, j) with (j, i) in place. Returns *this.
    constexpr T4dDblMatrix& transposeIt() noexcept {
        for (int i = 0; i < 4; ++i)
            for (int j = i + 1; j < 4; ++j) {
                const double t = m_[i][j];
                m_[i][j] = m_[j][i];
                m_[j][i] = t;
            }
        return *this;
    }

    /// The inverted copy; see invertIt.
    T4dDblMatrix inverse() const noexcept {
        T4dDblMatrix r(*this);
        r.invertIt();
        return r;
    }

    /// Inverts in place by Gauss-Jordan elimination with partial pivoting (the row with the
    /// largest square in the pivot column; ties keep the upper row). There is no singularity
    /// test: a singular matrix becomes infinities or NaNs and nothing is reported, so invert
    /// only transforms known to be regular. Returns *this.
    T4dDblMatrix& invertIt() noexcept;

    /// The determinant of the upper-left 3x3 block; row 3 and column 3 are ignored.
    constexpr double det3x3() const noexcept {
        return m_[0][0] * (m_[1][1] * m_[2][2] - m_[1][2] * m_[2][1]) -
               m_[0][1] * (m_[1][0] * m_[2][2] - m_[1][2] * m_[2][0]) +
               m_[0][2] * (m_[1][0] * m_[2][1] - m_[1][1] * m_[2][0]);
    }

    /// Makes this the rotation by `angle` radians about `axis` through the origin, in the
    /// row-vector form: p·R turns p counter-clockwise when looking down the axis towards the
    /// origin. The axis is used as given, so pass a unit vector. An angle of exactly 0 gives
    /// the identity. Returns *this.
    T4dDblMatrix& setToAxisRotate(const T4dDblVector& axis, double angle) noexcept;

    /// *this = R·*this with R the rotation of setToAxisRotate: the rotation acts on a row
    /// vector before the existing transform. An angle of exactly 0 leaves the matrix
    /// untouched. Returns *this.
    T4dDblMatrix& axisRotateIt(const T4dDblVector& axis, double angle) noexcept;

    /// Writes all sixteen elements, converted to float, to the caller's float[4][4].
    void copyToFloat(float (*const f)[4]) const noexcept;
    /// Reads all sixteen elements from the caller's float[4][4]. Returns *this.
    T4dDblMatrix& setFromFloat(const float (*const f)[4]) noexcept;
    /// Reads all sixteen elements from the caller's double[4][4]. Returns *this.
    T4dDblMatrix& setFromDouble(const double (*const d)[4]) noexcept;

    /// Writes four lines, one per row, each "%g %g %g %g\n"; write errors are ignored.
    void print(std::FILE* out) const;

private:
    double m_[4][4];
};

#endif
