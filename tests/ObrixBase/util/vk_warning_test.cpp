#include "ObrixBase/util/vk_warning.h"

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

#include "Base/qvOS/Env.h"
#include "Base/rpt/rpt.h"
#include "ObrixBase/util/VeskoWarningParams.h"

using qvObrixBase::VeskoWarningParams;
using qvString::CString;

namespace {

VeskoWarningParams shown;

int recordWarning(const VeskoWarningParams& params) {
    shown = params;
    return 7;
}

VeskoWarningParams warning(CString title, qv::vector<CString> lines, qv::vector<CString> buttons,
                           CString kind = "") {
    return {std::move(title), std::move(lines), std::move(buttons), {}, std::move(kind)};
}

TEST(VkWarning, CodesAreReadInPairsAndUnknownCodesDropTheirArgument) {
    qvObrixBase::WarningPresenter previous = qvObrixBase::setWarningPresenter(&recordWarning);
    EXPECT_EQ(VK_warning(VK_WARN_LINE, "first", static_cast<VK_Warn_Code>(9), "skipped",
                         VK_WARN_BUTTON, "Yes", VK_WARN_TITLE, "old title", VK_WARN_LINE, nullptr,
                         static_cast<VK_Warn_Code>(-3), "also skipped", VK_WARN_KIND, "error",
                         VK_WARN_BUTTON, "No", VK_WARN_TITLE, "Title", VK_WARN_END),
              7);
    EXPECT_EQ(shown, warning("Title", {"first", ""}, {"Yes", "No"}, "error"));
    VK_warning(VK_WARN_END); // takes no argument: nothing after it is read
    EXPECT_EQ(shown, VeskoWarningParams{});

    const char* labels[] = {"Save", nullptr, "Discard"};
    VK_warning_buttons(3, labels, VK_WARN_BUTTON, "Cancel", VK_WARN_LINE, "Unsaved", VK_WARN_END);
    EXPECT_EQ(shown, warning("", {"Unsaved"}, {"Save", "", "Discard", "Cancel"}));
    for (int count : {0, -1, -100}) {
        VK_warning_buttons(count, labels, VK_WARN_LINE, "x", VK_WARN_END);
        EXPECT_EQ(shown, warning("", {"x"}, {})) << count;
    }
    VK_warning_buttons(2, nullptr, VK_WARN_END);
    EXPECT_EQ(shown, VeskoWarningParams{});
    VK_warning_ok(nullptr);
    EXPECT_EQ(shown, warning("", {""}, {"OK"}));
    qvObrixBase::setWarningPresenter(previous);
}

TEST(VkWarning, TheTextFormCarriesEveryTextAndRefusesDamage) {
    VeskoWarningParams p = warning("R\xc3\xa9sum\xc3\xa9", {"", "two\nlines", "end\n", "1 2\r\n"},
                                   {"", "b\n"}, "question");
    p.lines.push_back(CString("nul\0inside", 10) + CString(1 << 20, 'x'));
    p.details = {"detail"};
    VeskoWarningParams back;
    CString error;
    ASSERT_TRUE(qvObrixBase::decodeWarning(qvObrixBase::encodeWarning(p), back, error)) << error;
    EXPECT_EQ(back, p);
    EXPECT_EQ(qvObrixBase::encodeWarning(warning("T", {"a"}, {"OK"})),
              "veskoWarning 1\ntitle 1\nT\nkind 0\n\nline 1\na\nbutton 2\nOK\nend\n");
    // A newer writer's fields are skipped.
    ASSERT_TRUE(qvObrixBase::decodeWarning("veskoWarning 1\ncolour 3\nred\nline 2\nhi\nend\n", back,
                                           error));
    EXPECT_EQ(back, warning("", {"hi"}, {}));

    const char* const noHeader = "the description does not start with \"veskoWarning 1\"";
    const char* const badCount = "the \"line\" record does not match its byte count";
    const char* damaged[][2] = {
        {"veskoWarning 2\nend\n", noHeader},
        {"veskoWarning 1\nline 2\nhi\n", "the description ends without \"end\""},
        {"veskoWarning 1\nline 5\nhi\nend\n", badCount},
        {"veskoWarning 1\nline 1\nhi\nend\n", badCount},
        {"veskoWarning 1\nline 99999999999999999999\n",
         "bad record header \"line 99999999999999999999\""},
        {"veskoWarning 1\nline -1\n\nend\n", "bad record header \"line -1\""},
        {"veskoWarning 1\nline 1", "a record does not start with \"<tag> <byte count>\""},
    };
    for (const auto& d : damaged) {
        back = p;
        EXPECT_FALSE(qvObrixBase::decodeWarning(d[0], back, error)) << d[0];
        EXPECT_EQ(error, d[1]) << d[0];
    }
}

// QA is worked out once per process, so each case runs in a child of its own. Exit status:
// 1 when on at the first call, plus 2 when on at a later call after the variables changed.
void qaChild(const char* qa, const char* debug) {
    qvOS::SetEnv("VESKO_QA", qa);
    qvOS::SetEnv("VESKO_DEBUG", debug);
    int first = VeskoQAEnabled() ? 1 : 0;
    if (!first)
        VeskoQAAssert(1, false); // QA off: nothing happens
    qvOS::SetEnv("VESKO_QA", qa ? nullptr : "1");
    qvOS::SetEnv("VESKO_DEBUG", nullptr);
    std::exit(first + (VeskoQAEnabled() ? 2 : 0));
}

void printReport(int level, const char* text) {
    std::fprintf(stderr, "[%d:%s]\n", level, text);
}

TEST(VeskoQA, OnOffAndOnAgainWithTheVariablesThenAFailedAssertionCrashes) {
    EXPECT_EXIT(qaChild("", nullptr), ::testing::ExitedWithCode(3), "");
    EXPECT_EXIT(qaChild(nullptr, nullptr), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(qaChild(nullptr, "0"), ::testing::ExitedWithCode(3), "");
    EXPECT_DEATH(
        {
            qvOS::SetEnv("VESKO_QA", "1");
            rptSetSink(&printReport);
            VeskoQAAssert(1, true);
            checkVeskoHeap();
            VeskoQAAssert(4711, false);
        },
        "\\[5:VESKO_QA Assertion failed:  You've triggered Bug #4711,\nwhich we've been looking "
        "for!  Please make sure to fill\nout the crash information as fully as possible\\.\\]");
}

} // namespace
