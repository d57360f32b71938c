#include "ObrixBase/geometry/TnumberSequence.h"

#include <climits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::vector<int> numbers(const TnumberSequence& s) {
    return std::vector<int>(s.begin(), s.end());
}

} // namespace

TEST(TnumberSequence, ReadsRangesWithStepsInEitherDirection) {
    TnumberSequence s;
    ASSERT_TRUE(s.setFromText(" 1-4, 15 ,20-30x4,3-1,-2--4x2").isOk());
    EXPECT_EQ(numbers(s), (std::vector<int>{1, 2, 3, 4, 15, 20, 24, 28, 3, 2, 1, -2, -4}));
    EXPECT_EQ(s.count(), 13);
    EXPECT_EQ(s.text(), "1-4,15,20-28x4,3-1,-2--4x2"); // the last number on a step is kept
    for (int n : {1, 4, 15, 24, -4, -2})
        EXPECT_TRUE(s.contains(n)) << n;
    for (int n : {0, 5, 22, 30, -3})
        EXPECT_FALSE(s.contains(n)) << n;
    // A step past the end leaves a single number, printed as one.
    ASSERT_TRUE(s.setFromText("5-6x9").isOk());
    EXPECT_EQ(s.text(), "5");
    ASSERT_TRUE(s.setFromText("  ").isOk());
    EXPECT_TRUE(s.isEmpty());
    EXPECT_TRUE(s.setFromText(nullptr).isOk());
    // The limits of int are numbers like any other.
    ASSERT_TRUE(s.setFromText("2147483646-2147483647,-2147483648").isOk());
    EXPECT_EQ(numbers(s), (std::vector<int>{INT_MAX - 1, INT_MAX, INT_MIN}));
}

TEST(TnumberSequence, MalformedTextIsNamedWithItsColumnAndChangesNothing) {
    TnumberSequence s;
    ASSERT_TRUE(s.setFromText("7").isOk());
    const struct {
        const char* text;
        int code;
        const char* message;
    } cases[] = {
        {"1-", 1, "Number sequence \"1-\": expected a number at column 3"},
        {"1-9x0", 2, "Number sequence \"1-9x0\": step must be at least 1 at column 5"},
        {"1 2", 1, "Number sequence \"1 2\": expected ',' or the end at column 3"},
        {"1-3y2", 1, "Number sequence \"1-3y2\": expected ',' or the end at column 4"},
        {"2147483648", 3, "Number sequence \"2147483648\": number out of range at column 1"},
        {"a", 1, "Number sequence \"a\": expected a number at column 1"},
        {"1,", 1, "Number sequence \"1,\": expected a number at column 3"},
    };
    for (const auto& c : cases) {
        const qvUtil::Error e = s.setFromText(c.text);
        EXPECT_EQ(e.code(), c.code) << c.text;
        EXPECT_EQ(e.message(), c.message);
        EXPECT_EQ(s.text(), "7");
    }
    EXPECT_EQ(s.append(1, 5, 0).code(), TnumberSequence::StepError);
    EXPECT_EQ(s.text(), "7");
}

TEST(TnumberSequence, PrintedTextReadsBackToTheSameSequence) {
    std::mt19937 gen(7);
    std::uniform_int_distribution<int> value(-50, 50), step(1, 7), kind(0, 2);
    for (int round = 0; round < 200; ++round) {
        TnumberSequence s;
        std::vector<int> model;
        for (int r = 0; r < round % 6; ++r) {
            const int first = value(gen), last = kind(gen) ? value(gen) : first, st = step(gen);
            ASSERT_TRUE(s.append(first, last, st).isOk());
            for (int v = first; first <= last ? v <= last : v >= last;
                 v += first <= last ? st : -st)
                model.push_back(v);
        }
        EXPECT_EQ(numbers(s), model);
        EXPECT_EQ(s.count(), static_cast<std::int64_t>(model.size()));
        TnumberSequence back;
        ASSERT_TRUE(back.setFromText(s.text().c_str()).isOk()) << s.text();
        EXPECT_TRUE(back == s) << s.text();
    }
}
