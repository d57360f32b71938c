#include "ObrixBase/geometry/TgenXformMatrix.h"

TgenXformMatrix& TgenXformMatrix::setToPerspective(double d) noexcept {
    // The weight becomes 1 − z/d and z is flattened to the plane; dividing by the weight
    // gives x·d/(d − z), the ray from the eye through the point meeting z = 0.
    m_ = T4dDblMatrix(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, -1.0 / d, 0, 0, 0, 1);
    return *this;
}

T3dDblPoint TgenXformMatrix::transformPoint(const T3dDblPoint& p) const noexcept {
    const T4dDblPoint h = T4dDblPoint(p.x, p.y, p.z, 1.0) * m_;
    const double s = 1.0 / h.w;
    return T3dDblPoint(h.x * s, h.y * s, h.z * s);
}

void TgenXformMatrix::transformPoints(const double* in, double* out, std::size_t n) const noexcept {
    const T4dDblMatrix& m = m_;
    for (std::size_t i = 0; i < 3 * n; i += 3) {
        const double x = in[i], y = in[i + 1], z = in[i + 2];
        const double s = 1.0 / (x * m(0, 3) + y * m(1, 3) + z * m(2, 3) + m(3, 3));
        out[i] = (x * m(0, 0) + y * m(1, 0) + z * m(2, 0) + m(3, 0)) * s;
        out[i + 1] = (x * m(0, 1) + y * m(1, 1) + z * m(2, 1) + m(3, 1)) * s;
        out[i + 2] = (x * m(0, 2) + y * m(1, 2) + z * m(2, 2) + m(3, 2)) * s;
    }
}
