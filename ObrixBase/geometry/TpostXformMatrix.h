// TpostXformMatrix: an object's placement held as separate components (translation, rotation
// and scale, with a pivot point for rotating and one for scaling) from which the 4x4 matrix is
// rebuilt on demand. Rotating or scaling about a pivot moves the translation so that the pivot
// stays where it is; the pivots themselves never enter the matrix.
#ifndef OBRIX_GEOMETRY_TPOSTXFORMMATRIX_H
#define OBRIX_GEOMETRY_TPOSTXFORMMATRIX_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Tscale.h"
#include "ObrixBase/geometry/TunitQuaternion.h"

/// Translation, rotation and scale with pivots, and the matrix they make: a point is scaled
/// first, then rotated, then translated (M = S·R·T in the row-vector convention). The matrix
/// is cached; every change of a component marks it stale and the next matrix() or inverse()
/// rebuilds it. Nothing is reported or allocated.
class OBRIX_API TpostXformMatrix : private T4dDblMatrix {
public:
    /// The identity placement: no translation, the identity rotation, unit scale, both pivots
    /// at the origin and a clean cached identity matrix.
    TpostXformMatrix() noexcept = default;
    /// Copies every component and the stale mark, so a copy of a stale transform rebuilds on
    /// its own first use.
    TpostXformMatrix(const TpostXformMatrix&) noexcept = default;
    /// Copies every component and the stale mark, as the copy constructor does.
    TpostXformMatrix& operator=(const TpostXformMatrix&) noexcept = default;
    virtual ~TpostXformMatrix() = default;

    /// Replaces the translation. Returns *this.
    TpostXformMatrix& operator=(const T4dDblVector& t) noexcept;
    /// Replaces the scale. Returns *this.
    TpostXformMatrix& operator=(const Tscale& s) noexcept;
    /// Replaces the rotation. Returns *this.
    TpostXformMatrix& operator=(const TunitQuaternion& q) noexcept;

    /// Adds t to the translation. Returns *this.
    TpostXformMatrix& operator+=(const T4dDblVector& t) noexcept;
    /// Rotates by q about the rotate pivot: the translation swings about the pivot and the
    /// rotation becomes q·rotation (q acts after the rotation already there). Returns *this.
    TpostXformMatrix& operator+=(const TunitQuaternion& q) noexcept;
    /// Scales by s about the scale pivot, along the object's rotated axes: the factors
    /// multiply (through the zero guard) and the translation's offset from the pivot is scaled
    /// in the rotated frame. Returns *this.
    TpostXformMatrix& operator+=(const Tscale& s) noexcept;

    /// Stores the rotate pivot; the matrix stays as it is. Returns *this.
    TpostXformMatrix& setRotatePivotPoint(const T4dDblPoint& p) noexcept;
    /// Stores the scale pivot; the matrix stays as it is. Returns *this.
    TpostXformMatrix& setScalePivotPoint(const T4dDblPoint& p) noexcept;

    ///@{
    /// Copies of the components and pivots, as stored (no rebuild).
    T4dDblVector translation() const noexcept { return translation_; }
    TunitQuaternion rotation() const noexcept { return rotation_; }
    Tscale scale() const noexcept { return scale_; }
    T4dDblPoint rotatePivotPoint() const noexcept { return rotatePivot_; }
    T4dDblPoint scalePivotPoint() const noexcept { return scalePivot_; }
    ///@}

    /// The matrix S·R·T, rebuilt first when a component has changed.
    const T4dDblMatrix& matrix() noexcept;
    /// The inverse of matrix() (by T4dDblMatrix::inverse), rebuilt first when a component
    /// has changed.
    T4dDblMatrix inverse() noexcept;

    /// 1 while a component has changed since the matrix was last rebuilt.
    int isDirty() const noexcept { return dirty_; }

private:
    void rebuild() noexcept;

    T4dDblVector translation_;
    TunitQuaternion rotation_;
    Tscale scale_;
    T4dDblPoint rotatePivot_;
    T4dDblPoint scalePivot_;
    int dirty_ = 0;
};

#endif
