#include "ObrixBase/geometry/TxformOps.h"

#include <cmath>

namespace qvObrixBase::xform {

T4dDblMatrix axisRotation(Taxis axis, double angle) noexcept {
    const double c = std::cos(angle), s = std::sin(angle);
    switch (axis) {
    case XAxis:
        return T4dDblMatrix(1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, 0, 1);
    case YAxis:
        return T4dDblMatrix(c, 0, -s, 0, 0, 1, 0, 0, s, 0, c, 0, 0, 0, 0, 1);
    case ZAxis:
    default:
        return T4dDblMatrix(c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    }
}

T4dDblMatrix rotation(const T4dDblVector& axis, double angle) noexcept {
    const double len = axis.length();
    T4dDblMatrix m;
    if (len > 1e-9)
        m.setToAxisRotate(axis * (1.0 / len), angle);
    return m;
}

T4dDblMatrix frame(const T4dDblVector& xAxis, const T4dDblVector& yAxis, const T4dDblVector& zAxis,
                   const T3dDblPoint& origin) noexcept {
    return T4dDblMatrix(xAxis.x, xAxis.y, xAxis.z, 0, yAxis.x, yAxis.y, yAxis.z, 0, zAxis.x,
                        zAxis.y, zAxis.z, 0, origin.x, origin.y, origin.z, 1);
}

T4dDblMatrix alignWithZ(const T4dDblVector& v) noexcept {
    const double len = v.length();
    if (len <= 1e-9)
        return T4dDblMatrix();
    const double a = v.x / len, b = v.y / len, c = v.z / len;
    // Rodrigues' rotation about u × z = (b, −a, 0) with cos = c, in the row-vector form
    // (the transpose of I + [k]× + [k]×²/(1 + c)). 1/(1 + c) cancels badly as u nears −z;
    // there it is taken as (1 − c)/(a² + b²), the same value with both parts accurate.
    const double r2 = a * a + b * b;
    if (c < 0.0 && r2 == 0.0)
        return T4dDblMatrix(1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1);
    const double f = c >= 0.0 ? 1.0 / (1.0 + c) : (1.0 - c) / r2;
    return T4dDblMatrix(1 - a * a * f, -a * b * f, a, 0, -a * b * f, 1 - b * b * f, b, 0, -a, -b, c,
                        0, 0, 0, 0, 1);
}

void transformVectors(const T4dDblMatrix& m, const double* in, double* out,
                      std::size_t n) noexcept {
    for (std::size_t i = 0; i < 3 * n; i += 3) {
        const double x = in[i], y = in[i + 1], z = in[i + 2];
        out[i] = x * m(0, 0) + y * m(1, 0) + z * m(2, 0);
        out[i + 1] = x * m(0, 1) + y * m(1, 1) + z * m(2, 1);
        out[i + 2] = x * m(0, 2) + y * m(1, 2) + z * m(2, 2);
    }
}

} // namespace qvObrixBase::xform
