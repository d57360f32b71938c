// The contract the numeric vectors and matrices keep for every element type (double, int,
// signed char): integer reductions and products wrap in the element type, integer division
// and conversion to int truncate toward zero, every type prints as numbers and reads back
// what it prints. There is no matrix of signed chars; those cases run for double and int.
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/VecFunctions.h"
#include "tests/support/NumericTestData.h"

using obrix::test::elements;
using obrix::test::printed;
using obrix::test::vecOf;

namespace {

template <class T>
constexpr bool kHasMatrix = !std::is_same_v<T, signed char>;

template <class T>
class NumericContract : public ::testing::Test {};

} // namespace

TYPED_TEST_SUITE_P(NumericContract);

TYPED_TEST_P(NumericContract, ReductionsAndProductsWrapInTheElementType) {
    using T = TypeParam;
    const T big = std::numeric_limits<T>::max();
    const NumVec<T> v(2, big);
    if constexpr (std::is_integral_v<T>) {
        // Modulo 2^bits: 2 max = -2, 4 max = -4, max^2 = 1.
        EXPECT_EQ(sum(v), static_cast<T>(-2));
        EXPECT_EQ(dot(v, NumVec<T>(2, T(2))), static_cast<T>(-4));
        EXPECT_EQ(prod(v), T(1));
        EXPECT_EQ(elements(cumsum(v)), (std::vector<T>{big, static_cast<T>(-2)}));
    } else {
        EXPECT_EQ(sum(v), std::numeric_limits<T>::infinity());
    }
    if constexpr (kHasMatrix<T>) {
        const NumGenMat<T> row(1, 2, big), col(2, 1, T(1));
        const NumGenMat<T> p = product(row, col);
        const T expected =
            std::is_integral_v<T> ? static_cast<T>(-2) : std::numeric_limits<T>::infinity();
        EXPECT_EQ(p(0, 0), expected);
        EXPECT_EQ(product(row, NumVec<T>(2, T(1)))(0), p(0, 0));
    }
}

TYPED_TEST_P(NumericContract, IntegerDivisionAndConversionTruncateTowardZero) {
    using T = TypeParam;
    const NumVec<T> v = vecOf<T>({T(7), T(-7), T(1), T(-1)});
    const std::vector<T> halves = std::is_integral_v<T>
                                      ? std::vector<T>{3, -3, 0, 0}
                                      : std::vector<T>{T(3.5), T(-3.5), T(0.5), T(-0.5)};
    EXPECT_EQ(elements(v / T(2)), halves);
    NumVec<T> inPlace = v.copy();
    inPlace /= NumVec<T>(4, T(2));
    EXPECT_EQ(elements(inPlace), halves);

    // toInt is the one conversion from doubles; it truncates and saturates (NaN gives 0).
    if constexpr (std::is_same_v<T, double>) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const IntVec ints = toInt(vecOf<double>({2.9, -2.9, -0.5, 0.5, 1e300, -1e300, nan}));
        EXPECT_EQ(elements(ints), (std::vector<int>{2, -2, 0, 0, std::numeric_limits<int>::max(),
                                                    std::numeric_limits<int>::min(), 0}));
        const double dv[] = {2.9, -2.9, -0.5, 0.5};
        EXPECT_EQ(printed(toInt(DoubleGenMat(dv, 2, 2))), "2x2 [\n2 0 \n-2 0 \n]");
    }
}

TYPED_TEST_P(NumericContract, PrintsNumbersWithOneLineSettingPerType) {
    using T = TypeParam;
    EXPECT_EQ(printed(NumVec<T>()), "[  ]");
    EXPECT_EQ(printed(NumVec<T>(3, T(-3), T(1))), "[ -3 -2 -1 ]") << "never as characters";
    EXPECT_EQ(printed(NumVec<T>(7, T(1), T(1))), "[\n1 2 3 4 5\n6 7\n]");
    const int old = NumVec<T>::setFormatting(2);
    EXPECT_EQ(old, 5);
    EXPECT_EQ(printed(NumVec<T>(4, T(1), T(1))), "[\n1 2\n3 4\n]");
    // The setting belongs to this element type only.
    if constexpr (!std::is_same_v<T, int>) {
        EXPECT_EQ(printed(IntVec(4, 1, 1)), "[ 1 2 3 4 ]");
    }
    NumVec<T>::setFormatting(0);
    EXPECT_EQ(printed(NumVec<T>(6, T(1), T(1))), "[\n1 2 3 4 5\n6\n]") << "below 1 means 5";
    EXPECT_EQ(NumVec<T>::setFormatting(old), 5);

    if constexpr (kHasMatrix<T>) {
        std::ostringstream wide;
        wide.width(3);
        wide << NumGenMat<T>(1, 2, T(-7));
        EXPECT_EQ(wide.str(), "1x2 [\n -7  -7 \n]");
        EXPECT_EQ(printed(NumGenMat<T>()), "0x0 [\n]");
    }
}

TYPED_TEST_P(NumericContract, ReadsBackWhatItPrints) {
    using T = TypeParam;
    const T lo = std::numeric_limits<T>::lowest(), hi = std::numeric_limits<T>::max();
    const NumVec<T> extremes = vecOf<T>({lo, T(0), hi, T(-1)});
    std::stringstream text;
    text.precision(17);
    text << extremes;
    NumVec<T> back(1, T(9));
    text >> back;
    EXPECT_FALSE(text.fail());
    EXPECT_EQ(back, extremes);

    NumVec<T> bare;
    std::istringstream list("-128 127 5 x");
    list >> bare;
    EXPECT_EQ(elements(bare), (std::vector<T>{T(-128), T(127), T(5)}));

    if constexpr (kHasMatrix<T>) {
        NumGenMat<T> m(2, 3);
        for (int j = 0; j < 3; ++j)
            for (int i = 0; i < 2; ++i)
                m(i, j) = static_cast<T>(10 * i - j);
        NumGenMat<T> read;
        std::istringstream in(printed(m));
        in >> read;
        EXPECT_FALSE(in.fail());
        EXPECT_EQ(read, m);
    }
}

REGISTER_TYPED_TEST_SUITE_P(NumericContract, ReductionsAndProductsWrapInTheElementType,
                            IntegerDivisionAndConversionTruncateTowardZero,
                            PrintsNumbersWithOneLineSettingPerType, ReadsBackWhatItPrints);

using ElementTypes = ::testing::Types<double, int, signed char>;
INSTANTIATE_TYPED_TEST_SUITE_P(EveryElementType, NumericContract, ElementTypes);
