#include "ObrixBase/auto/containers/TbaseReporter.h"

#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/auto/containers/TdebugTrace.h"
#include "ObrixBase/util/aa_debug.h"
#include "tests/support/ReportCapture.h"

namespace {

using obrix::test::Report;
using obrix::test::ReportCapture;

// An operation's own reporter: records what reaches it and cancels after three calls.
class RecordingReporter : public TbaseReporter {
public:
    RecordingReporter() : TbaseReporter("Fitting") {}
    std::vector<std::string> seen;
    int asked = 0;

protected:
    void reportProgress(const char* task, int percent) override {
        seen.push_back(std::string(task) + " " + std::to_string(percent));
    }
    void reportWarning(const char* text) override { seen.push_back(std::string("W ") + text); }
    int cancelRequested() override { return ++asked >= 3; }
};

void inner() {
    TdebugTrace t("inner");
    t.note("x = %d", 4);
}

} // namespace

TEST(TbaseReporter, DefaultSinksGoToUserReportingAndProgressOnlyOnChange) {
    ReportCapture capture;
    TbaseReporter r("Importing");
    for (double f : {0.0, 0.001, 0.5, 0.504, 2.0, -1.0})
        r.progress(f);
    r.warning("%d faces skipped", 3);
    r.error("cannot read %s", "part.obj");
    EXPECT_EQ(capture.reports(), (std::vector<Report>{{rptLevelStatus, "Importing: 0%"},
                                                      {rptLevelStatus, "Importing: 50%"},
                                                      {rptLevelStatus, "Importing: 100%"},
                                                      {rptLevelStatus, "Importing: 0%"},
                                                      {rptLevelUser, "Warning: 3 faces skipped"},
                                                      {rptLevelError, "cannot read part.obj"}}));
    EXPECT_EQ(r.warningCount(), 1);
    EXPECT_EQ(r.errorCount(), 1);
    EXPECT_FALSE(r.cancelled());
}

TEST(TbaseReporter, SubclassesReceiveWhatTheOperationReports) {
    ReportCapture capture;
    RecordingReporter r;
    int steps = 0;
    while (!r.cancelled()) {
        r.progress(steps / 4.0);
        ++steps;
    }
    r.warning("gap of %.1f", 0.5);
    r.error("left to the default"); // not overridden: reaches rptError
    EXPECT_EQ(steps, 2);
    EXPECT_EQ(r.seen, (std::vector<std::string>{"Fitting 0", "Fitting 25", "W gap of 0.5"}));
    EXPECT_EQ(capture.texts(), std::vector<std::string>{"left to the default"});
}

TEST(TdebugTrace, IndentsNestedScopesAndBalancesWhenTurnedOffMidway) {
    AA_set_print_out(AA_OUTPUT_STDOUT, nullptr);
    testing::internal::CaptureStdout();
    const int indent = AA_get_indent();
    {
        TdebugTrace outer("outer");
        inner();
        TdebugTrace::setEnabled(false);
        TdebugTrace silent("silent");
        inner();
        TdebugTrace::setEnabled(true); // outer still leaves, silent stays silent
    }
    EXPECT_EQ(AA_get_indent(), indent);
    std::fflush(stdout);
    AA_set_print_out(AA_OUTPUT_STDERR, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Enter outer\n"
                                                      "   Enter inner\n"
                                                      "      x = 4\n"
                                                      "   Leave inner\n"
                                                      "Leave outer\n");
}
