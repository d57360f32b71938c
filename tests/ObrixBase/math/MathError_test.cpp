#include "ObrixBase/math/MathError.h"

#include <cstdio>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/math/DoubleVec.h"
#include "tests/support/MathErrorCapture.h"
#include "tests/support/ReportCapture.h"

using obrix::test::MathErrorCapture;
using obrix::test::ReportCapture;

TEST(MathErrorHandler, SeverityRequestOverridesTheEntryDefault) {
    ReportCapture reports;
    // INDEX terminates by default; a request of 0 makes it continue.
    mathErrorRaise(MathError{MATH_INDEX, MATH_CONTINUE, 0}, "IntVec", 7, 2u);
    EXPECT_EQ(reports.joined(), "** [INDEX: IntVec]: Index (7) out of range [0->2].\n"
                                "** Processing continues.\n");
    reports.clear();
    mathErrorRaise(MathError{0, MATH_TERMINATE, 0});
    EXPECT_TRUE(reports.reports().empty()) << "code 0 is ignored";
}

TEST(MathErrorHandlerDeathTest, TerminatingErrorsAbortAfterTheMessageEvenThroughABufferedStream) {
    EXPECT_DEATH(
        {
            DoubleVec v(3, 0.0);
            v.boundsCheck(-1);
        },
        // The default sink puts each report on its own line.
        "\\[INDEX: DoubleVec\\]: Index \\(-1\\) out of range \\[0->2\\]\n\\.\n"
        "\\*\\* Processing terminated\\.");
    EXPECT_DEATH(mathErrorRaise(std::uint16_t{0x7003}), "Error number 0x7003\\.");
    // A fully buffered stderr (as when it is a pipe on some systems) must not swallow the
    // message that explains the abort; a request to terminate overrides the entry's default.
    EXPECT_DEATH(
        {
            std::setvbuf(stderr, nullptr, _IOFBF, 1 << 16);
            mathErrorRaise(MathError{MATH_ZEROVEC, MATH_TERMINATE, 0}, "f", "g");
        },
        "\\[ZEROVEC: f\\]: g: vector is empty\n\\.\n\\*\\* Processing terminated");
}

TEST(MathErrorHandler, ReplacementHandlerSeesRecordAndFormattedArguments) {
    MathErrorCapture capture;
    mathErrorRaise(std::uint16_t{MATX_BOUNDS}, 2, 0, 2u, 3u);
    ASSERT_EQ(capture.errors().size(), 1u);
    const auto& e = capture.errors()[0];
    EXPECT_EQ(e.code, MATX_BOUNDS);
    EXPECT_EQ(e.severity, MATH_DEFAULT);
    EXPECT_EQ(e.tag, MATH_TAG_SHORTHAND);
    EXPECT_EQ(e.message, "Element (2x0) not in matrix of size (2x3)");
    MathErrorHandler mine = setMathErrorHandler(nullptr);
    EXPECT_NE(mine, &defaultMathErrorHandler);
    EXPECT_EQ(setMathErrorHandler(mine), &defaultMathErrorHandler);
}

TEST(MathCatalogues, CataloguesThreeAndFourAreRegisteredWithTheirDefaults) {
    const std::uint16_t vectors = RWMATHInit::count(), matrices = RWMATXInit::count();
    EXPECT_GE(vectors, 1u);
    EXPECT_GE(matrices, 1u);
    {
        // Each registrar keeps its own counter, the same one in every module.
        RWMATXInit extra;
        EXPECT_EQ(RWMATXInit::count(), matrices + 1);
        EXPECT_EQ(RWMATHInit::count(), vectors);
    }
    EXPECT_EQ(RWMATXInit::count(), matrices);
    EXPECT_EQ(mathErrorDefaultSeverity(MATH_ZEROVEC), MATH_CONTINUE);
    EXPECT_EQ(mathErrorDefaultSeverity(MATH_BADROOT), MATH_TERMINATE);
    EXPECT_STREQ(mathErrorFormat(MATH_BADROOT), "[BADROOT: %s]: Zero'th root of 1 requested");
    EXPECT_EQ(mathErrorFormat(0x3014), nullptr) << "catalogue 3 has 20 entries";
    EXPECT_EQ(mathErrorDefaultSeverity(MATX_NOTSYM), MATH_CONTINUE);
    EXPECT_STREQ(mathErrorFormat(MATX_RESTORE), "Restoring %s, data vector len %d, expected %u");
    EXPECT_EQ(mathErrorFormat(0x401A), nullptr) << "catalogue 4 has 26 entries";
}

