#include "programs/veskoWarning/WarningProgram.h"

#include <cstdio>
#include <string>

#include <gtest/gtest.h>

using qvObrixBase::VeskoWarningParams;
using qvString::CString;

namespace {

VeskoWarningParams warning(qv::vector<CString> buttons) {
    return {"Export", {"Overwrite part.obx?"}, std::move(buttons), {"/a/part.obx"}, ""};
}

TEST(VeskoWarningProgram, ScriptedAnswersNameALabelFirstThenAnIndex) {
    VeskoWarningParams p = warning({"Keep", "2", "Keep", "Replace"});
    const std::pair<const char*, int> good[] = {{"Keep", 0}, {"Replace", 3}, {"2", 1},
                                                {"3", 3},    {"0", 0},       {"-1", -1}};
    for (const auto& [answerText, expected] : good) {
        int answer = -9;
        CString error;
        EXPECT_TRUE(veskoWarning::scriptedAnswer(p, answerText, answer, error)) << answerText;
        EXPECT_EQ(answer, expected) << answerText;
    }
    for (const char* answerText : {"4", "-2", "keep", "", " 1", "+1", "1x"}) {
        int answer = -9;
        CString error;
        EXPECT_FALSE(veskoWarning::scriptedAnswer(p, answerText, answer, error)) << answerText;
        EXPECT_EQ(error, CString("VESKO_WARNING_ANSWER=\"") + answerText +
                             "\" names no button of this warning");
    }
}

TEST(VeskoWarningProgram, TheTerminalShowsNumberedButtonsAndRereadsBadAnswers) {
    const VeskoWarningParams p = warning({"Overwrite", "Cancel"});
    const std::string shown =
        "Export\nOverwrite part.obx?\n    /a/part.obx\n  1) Overwrite\n  2) Cancel\n";
    const std::string prompt = "Choose 1-2 [1]: ";
    std::string garbage;
    for (int i = 0; i < 25; ++i)
        garbage += "nonsense\n";
    const struct {
        std::string typed;
        int answer;
        int prompts;
    } cases[] = {{"2\n", 1, 1}, {"\n", 0, 1}, {"1\r\n", 0, 1}, {"x\n0\n3\n2\n", 1, 4},
                 {"", -1, 1},   {"7", -1, 1}, {"2", 1, 1},     {garbage, -1, 20}};
    for (const auto& c : cases) {
        std::FILE* in = std::tmpfile();
        std::fputs(c.typed.c_str(), in);
        std::rewind(in);
        testing::internal::CaptureStdout();
        EXPECT_EQ(veskoWarning::askOnTerminal(p, in, stdout), c.answer) << c.typed;
        std::fclose(in);
        std::string expected = shown;
        for (int i = 0; i < c.prompts; ++i)
            expected += prompt;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), expected + (c.answer == -1 ? "\n" : ""))
            << c.typed;
    }
}

} // namespace
