#include "ObrixBase/math/VecFunctions.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/math/kernels/kernels.h"
#include "tests/support/MathErrorCapture.h"
#include "tests/support/NumericTestData.h"

using obrix::test::elements;
using obrix::test::MathErrorCapture;
using obrix::test::vec;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(VecFunctions, SequencesAndReductionsFollowIndexOrder) {
    EXPECT_EQ(elements(delta(vec({5, 7, 10}))), (std::vector<double>{5, 2, 3}));
    EXPECT_EQ(elements(cumsum(vec({1, 2, 3}))), (std::vector<double>{1, 3, 6}));
    EXPECT_EQ(elements(reverse(IntVec(3, 1, 1))), (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(sum(DoubleVec()), 0.0);
    EXPECT_EQ(prod(DoubleVec()), 1.0);
    EXPECT_EQ(dot(DoubleVec(), DoubleVec()), 0.0);
    // In index order 1e16 + 1 + 1 loses both ones; any other grouping would keep them.
    EXPECT_EQ(sum(vec({1e16, 1, 1})), 1e16);
    EXPECT_EQ(sum(vec({1, 1, 1e16})), 1e16 + 2);
    EXPECT_EQ(variance(vec({1, 3})), 1.0);
    EXPECT_EQ(mean(vec({1, 2, 6})), 3.0);
    EXPECT_TRUE(std::isnan(mean(DoubleVec())));
    EXPECT_EQ(prod(IntVec(3, 4)), 64);
    EXPECT_EQ(dot(IntVec(3, 2), IntVec(3, 1, 1)), 12);
    EXPECT_EQ(elements(abs(SCharVec(2, -2, 3))), (std::vector<signed char>{2, 1}));
}

TEST(VecFunctions, DotAndDdotAddInEightLanesForEveryLengthAndStride) {
    // Magnitudes far apart make every grouping of the additions round differently, so the
    // contiguous and the strided paths, and the kernels' ddot with any increment, must all
    // follow the lane order exactly.
    DoubleVec v(60), w(60);
    for (int i = 0; i < 60; ++i) {
        v(i) = std::ldexp(1.0 + 0.37 * i, (i * 7) % 60 - 30);
        w(i) = std::ldexp(-1.0 + 0.11 * i, (i * 13) % 50 - 25);
    }
    for (unsigned n = 0; n <= 19; ++n) {
        double lanes[8] = {0, 0, 0, 0, 0, 0, 0, 0};
        for (unsigned i = 0; i < n; ++i)
            lanes[i % 8] += v(static_cast<int>(i)) * w(static_cast<int>(i));
        const double expected = ((lanes[0] + lanes[4]) + (lanes[2] + lanes[6])) +
                                ((lanes[1] + lanes[5]) + (lanes[3] + lanes[7]));
        const DoubleVec a = v.slice(0, n), b = w.slice(0, n);
        EXPECT_EQ(dot(a, b), expected) << "n = " << n;
        DoubleVec spreadA(3 * n + 1, 0.0), spreadB(3 * n + 1, 0.0);
        spreadA.slice(0, n, 3) = a;
        spreadB.slice(0, n, 3) = b;
        EXPECT_EQ(dot(spreadA.slice(0, n, 3), spreadB.slice(0, n, 3)), expected) << "n = " << n;
        const int len = static_cast<int>(n);
        EXPECT_EQ(qvObrixBase::kernels::ddot(len, a.data(), 1, b.data(), 1), expected);
        EXPECT_EQ(qvObrixBase::kernels::ddot(len, spreadA.data(), 3, spreadB.data(), 3), expected);
        // A negative increment walks from the far end: reversed copies give the same terms.
        std::vector<double> ra(n + 1), rb(n + 1);
        for (unsigned i = 0; i < n; ++i) {
            ra[n - 1 - i] = a(static_cast<int>(i));
            rb[n - 1 - i] = b(static_cast<int>(i));
        }
        EXPECT_EQ(qvObrixBase::kernels::ddot(len, ra.data(), -1, rb.data(), -1), expected);
    }
}

TEST(VecFunctions, ExtremaTakeTheFirstAndIgnoreNaN) {
    EXPECT_EQ(maxIndex(vec({1, 3, 3, 2})), 1);
    EXPECT_EQ(minIndex(vec({2, 1, 1})), 1);
    EXPECT_EQ(maxIndex(vec({notANumber, 5, 7})), 0);
    EXPECT_EQ(maxIndex(vec({1, notANumber, 7})), 2);
    EXPECT_EQ(minValue(IntVec(4, 3, -2)), -3);
    MathErrorCapture capture;
    EXPECT_EQ(maxIndex(DoubleVec()), -1);
    EXPECT_EQ(minIndex(IntVec()), -1);
    EXPECT_TRUE(std::isnan(maxValue(DoubleVec())));
    EXPECT_EQ(capture.messages(),
              (std::vector<std::string>{"[ZEROVEC: DoubleVec]: maxIndex: vector is empty",
                                        "[ZEROVEC: IntVec]: minIndex: vector is empty",
                                        "[ZEROVEC: DoubleVec]: maxIndex: vector is empty"}));
}

TEST(VecFunctions, VarianceNeedsTwoPointsAndGoesOnWhenAllowed) {
    MathErrorCapture capture;
    EXPECT_EQ(variance(vec({4})), 0.0);
    EXPECT_EQ(
        capture.messages(),
        (std::vector<std::string>{"[NPOINTS: DoubleVec]: Vector (1) Variance needs minimum of 2"}));
    capture.clear();
    atan2(vec({1, 2}), vec({1, 2, 3}));
    EXPECT_EQ(
        capture.messages(),
        (std::vector<std::string>{"[VNMATCH: DoubleVec]: Vector lengths do not match (2 vs 3)"}));
}

TEST(VecFunctions, ElementFunctionsHaveNoDomainChecks) {
    EXPECT_EQ(elements(sqrt(vec({4, 9}))), (std::vector<double>{2, 3}));
    EXPECT_TRUE(std::isnan(log(vec({-1}))(0))) << "no domain checks";
    EXPECT_EQ(elements(pow(vec({2, 3}), vec({3, 2}))), (std::vector<double>{8, 9}));
}

TEST(DoubleVecQueries, TolerancesIncludeEqualityAndEmptyIsEqual) {
    DoubleVec v = vec({0.5, -0.1, 0.1, 2.0});
    EXPECT_EQ(DoubleVec().isEqual(3.0, 0.0), 1);
    EXPECT_EQ(v.countZero(0.1), 2);
    EXPECT_EQ(elements(v.zeroIndex(0.1)), (std::vector<int>{1, 2}));
    EXPECT_EQ(elements(v.nonZeroIndex(0.1)), (std::vector<int>{0, 3}));
    EXPECT_EQ(elements(v.valueIndex(2.0, 0.0)), (std::vector<int>{3}));
    EXPECT_EQ(elements(v.lessIndex(0.1)), (std::vector<int>{1}));
    EXPECT_EQ(v.isEqual(0.5, 0.5), 0);
    v.slice(1, 2).clampZero(0.1);
    EXPECT_EQ(elements(v), (std::vector<double>{0.5, 0, 0, 2}));
    DoubleVec zero(2, 0.0);
    EXPECT_EQ(zero.normalise(), 0);
    EXPECT_EQ(elements(zero), (std::vector<double>{0, 0}));
    DoubleVec w = vec({3, 4});
    EXPECT_EQ(w.vecLen(), 5.0);
    EXPECT_EQ(w.normalise(), 1);
    EXPECT_EQ(elements(w), (std::vector<double>{0.6000000000000001, 0.8}));
}
