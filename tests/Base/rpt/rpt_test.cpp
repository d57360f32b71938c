#include "Base/rpt/rpt.h"

#include <gtest/gtest.h>

#include "tests/support/ReportCapture.h"

using obrix::test::Report;
using obrix::test::ReportCapture;

namespace {
void vErrorHelper(const char* format, ...) {
    va_list args;
    va_start(args, format);
    rptVError(format, args);
    va_end(args);
}
} // namespace

TEST(Rpt, EveryReportUpToTheVerbosityReachesTheSinkWithItsLevelAndText) {
    ReportCapture capture;
    rptError("error %d", 1);
    rptUser("user %s", "u");
    rptStatus("status %.1f", 2.5);
    rptConfirmOK("confirm");
    rptDebug(0, "debug %c", 'x');
    rptDebug(1, "hidden"); // above the verbosity
    rptSetDebugLevel(2);
    rptDebug(2, "shown");
    rptSetDebugLevel(0);
    const std::string longText(5000, 'a'); // not cut
    vErrorHelper("%s-%d", longText.c_str(), 7);
    std::vector<Report> expected{{rptLevelError, "error 1"},      {rptLevelUser, "user u"},
                                 {rptLevelStatus, "status 2.5"},  {rptLevelConfirm, "confirm"},
                                 {rptLevelDebug, "debug x"},      {rptLevelDebug, "shown"},
                                 {rptLevelError, longText + "-7"}};
    EXPECT_EQ(capture.reports(), expected);
}

TEST(Rpt, SetSinkReturnsThePreviousSinkAndNullRestoresTheDefault) {
    static int calls = 0;
    ReportSink mine = [](int, const char*) { ++calls; };
    ReportSink before = rptSetSink(mine);
    EXPECT_EQ(before, nullptr) << "the default sink is reported as null";
    rptError("x");
    EXPECT_EQ(rptSetSink(nullptr), mine);
    EXPECT_EQ(calls, 1);
    testing::internal::CaptureStderr();
    rptError("to stderr");
    rptError("kept\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to stderr\nkept\n");
}
