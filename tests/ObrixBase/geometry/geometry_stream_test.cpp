// Text output of the geometry classes: whole texts, and the stream's own number format kept.
#include "ObrixBase/geometry/geometry_stream.h"

#include <iomanip>
#include <sstream>

#include <gtest/gtest.h>

#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Tangle.h"
#include "ObrixBase/geometry/TboundingBox.h"
#include "ObrixBase/geometry/Tplane.h"
#include "ObrixBase/geometry/TpointTarget.h"
#include "ObrixBase/geometry/TpostXformMatrix.h"
#include "ObrixBase/geometry/Tquaternion.h"
#include "ObrixBase/geometry/Tscale.h"
#include "ObrixBase/geometry/TxformMatrix.h"

namespace {

template <class T>
std::string text(const T& value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

} // namespace

TEST(GeometryStream, EachClassPrintsItsWholeForm) {
    EXPECT_EQ(text(T3dDblPoint(1, -2.5, 3)), "(1, -2.5, 3)");
    EXPECT_EQ(text(T4dDblPoint(2, 4, 6, 2)), "(2, 4, 6, 2)") << "w is shown, not divided out";
    EXPECT_EQ(text(T4dDblVector(0, 1, 0)), "<0, 1, 0>");
    EXPECT_EQ(text(TunitQuaternion()), "(1; 0, 0, 0)");
    EXPECT_EQ(text(Tangle(90)), "90 deg");
    T4dDblMatrix m;
    m(3, 0) = 5;
    EXPECT_EQ(text(m), "[[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [5, 0, 0, 1]]");
    EXPECT_EQ(text(Tquaternion(0.5, 1, 2, 3)), "(0.5; 1, 2, 3)");
    EXPECT_EQ(text(Tscale(1, 2, 0)), "scale(1, 2, 0.0001)") << "the stored, guarded factor";
    EXPECT_EQ(text(Tplane(T4dDblPoint(0, 0, 2, 1), T4dDblVector(0, 0, 4))), "plane(<0, 0, 1>, -2)");
    EXPECT_EQ(text(TboundingBox()), "box(empty)") << "not the inverted infinities it holds";
    EXPECT_EQ(text(TboundingBox(T3dDblPoint(1, 5, 0), T3dDblPoint(-1, 2, 3))),
              "box((-1, 2, 0), (1, 5, 3))");
    EXPECT_EQ(text(TpointTarget(T3dDblPoint(0, 0, 1), T3dDblPoint(0, 0, 0), 15)),
              "(0, 0, 1) -> (0, 0, 0), twist 15");
    EXPECT_EQ(text(TxformMatrix(T4dDblVector(1, 2, 3))),
              "[[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [1, 2, 3, 1]]");
    TpostXformMatrix post;
    post = T4dDblVector(1, 2, 3);
    EXPECT_EQ(text(post), "translation <1, 2, 3>, rotation (1; 0, 0, 0), scale(1, 1, 1), "
                          "rotate pivot (0, 0, 0, 1), scale pivot (0, 0, 0, 1)");
}

TEST(GeometryStream, NumbersFollowTheStreamsFormat) {
    std::ostringstream out;
    out << std::fixed << std::setprecision(2) << T3dDblPoint(1.0 / 3.0, 2, 0);
    EXPECT_EQ(out.str(), "(0.33, 2.00, 0.00)");
}
