#include "ObrixBase/geometry/geometry_stream.h"

#include <ostream>

#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Tangle.h"
#include "ObrixBase/geometry/TboundingBox.h"
#include "ObrixBase/geometry/TgenXformMatrix.h"
#include "ObrixBase/geometry/TnumberSequence.h"
#include "ObrixBase/geometry/Tplane.h"
#include "ObrixBase/geometry/TpointTarget.h"
#include "ObrixBase/geometry/TpostXformMatrix.h"
#include "ObrixBase/geometry/Tquaternion.h"
#include "ObrixBase/geometry/Tscale.h"
#include "ObrixBase/geometry/TunitQuaternion.h"
#include "ObrixBase/geometry/TxformMatrix.h"

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

std::ostream& operator<<(std::ostream& out, const Tquaternion& q) {
    return out << '(' << q.w << "; " << q.x << ", " << q.y << ", " << q.z << ')';
}

std::ostream& operator<<(std::ostream& out, const Tscale& s) {
    return out << "scale(" << s.x() << ", " << s.y() << ", " << s.z() << ')';
}

std::ostream& operator<<(std::ostream& out, const Tplane& p) {
    return out << "plane(" << p.normal() << ", " << p.offset() << ')';
}

std::ostream& operator<<(std::ostream& out, const TboundingBox& b) {
    // An empty box holds inverted infinities: printing them would read as a huge box.
    if (b.isEmpty())
        return out << "box(empty)";
    return out << "box(" << b.min() << ", " << b.max() << ')';
}

std::ostream& operator<<(std::ostream& out, const TpointTarget& p) {
    return out << p.position() << " -> " << p.target() << ", twist " << p.twist();
}

std::ostream& operator<<(std::ostream& out, const TxformMatrix& t) {
    return out << t.matrix();
}

std::ostream& operator<<(std::ostream& out, const TgenXformMatrix& t) {
    return out << t.matrix();
}

std::ostream& operator<<(std::ostream& out, const TpostXformMatrix& t) {
    return out << "translation " << t.translation() << ", rotation " << t.rotation() << ", "
               << t.scale() << ", rotate pivot " << t.rotatePivotPoint() << ", scale pivot "
               << t.scalePivotPoint();
}

std::ostream& operator<<(std::ostream& out, const TnumberSequence& s) {
    return out << s.text();
}
