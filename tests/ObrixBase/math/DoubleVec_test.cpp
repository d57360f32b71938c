#include "ObrixBase/math/DoubleVec.h"

#include <sstream>

#include <gtest/gtest.h>

#include "tests/support/MathErrorCapture.h"
#include "tests/support/NumericTestData.h"

using obrix::test::elements;
using obrix::test::MathErrorCapture;
using obrix::test::printed;

TEST(DoubleVec, ConstructorsFillRampsByRepeatedAddition) {
    EXPECT_EQ(elements(DoubleVec(3, 2.5)), (std::vector<double>{2.5, 2.5, 2.5}));
    EXPECT_EQ(DoubleVec(0, 1.0, 1.0).length(), 0u);
    EXPECT_EQ(elements(IntVec(4, 10, -3)), (std::vector<int>{10, 7, 4, 1}));
    // 0.1 added ten times is not 10 * 0.1: the ramp keeps the accumulated rounding.
    DoubleVec ramp(11, 0.0, 0.1);
    double acc = 0.0;
    for (int i = 0; i < 10; ++i)
        acc += 0.1;
    EXPECT_EQ(ramp(10), acc);
    EXPECT_NE(ramp(10), 10 * 0.1);
    const signed char raw[] = {-1, 2, 127};
    EXPECT_EQ(elements(SCharVec(raw, 3)), (std::vector<signed char>{-1, 2, 127}));
}

TEST(DoubleVec, CopiesAndSlicesShareStorageUntilDeepened) {
    DoubleVec v(6, 0.0, 1.0);
    DoubleVec shallow(v);
    DoubleVec odd = v.slice(1, 3, 2);
    odd(0) = 10.0;
    shallow(5) = 50.0;
    EXPECT_EQ(elements(v), (std::vector<double>{0, 10, 2, 3, 4, 50}));
    EXPECT_EQ(elements(odd), (std::vector<double>{10, 3, 50}));

    DoubleVec reversed = v.slice(5, 6, -1);
    EXPECT_EQ(elements(reversed), (std::vector<double>{50, 4, 3, 2, 10, 0}));
    DoubleVec sliceOfSlice = reversed.slice(0, 2, 2); // elements 5 and 3 of v
    sliceOfSlice(1) = -3.0;
    EXPECT_EQ(v(3), -3.0);

    DoubleVec sharer(v); // contiguous and at the block's start, but shared
    sharer.deepenShallowCopy();
    sharer(0) = 123.0;
    EXPECT_NE(v(0), 123.0);
    odd.deepenShallowCopy();
    odd(1) = 99.0;
    EXPECT_EQ(v(3), -3.0) << "a deepened view no longer writes into its source";
    EXPECT_EQ(odd.stride(), 1);
    EXPECT_EQ(odd.block()->references(), 1u);
    RWBlock* own = odd.block();
    odd.deepenShallowCopy();
    EXPECT_EQ(odd.block(), own) << "an exclusive contiguous vector is left alone";

    DoubleVec other(2, 7.0);
    other.reference(v);
    other(0) = -1.0;
    EXPECT_EQ(v(0), -1.0);
    other.reference(other); // self-reference keeps the block alive
    EXPECT_EQ(other(0), -1.0);
}

TEST(DoubleVec, AssignmentCopiesElementsAndHonoursOverlap) {
    DoubleVec v(6, 0.0, 1.0);
    DoubleVec head = v.slice(0, 4);
    DoubleVec tail = v.slice(2, 4);
    tail = head; // as if head had been copied first
    EXPECT_EQ(elements(v), (std::vector<double>{0, 1, 0, 1, 2, 3}));
    DoubleVec w(6, 0.0, 1.0);
    w.slice(0, 6, 1) = w.slice(5, 6, -1);
    EXPECT_EQ(elements(w), (std::vector<double>{5, 4, 3, 2, 1, 0}));
    w.slice(0, 3, 2) = 9.0;
    EXPECT_EQ(elements(w), (std::vector<double>{9, 4, 9, 2, 9, 0}));
    DoubleVec x(3, 1.0);
    x.slice(0, 2) += x.slice(1, 2);
    EXPECT_EQ(elements(x), (std::vector<double>{2, 2, 1}));
}

TEST(DoubleVec, ResizeKeepsAndZeroesReshapeKeepsNothing) {
    DoubleVec v(4, 1.0, 1.0);
    DoubleVec every = v.slice(0, 2, 3); // 1, 4
    every.resize(4);
    EXPECT_EQ(elements(every), (std::vector<double>{1, 4, 0, 0}));
    every.resize(1);
    EXPECT_EQ(elements(every), (std::vector<double>{1}));
    EXPECT_EQ(elements(v), (std::vector<double>{1, 2, 3, 4})) << "resize detaches";
    RWBlock* before = v.block();
    v.reshape(4);
    EXPECT_EQ(v.block(), before) << "same length: nothing happens";
    v.reshape(2);
    EXPECT_EQ(v.length(), 2u);
    EXPECT_NE(v.block(), before);
}

