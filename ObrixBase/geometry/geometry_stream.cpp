#include "ObrixBase/geometry/geometry_stream.h"

#include <ostream>

#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Tangle.h"
#include "ObrixBase/geometry/TunitQuaternion.h"

std::ostream& operator<<(std::ostream& out, const T3dDblPoint& p) {
    return out << '(' << p.x << ", " << p.y << ", " << p.z << ')';
}

std::ostream& operator<<(std::ostream& out, const T4dDblPoint& p) {
    return out << '(' << p.x << ", " << p.y << ", " << p.z << ", " << p.w << ')';
}

std::ostream& operator<<(std::ostream& out, const T4dDblVector& v) {
    return out << '<' << v.x << ", " << v.y << ", " << v.z << '>';
}

std::ostream& operator<<(std::ostream& out, const T4dDblMatrix& m) {
    out << '[';
    for (short r = 0; r < 4; ++r) {
        out << (r == 0 ? "[" : ", [");
        for (short c = 0; c < 4; ++c)
            out << (c == 0 ? "" : ", ") << m(r, c);
        out << ']';
    }
    return out << ']';
}

std::ostream& operator<<(std::ostream& out, const TunitQuaternion& q) {
    return out << '(' << q.w << "; " << q.x << ", " << q.y << ", " << q.z << ')';
}

std::ostream& operator<<(std::ostream& out, const Tangle& a) {
    return out << a.degrees() << " deg";
}
