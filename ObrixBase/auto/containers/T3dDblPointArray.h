// T3dDblPointArray: a growable array of 3D points held by value, the usual carrier of point
// sets between modelling operations. It is a Tarray<T3dDblPoint>, and since the points are
// three contiguous doubles each, coordinates() hands the block to code that takes x, y, z
// triples (the transform classes' array forms, TboundingBox::extendIt).
#ifndef OBRIX_AUTO_CONTAINERS_T3DDBLPOINTARRAY_H
#define OBRIX_AUTO_CONTAINERS_T3DDBLPOINTARRAY_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/auto/containers/Tarray.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/TboundingBox.h"

static_assert(sizeof(T3dDblPoint) == 3 * sizeof(double),
              "points must pack as x, y, z triples for coordinates()");

/// Holds its points by value in one block (see Tarray for costs and validity of pointers).
class OBRIX_API T3dDblPointArray : public Tarray<T3dDblPoint> {
public:
    using Tarray<T3dDblPoint>::Tarray;
    T3dDblPointArray() noexcept = default;

    ///@{
    /// The coordinates as 3·length() doubles: x0, y0, z0, x1, ... (null when never grown).
    double* coordinates() noexcept { return reinterpret_cast<double*>(data()); }
    const double* coordinates() const noexcept { return reinterpret_cast<const double*>(data()); }
    ///@}
    /// The box of all points; empty for an empty array.
    TboundingBox boundingBox() const noexcept;
    /// Moves every point by the affine product p·M (column 3 of M is not read). Returns *this.
    T3dDblPointArray& transformIt(const T4dDblMatrix& m) noexcept;
};

#endif