TEST(MathCatalogues, CountedRegistrationLinksOnceAndUnlinksOnLastRelease) {
    static const MathMessage entries[] = {{MATH_CONTINUE, "first %d"}};
    static MessageCatalogue catalogue{9, entries, 1, nullptr};
    std::uint16_t counter = 0;
    mathCatalogueAcquire(counter, &catalogue);
    mathCatalogueAcquire(counter, &catalogue);
    mathCatalogueRegister(&catalogue); // already linked: no second node, no cycle
    int links = 0;
    for (const MessageCatalogue* c = mathCatalogueList(); c != nullptr; c = c->next)
        links += c == &catalogue;
    EXPECT_EQ(links, 1);
    EXPECT_STREQ(mathErrorFormat(0x9000), "first %d");
    mathCatalogueRelease(counter, 9);
    EXPECT_NE(mathErrorFormat(0x9000), nullptr);
    mathCatalogueRelease(counter, 9);
    EXPECT_EQ(counter, 0u);
    EXPECT_EQ(mathErrorFormat(0x9000), nullptr);
    EXPECT_NE(mathErrorFormat(MATH_INDEX), nullptr) << "other catalogues stay linked";
}

TEST(MathErrorHandler, ThrowingHandlerCarriesMessageCodeAndResolvedSeverity) {
    ReportCapture reports;
    MathErrorHandler previous = setMathErrorHandler(&throwingMathErrorHandler);
    const struct {
        MathError error;
        std::uint16_t code;
        std::uint32_t severity;
        const char* message;
    } cases[] = {
        // A default request resolves to the entry's own severity.
        {{MATH_INDEX, MATH_DEFAULT, 0},
         MATH_INDEX,
         MATH_TERMINATE,
         "[INDEX: IntVec]: Index (7) out of range [0->2]"},
        {{MATH_INDEX, MATH_CONTINUE, 0},
         MATH_INDEX,
         MATH_CONTINUE,
         "[INDEX: IntVec]: Index (7) out of range [0->2]"},
        {{0x7003, MATH_DEFAULT, 0}, 0x7003, MATH_TERMINATE, "Error number 0x7003."},
    };
    for (const auto& c : cases) {
        try {
            mathErrorRaise(c.error, "IntVec", 7, 2u);
            ADD_FAILURE() << "no exception for " << c.message;
        } catch (const MathException& e) {
            EXPECT_EQ(e.code(), c.code);
            EXPECT_EQ(e.severity(), c.severity);
            EXPECT_STREQ(e.what(), c.message);
        }
    }
    // Through a real check: the bad element access is abandoned, not performed.
    DoubleVec v(3, 0.0);
    EXPECT_THROW(v.boundsCheck(5), MathException);
    EXPECT_NO_THROW(mathErrorRaise(MathError{0, MATH_TERMINATE, 0}));
    setMathErrorHandler(previous);
    EXPECT_TRUE(reports.reports().empty());
}

TEST(MathErrorHandler, ContinuingHandlerReportsLikeTheDefaultButNeverStops) {
    ReportCapture reports;
    MathErrorHandler previous = setMathErrorHandler(&continuingMathErrorHandler);
    mathErrorRaise(MathError{MATH_INDEX, MATH_TERMINATE, 0}, "IntVec", 7, 2u);
    mathErrorRaise(std::uint16_t{0x7003});
    setMathErrorHandler(previous);
    EXPECT_EQ(reports.joined(), "** [INDEX: IntVec]: Index (7) out of range [0->2].\n"
                                "** Processing continues.\n"
                                "Error number 0x7003.** Processing continues.\n");
}
