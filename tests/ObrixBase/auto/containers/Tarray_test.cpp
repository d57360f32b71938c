#include "ObrixBase/auto/containers/Tarray.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/auto/containers/T3dDblPointArray.h"
#include "ObrixBase/auto/containers/TdoubleArray.h"
#include "ObrixBase/geometry/TxformMatrix.h"
#include "tests/ObrixBase/auto/containers/ContainerTestValues.h"

namespace {

using obrix::test::Counted;
using obrix::test::makeValue;

template <class T>
class TarrayModel : public ::testing::Test {
protected:
    void SetUp() override { Counted::live = 0; }
    void TearDown() override { EXPECT_EQ(Counted::live, 0); }
};
using ArrayElementTypes = ::testing::Types<int, double, std::string, T3dDblPoint, Counted>;
TYPED_TEST_SUITE(TarrayModel, ArrayElementTypes);

template <class T>
void expectSame(const Tarray<T>& a, const std::vector<T>& model, int step) {
    ASSERT_EQ(a.length(), static_cast<int>(model.size())) << "step " << step;
    ASSERT_LE(a.length(), a.capacity());
    for (int i = 0; i < a.length(); ++i)
        ASSERT_TRUE(a[i] == model[i]) << "step " << step << ", element " << i;
}

TYPED_TEST(TarrayModel, RandomEditsMatchStdVector) {
    std::mt19937 gen(11);
    Tarray<TypeParam> a;
    std::vector<TypeParam> model;
    for (int step = 0; step < 3000; ++step) {
        const int n = a.length();
        const int pick = n ? static_cast<int>(gen() % n) : 0;
        switch (gen() % 10) {
        case 0:
        case 1:
        case 2:
            a.append(makeValue<TypeParam>(step));
            model.push_back(makeValue<TypeParam>(step));
            break;
        case 3:
            if (n) { // appending an element of the array itself, across a growth
                a.shrinkIt();
                a.append(a[pick]);
                model.push_back(model[pick]);
            }
            break;
        case 4:
            a.insert(pick, makeValue<TypeParam>(step));
            model.insert(model.begin() + pick, makeValue<TypeParam>(step));
            break;
        case 5:
            if (n) {
                a.remove(pick);
                model.erase(model.begin() + pick);
            }
            break;
        case 6:
            if (n) {
                a.removeFast(pick);
                model[pick] = model.back();
                model.pop_back();
            }
            break;
        case 7: {
            // The fill value may be an element of the array that the growth moves.
            const int len = static_cast<int>(gen() % 40);
            const TypeParam fill = n ? model[pick] : makeValue<TypeParam>(-step);
            a.shrinkIt();
            a.resize(len, n ? a[pick] : fill);
            model.resize(len, fill);
            break;
        }
        case 8: {
            Tarray<TypeParam> copy(a);
            EXPECT_TRUE(copy == a);
            Tarray<TypeParam> moved(std::move(copy));
            EXPECT_TRUE(copy.isEmpty());
            a = moved;
            break;
        }
        default:
            if (n) {
                const TypeParam v = model[pick];
                EXPECT_EQ(a.find(v), static_cast<int>(std::find(model.begin(), model.end(), v) -
                                                      model.begin()));
            }
            if (step % 500 == 0) {
                a.clear();
                model.clear();
            }
        }
        expectSame(a, model, step);
    }
}

} // namespace

TEST(TarrayDeathTest, CheckedAccessAbortsOutsideTheArray) {
    Tarray<int> a{1, 2, 3};
    EXPECT_EQ(a.at(2), 3);
    EXPECT_DEATH(a.at(3), "Tarray index 3 out of range 0..2");
    EXPECT_DEATH(a.at(-1), "Tarray index -1 out of range 0..2");
}

TEST(TdoubleArray, SumsExtremesAndSortsWithNaNsAside) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    TdoubleArray a{3, nan, -1, 2};
    EXPECT_EQ(a.minValue(), -1.0);
    EXPECT_EQ(a.maxValue(), 3.0);
    EXPECT_TRUE(std::isnan(a.sum()));
    a.sortIt();
    EXPECT_EQ(a[0], -1.0);
    EXPECT_EQ(a[2], 3.0);
    EXPECT_TRUE(std::isnan(a[3]));
    EXPECT_TRUE(std::isnan(TdoubleArray().minValue()));
    EXPECT_EQ(TdoubleArray().sum(), 0.0);
}

TEST(T3dDblPointArray, HandsItsCoordinatesToTheBoxAndTheTransforms) {
    T3dDblPointArray pts{T3dDblPoint(1, 2, 3), T3dDblPoint(-1, 5, 0)};
    EXPECT_EQ(pts.boundingBox(), TboundingBox(T3dDblPoint(-1, 2, 0), T3dDblPoint(1, 5, 3)));
    EXPECT_TRUE(T3dDblPointArray().boundingBox().isEmpty());
    const TxformMatrix t(T4dDblVector(1, 1, 1));
    T3dDblPointArray moved = pts;
    moved.transformIt(t);
    t.transformPoints(pts.coordinates(), 2);
    EXPECT_TRUE(moved == pts);
    EXPECT_EQ(pts[1], T3dDblPoint(0, 6, 1));
}
