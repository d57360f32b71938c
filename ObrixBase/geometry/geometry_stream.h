// Text output of the geometry value classes, for logs, test messages and debugging sessions:
// `std::cout << point`. Numbers take the stream's own format (precision, fixed or scientific);
// nothing is read back, so the forms are for people, not files.
#ifndef OBRIX_GEOMETRY_GEOMETRY_STREAM_H
#define OBRIX_GEOMETRY_GEOMETRY_STREAM_H

#include <iosfwd>

#include "ObrixBase/ObrixExport.h"

class T3dDblPoint;
class T4dDblPoint;
class T4dDblVector;
class T4dDblMatrix;
class TunitQuaternion;
class Tangle;

/// "(x, y, z)".
OBRIX_API std::ostream& operator<<(std::ostream& out, const T3dDblPoint& p);
/// "(x, y, z, w)": the raw homogeneous coordinates, not divided by w.
OBRIX_API std::ostream& operator<<(std::ostream& out, const T4dDblPoint& p);
/// "<x, y, z>": angle brackets tell a direction from a point.
OBRIX_API std::ostream& operator<<(std::ostream& out, const T4dDblVector& v);
/// "[[m00, m01, m02, m03], [m10, ...], ..., [m30, m31, m32, m33]]", row by row (the
/// translation is the last row).
OBRIX_API std::ostream& operator<<(std::ostream& out, const T4dDblMatrix& m);
/// "(w; x, y, z)": the scalar part first, apart from the vector part.
OBRIX_API std::ostream& operator<<(std::ostream& out, const TunitQuaternion& q);
/// The angle in degrees followed by " deg", for example "90 deg".
OBRIX_API std::ostream& operator<<(std::ostream& out, const Tangle& a);

#endif
