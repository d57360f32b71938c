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
class Tquaternion;
class Tscale;
class Tplane;
class TboundingBox;
class TpointTarget;
class TxformMatrix;
class TgenXformMatrix;
class TpostXformMatrix;
class TnumberSequence;

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
/// "(w; x, y, z)", as a unit quaternion.
OBRIX_API std::ostream& operator<<(std::ostream& out, const Tquaternion& q);
/// "scale(x, y, z)".
OBRIX_API std::ostream& operator<<(std::ostream& out, const Tscale& s);
/// "plane(<a, b, c>, d)": the normal and the offset d of a·x + b·y + c·z + d = 0.
OBRIX_API std::ostream& operator<<(std::ostream& out, const Tplane& p);
/// "box((min), (max))" with the corners as points, or "box(empty)".
OBRIX_API std::ostream& operator<<(std::ostream& out, const TboundingBox& b);
/// "(position) -> (target), twist t".
OBRIX_API std::ostream& operator<<(std::ostream& out, const TpointTarget& p);
///@{
/// The matrix, as T4dDblMatrix prints it.
OBRIX_API std::ostream& operator<<(std::ostream& out, const TxformMatrix& t);
OBRIX_API std::ostream& operator<<(std::ostream& out, const TgenXformMatrix& t);
///@}
/// The parts it composes: "translation <x, y, z>, rotation (w; x, y, z), scale(x, y, z),
/// rotate pivot (x, y, z, w), scale pivot (x, y, z, w)". The composed matrix is not built.
OBRIX_API std::ostream& operator<<(std::ostream& out, const TpostXformMatrix& t);
/// The text form of text(), for example "1-5,7".
OBRIX_API std::ostream& operator<<(std::ostream& out, const TnumberSequence& s);

#endif
