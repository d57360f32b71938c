#include "ObrixBase/geometry/T3dDblPoint.h"

#include <gtest/gtest.h>

TEST(T3dDblPoint, AffineProductTranslatesAndNeverReadsColumn3) {
    // Row vector: x' = x·m00 + y·m10 + z·m20 + m30, and so on; column 3 is ignored.
    const T4dDblMatrix m(1, 2, 3, 5, 4, 5, 6, 7, 7, 8, 9, 11, 10, 20, 30, 2);
    const T3dDblPoint p(1, -1, 2), moved(1 - 4 + 14 + 10, 2 - 5 + 16 + 20, 3 - 6 + 18 + 30);
    EXPECT_EQ(p * m, moved);
    T3dDblPoint q = p;
    EXPECT_EQ(q.postmultBy(m), moved);
    EXPECT_EQ(q.setToProduct(p, m), moved);
    EXPECT_EQ(q.setToProduct(q, T4dDblVector(1, 1, 1)), moved + T4dDblVector(1, 1, 1));

    const T3dDblPoint a(1, 2, 3), b(4, 6, 3);
    EXPECT_EQ(b - a, T4dDblVector(3, 4, 0));
    EXPECT_EQ(a.distance2To(b), 25.0);
}
