#include "ObrixBase/geometry/TpostXformMatrix.h"

namespace {

// The translation read as an affine point (x, y, z, 1).
T4dDblPoint asPoint(const T4dDblVector& t) noexcept {
    return T4dDblPoint(t.x, t.y, t.z, 1.0);
}

} // namespace

TpostXformMatrix& TpostXformMatrix::operator=(const T4dDblVector& t) noexcept {
    translation_ = t;
    dirty_ = 1;
    return *this;
}

TpostXformMatrix& TpostXformMatrix::operator=(const Tscale& s) noexcept {
    scale_ = s;
    dirty_ = 1;
    return *this;
}

TpostXformMatrix& TpostXformMatrix::operator=(const TunitQuaternion& q) noexcept {
    rotation_ = q;
    dirty_ = 1;
    return *this;
}

TpostXformMatrix& TpostXformMatrix::operator+=(const T4dDblVector& t) noexcept {
    translation_ += t;
    dirty_ = 1;
    return *this;
}

TpostXformMatrix& TpostXformMatrix::operator+=(const TunitQuaternion& q) noexcept {
    // Swing the translation about the pivot by q, then compose: the object turns about the
    // pivot and the pivot stays where it was.
    T4dDblVector d = asPoint(translation_) - rotatePivot_;
    d.postmultBy(q.matrix());
    translation_ = T4dDblVector(rotatePivot_ + d);
    rotation_ = q * rotation_;
    dirty_ = 1;
    return *this;
}

TpostXformMatrix& TpostXformMatrix::operator+=(const Tscale& s) noexcept {
    scale_.set(scale_.x() * s.x(), scale_.y() * s.y(), scale_.z() * s.z());
    // The scale acts along the object's own axes, so the offset from the pivot is taken into
    // the rotated frame, scaled there, and brought back.
    T4dDblVector d = asPoint(translation_) - scalePivot_;
    d.postmultBy(rotation_.inverse().matrix());
    d.set(d.x * s.x(), d.y * s.y(), d.z * s.z());
    d.postmultBy(rotation_.matrix());
    translation_ = T4dDblVector(scalePivot_ + d);
    dirty_ = 1;
    return *this;
}

TpostXformMatrix& TpostXformMatrix::setRotatePivotPoint(const T4dDblPoint& p) noexcept {
    rotatePivot_ = p;
    return *this;
}

TpostXformMatrix& TpostXformMatrix::setScalePivotPoint(const T4dDblPoint& p) noexcept {
    scalePivot_ = p;
    return *this;
}

void TpostXformMatrix::rebuild() noexcept {
    dirty_ = 0;
    T4dDblMatrix& m = *this;
    m.setToProduct(T4dDblMatrix(scale_), rotation_.matrix());
    m.postmultBy(T4dDblMatrix(translation_));
}

const T4dDblMatrix& TpostXformMatrix::matrix() noexcept {
    if (dirty_)
        rebuild();
    return *this;
}

T4dDblMatrix TpostXformMatrix::inverse() noexcept {
    return matrix().inverse();
}
