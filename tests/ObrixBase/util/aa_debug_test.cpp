// Status texts, error reports and the debug printer's destinations, indentation and files.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/util/aa_debug.h"
#include "tests/support/ReportCapture.h"

namespace {

namespace fs = std::filesystem;

std::string readFile(const fs::path& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Sends the debug printer to a temporary stream and hands back what was printed; restores
// standard error and indent level 0 afterwards, which every test here starts from.
class DebugPrinter : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("aa_debug_test_" + std::to_string(getpid()) + "_" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
        stream = std::tmpfile();
        ASSERT_NE(stream, nullptr);
        AA_set_print_out(AA_OUTPUT_STREAM, stream);
    }
    void TearDown() override {
        AA_set_print_out(AA_OUTPUT_STDERR, nullptr);
        AA_set_indent(0);
        std::fclose(stream);
        fs::remove_all(dir);
    }
    std::string printed() {
        std::fflush(stream);
        std::rewind(stream);
        std::string text;
        for (int ch; (ch = std::fgetc(stream)) != EOF;)
            text.push_back(char(ch));
        std::fseek(stream, 0, SEEK_END);
        return text;
    }
    std::string file(const char* name) { return (dir / name).string(); }

    fs::path dir;
    FILE* stream = nullptr;
};

TEST(StatusText, CodesKeepTheirFixedNumbersAndTexts) {
    // The ends of the table and the texts that reach users' error reports most often.
    const std::pair<int, const char*> spots[] = {{VK_NO_ERROR, "NO ERROR"},
                                                 {VK_ARGUMENT_ERROR, "ARGUMENT ERROR"},
                                                 {VK_ITEM_NOT_FOUND, "ITEM NOT FOUND"},
                                                 {26, "MISSING CURVE(S)"},
                                                 {VK_STATUS_COUNT - 1, "EXPRESSION ERROR"}};
    EXPECT_EQ(VK_STATUS_COUNT, 32);
    for (const auto& [code, text] : spots) {
        EXPECT_STREQ(Vk_error_text[code], text) << code;
        EXPECT_EQ(Vk_get_error_text(code), Vk_error_text[code]);
    }
    EXPECT_EQ(Vk_get_error_text(-1), nullptr);
    EXPECT_EQ(Vk_get_error_text(VK_STATUS_COUNT), nullptr);
}

TEST(StatusText, ErrorReportsCarryCodeFileLineAndText) {
    obrix::test::ReportCapture capture;
    EXPECT_EQ(Vk_print_conditional(0, "f", 7, "t"), 1);
    EXPECT_TRUE(capture.reports().empty());
    EXPECT_EQ(Vk_print_conditional(12, "f", 7, "t"), 1);
    EXPECT_EQ(Vk_print_error(1, nullptr, 0, nullptr), 1);
    const std::vector<obrix::test::Report> expected = {
        {rptLevelError, "ERROR ITEM NOT FOUND (file f, line 7): t"},
        {rptLevelError, "ERROR ARGUMENT ERROR (file (null), line 0): (null)"}};
    EXPECT_EQ(capture.reports(), expected);
}

TEST_F(DebugPrinter, IndentLevelIsUnboundedAndNegativeLevelsPrintNothing) {
    AA_set_indent(2);
    EXPECT_EQ(AA_indent(), 1);
    AA_set_indent(0);
    AA_set_indent(-2);
    EXPECT_EQ(AA_get_indent(), -1);
    AA_indent();
    AA_set_indent(-1);
    AA_set_indent(-1);
    EXPECT_EQ(AA_get_indent(), 1);
    EXPECT_EQ(Aa_print_assert("f.c", 3, "x > 0"), 32);
    EXPECT_EQ(printed(), "      "
                         "   ASSERT (file f.c, line 3): x > 0");
}

TEST_F(DebugPrinter, ChosenFileIsCreatedOnFirstPrintAndAppendedWhenChosenAgain) {
    const std::string a = file("a.log");
    { std::ofstream(a) << "stale\n"; }
    AA_set_print_out(AA_OUTPUT_FILE, const_cast<char*>(a.c_str()));
    EXPECT_EQ(AA_debug_print("one %d\n", 1), 6);
    AA_set_print_out(AA_OUTPUT_STDERR, nullptr);
    EXPECT_EQ(readFile(a), "one 1\n");

    AA_set_print_out(AA_OUTPUT_FILE, const_cast<char*>(a.c_str()));
    AA_debug_print("two\n");
    AA_set_print_out(AA_OUTPUT_STREAM, stream);
    EXPECT_EQ(readFile(a), "one 1\ntwo\n");

    // Choosing the current file again closes it: output after a move goes to a new file.
    AA_set_print_out(AA_OUTPUT_FILE, const_cast<char*>(a.c_str()));
    AA_debug_print("three\n");
    AA_set_print_out(AA_OUTPUT_FILE, const_cast<char*>(a.c_str()));
    fs::rename(a, file("a.old"));
    AA_debug_print("four\n");
    AA_set_print_out(AA_OUTPUT_STREAM, stream);
    EXPECT_EQ(readFile(file("a.old")), "one 1\ntwo\nthree\n");
    EXPECT_EQ(readFile(a), "four\n");

    const std::string never = file("never.log");
    AA_set_print_out(AA_OUTPUT_FILE, const_cast<char*>(never.c_str()));
    AA_set_print_out(AA_OUTPUT_STREAM, stream);
    EXPECT_FALSE(fs::exists(never));
    EXPECT_EQ(printed(), "");
}

TEST_F(DebugPrinter, NullNameOrStreamChangesNoDestination) {
    AA_set_indent(1);
    AA_set_print_out(AA_OUTPUT_FILE, nullptr);
    EXPECT_EQ(AA_get_print_out(nullptr), AA_OUTPUT_STREAM);
    AA_set_print_out(AA_OUTPUT_STREAM, nullptr);
    AA_debug_print("still here\n");
    EXPECT_EQ(printed(), "   Cannot open debug output file\nstill here\n");
}

} // namespace
