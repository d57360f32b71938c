// operator() of the numeric classes under the build's indexing option: unchecked and noexcept
// in the exact build; in the checking build it raises exactly what the checking accessors
// raise, before any element is touched.
#include "ObrixBase/ObrixBuildOptions.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "ObrixBase/auto/containers/TtupleMatrix.h"
#include "ObrixBase/auto/containers/TtupleVector.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleSymMat.h"
#include "ObrixBase/math/DoubleTriMat.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/MathError.h"

// Callers of the exact build rely on operator() being as cheap as a load, noexcept included.
static_assert(noexcept(std::declval<DoubleVec&>()(0)) == !OBRIX_CHECKED_INDEXING);
static_assert(noexcept(std::declval<const IntGenMat&>()(0, 0)) == !OBRIX_CHECKED_INDEXING);
static_assert(noexcept(std::declval<DoubleSymMat&>()(0, 0)) == !OBRIX_CHECKED_INDEXING);
static_assert(noexcept(std::declval<DoubleUpperTriMat&>()(0, 0)) == !OBRIX_CHECKED_INDEXING);

#if OBRIX_CHECKED_INDEXING

namespace {

// What `access` raises, as "code: message", or "nothing". The throwing handler stops the
// access before it reads, so out-of-range indices are safe to try.
template <class F>
std::string raised(F&& access) {
    const MathErrorHandler previous = setMathErrorHandler(&throwingMathErrorHandler);
    std::string what = "nothing";
    try {
        access();
    } catch (const MathException& e) {
        what = std::to_string(e.code()) + ": " + e.what();
    }
    setMathErrorHandler(previous);
    return what;
}

template <class T>
void expectVectorAccessChecked() {
    NumVec<T> v(3, T(1));
    const NumVec<T>& c = v;
    for (int i : {-1, 3, 1000}) {
        const std::string expected = raised([&] { (void)v[i]; });
        EXPECT_NE(expected, "nothing");
        EXPECT_EQ(raised([&] { v(i) = T(2); }), expected) << i;
        EXPECT_EQ(raised([&] { (void)c(i); }), expected) << i;
    }
    EXPECT_EQ(raised([&] { v(2) = T(2); }), "nothing");
}

} // namespace

TEST(CheckedIndexing, VectorsRaiseWhatOperatorBracketRaises) {
    expectVectorAccessChecked<double>();
    expectVectorAccessChecked<int>();
    expectVectorAccessChecked<signed char>();

    // A pick checks both the position in the index list and the index it finds there.
    DoubleVec v(3, 0.0);
    DoubleVecPick pick = v.vecPick(IntVec(2, 7));
    EXPECT_EQ(raised([&] { (void)pick(0); }), raised([&] { (void)v[7]; }));
    EXPECT_EQ(raised([&] { (void)pick(2); }), raised([&] { (void)IntVec(2, 7)[2]; }));
}

TEST(CheckedIndexing, MatricesRaiseWhatTheirCheckedReadRaises) {
    DoubleGenMat g(2, 3, 0.0);
    IntGenMat gi(2, 3, 0);
    DoubleSymMat s(3, 3, 0.0);
    DoubleLowerTriMat lower(3, 3, 0.0);
    DoubleUpperTriMat upper(3, 3, 0.0);
    const std::pair<int, int> outside[] = {{2, 0}, {0, 3}, {-1, 0}, {0, -1}};
    for (auto [i, j] : outside) {
        EXPECT_NE(raised([&] { (void)g.bcval(i, j); }), "nothing");
        EXPECT_EQ(raised([&] { g(i, j) = 1.0; }), raised([&] { (void)g.bcval(i, j); }));
        EXPECT_EQ(raised([&] { gi.set(i, j, 1); }), raised([&] { (void)gi.bcval(i, j); }));
        EXPECT_EQ(raised([&] { s(i, j) = 1.0; }), raised([&] { (void)s.bcval(i, j); }));
        EXPECT_EQ(raised([&] { lower(i, j) = 1.0; }), raised([&] { (void)lower.bcval(i, j); }));
        EXPECT_EQ(raised([&] { (void)std::as_const(upper)(i, j); }),
                  raised([&] { (void)upper.bcval(i, j); }));
    }
    // In range, the empty triangle included, nothing is raised.
    EXPECT_EQ(raised([&] { g(1, 2) = s(2, 0) + lower(0, 2) + upper(2, 0); }), "nothing");

    NumGenMatPick<double> pick = g(IntVec(1, 1), IntVec(2, 0, 2));
    EXPECT_EQ(raised([&] { (void)pick(0, 2); }), raised([&] { (void)IntVec(2, 0)[2]; }));
}

TEST(CheckedIndexingDeathTest, TupleContainersStopAsTheirCheckedAccessStops) {
    TtupleVector points(3, 2, 0.0);
    TtupleMatrix grid(3, 2, 2, 0.0);
    EXPECT_DEATH(points(2), "Bounds checking \\( bad index, 2 \\)");
    EXPECT_DEATH(grid(0, -1), "Bounds checking \\( bad column, -1 \\)");
    EXPECT_EQ(points(1).length(), 3u);
}

#endif