TEST(DoubleVec, ChecksRaiseTheirExactMessagesAndOperationsGoOn) {
    MathErrorCapture capture;
    DoubleVec v(5, 0.0, 1.0);
    EXPECT_EQ(v.slice(7, 0, -4).length(), 0u) << "n = 0 is never checked";
    EXPECT_EQ(v.slice(0, 3, 2).length(), 3u);
    EXPECT_EQ(v.slice(4, 5, -1).length(), 5u);
    EXPECT_TRUE(capture.errors().empty());

    v.sliceCheck(0, 4, 2);
    DoubleVec(3, 0.0).boundsCheck(-1);
    v.lengthCheck(4);
    v.slice(1, 2, 2).strideCheck();
    IntVec().emptyErr("minIndex");
    SCharVec(2).boundsCheck(2);
    EXPECT_EQ(
        capture.messages(),
        (std::vector<std::string>{
            "[SLICE: DoubleVec]: slice (0, 4, 2) cannot be made from vector (5)",
            "[INDEX: DoubleVec]: Index (-1) out of range [0->2]",
            "[VNMATCH: DoubleVec]: Vector lengths do not match (5 vs 4)",
            "[STRIDE: DoubleVec]: Stride must be 1", "[ZEROVEC: IntVec]: minIndex: vector is empty",
            "[INDEX: SCharVec]: Index (2) out of range [0->1]"}));
    for (const auto& e : capture.errors()) {
        EXPECT_EQ(e.severity, MATH_DEFAULT);
        EXPECT_EQ(e.tag, MATH_TAG_VECTOR_CHECK);
    }
    capture.clear();
    // A returning handler lets the operation go on over the length of the left operand.
    DoubleVec longer(6, 1.0);
    DoubleVec sum = v + longer;
    EXPECT_EQ(capture.codes(), (std::vector<std::uint16_t>{MATH_VNMATCH}));
    EXPECT_EQ(elements(sum), (std::vector<double>{1, 2, 3, 4, 5}));
}

TEST(DoubleVecPick, GathersScattersAndChecksIndices) {
    DoubleVec v(5, 0.0, 10.0);
    IntVec idx(3, 0);
    idx(0) = 4;
    idx(1) = 0;
    idx(2) = 2;
    DoubleVecPick pick = v.vecPick(idx);
    EXPECT_EQ(elements(DoubleVec(pick)), (std::vector<double>{40, 0, 20}));
    pick = DoubleVec(3, 1.0, 1.0);
    EXPECT_EQ(elements(v), (std::vector<double>{2, 10, 3, 30, 1}));
    pick = -1.0;
    EXPECT_EQ(elements(v), (std::vector<double>{-1, 10, -1, 30, -1}));
    DoubleVec target(3, 0.0);
    target = v.vecPick(IntVec(3, 3, -1)); // indices 3, 2, 1
    EXPECT_EQ(elements(target), (std::vector<double>{30, -1, 10}));
    // Scattering a pick of the same vector reads every source element first.
    v.vecPick(IntVec(2, 0, 1)) = v.vecPick(IntVec(2, 1, 1));
    EXPECT_EQ(elements(v), (std::vector<double>{10, -1, -1, 30, -1}));

    MathErrorCapture capture;
    IntVec bad(3, 0);
    bad(1) = 5;
    bad(2) = -1;
    v.vecPick(bad).assertElements();
    IntVecPick(IntVec(2, 0), IntVec(1, 0)).lengthCheck(3);
    EXPECT_EQ(capture.messages(),
              (std::vector<std::string>{"[INDEX: DoubleVecPick]: Index (5) out of range [0->4]",
                                        "[VNMATCH: IntVecPick]: Vector lengths do not match (1 "
                                        "vs 3)"}));
    EXPECT_EQ(capture.errors()[0].tag, MATH_TAG_PICK_CHECK);
}

TEST(DoubleVec, ReadsBracketedAndBareListsAndSurvivesMalformedText) {
    struct Case {
        const char* text;
        std::vector<double> values;
        bool failed;
    };
    const Case cases[] = {
        {"[ 1 2 3 ]", {1, 2, 3}, false},
        {"1 2 3 x", {1, 2, 3}, true},
        {"[ ]", {}, false},
        {"[1.5e3,", {1500}, true},
        {"  [ -1", {-1}, true},
        {"", {}, true},
        {"]", {}, true},
    };
    for (const Case& c : cases) {
        DoubleVec v(4, 9.0);
        std::istringstream in(c.text);
        in >> v;
        EXPECT_EQ(elements(v), c.values) << c.text;
        EXPECT_EQ(in.fail(), c.failed) << c.text;
    }
    // More values than the vector holds grows it; the round trip keeps every value.
    DoubleVec ramp(300, -7.25, 0.5);
    std::stringstream text;
    text.precision(17);
    text << ramp;
    DoubleVec back;
    text >> back;
    EXPECT_EQ(back, ramp);
}

TEST(DoubleVec, ArithmeticWorksThroughStrides) {
    DoubleVec v(6, 1.0, 1.0);
    DoubleVec evens = v.slice(0, 3, 2);
    evens *= 10.0;
    evens += DoubleVec(3, 1.0);
    EXPECT_EQ(elements(v), (std::vector<double>{11, 2, 31, 4, 51, 6}));
    EXPECT_EQ(elements(-evens + 1.0), (std::vector<double>{-10, -30, -50}));
    EXPECT_EQ(elements(2.0 / DoubleVec(2, 4.0)), (std::vector<double>{0.5, 0.5}));
    EXPECT_EQ(elements(v.slice(5, 3, -2) * evens), (std::vector<double>{66, 124, 102}));
    IntVec i(3, 5, 1);
    ++i;
    EXPECT_EQ(elements(i - 1), (std::vector<int>{5, 6, 7}));
    EXPECT_TRUE(IntVec(2, 1) == IntVec(2, 1, 0));
    EXPECT_TRUE(IntVec(2, 1) != IntVec(3, 1));
}
