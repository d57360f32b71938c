// The warning box as an application meets it: VK_warning starting the real veskoWarning,
// scripted, failing, and on a real X server under Xvfb.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "Base/qvOS/Process.h"
#include "ObrixBase/util/VeskoWarningParams.h"
#include "tests/support/ReportCapture.h"
#include "tests/support/ScopedEnv.h"
#include "tests/support/TempDir.h"

using obrix::test::ScopedEnv;
using qvObrixBase::VeskoWarningParams;
using qvOS::ProcessManager;
using qvString::CString;

namespace {

// A program's standard output, with stdin fed and the exit status in `status`.
CString run(const CString& program, const std::vector<CString>& args, const CString& in,
            int& status) {
    qvOS::ProcessOptions options;
    options.feedStdin = options.captureStdout = true;
    options.stdinText = in;
    options.timeoutSeconds = 60;
    qvOS::ProcessResult result;
    status = ProcessManager::runSync(program, args, options, result).isOk() ? result.exitCode : -99;
    return result.stdoutText;
}

VeskoWarningParams bigWarning() {
    CString utf8;
    for (int i = 0; i < 20000; ++i)
        utf8 += "Gr\xc3\xbc\xc3\x9f"
                "e \xe2\x80\x94 \xe6\x97\xa5 ";
    return {"Round trip",
            {utf8, "", "two\nlines\r\n", CString("nul\0byte", 8), "end\n"},
            {"Keep", utf8.substr(0, 600), "Replace \xe2\x86\x92 all"},
            {"detail \xc2\xb5m"},
            "question"};
}

TEST(VeskoWarningRoundTrip, TextsArriveIntactAndTheScriptedButtonComesBack) {
    const CString program = qvOS::AppMain::getBinaryPath("veskoWarning");
    const VeskoWarningParams p = bigWarning();
    int status = 0;
    VeskoWarningParams back;
    CString error;
    ASSERT_TRUE(qvObrixBase::decodeWarning(run(program, {"--print"}, encodeWarning(p), status),
                                           back, error))
        << error;
    EXPECT_EQ(back, p);

    const std::pair<CString, int> cases[] = {
        {p.buttons[1], 1}, {p.buttons[2], 2}, {"0", 0}, {"2", 2}, {"-1", -1}};
    for (const auto& [scripted, expected] : cases) {
        ScopedEnv answer("VESKO_WARNING_ANSWER", scripted.c_str());
        EXPECT_EQ(VK_warning(p), expected);
    }
    ScopedEnv answer("VESKO_WARNING_ANSWER", "OK");
    EXPECT_EQ(VK_warning(VK_WARN_LINE, "no buttons given", VK_WARN_END), 0);

    // Nobody to ask: the first button, at once.
    ScopedEnv unscripted("VESKO_WARNING_ANSWER", nullptr);
    EXPECT_EQ(run(program, {"--frontend", "log"}, encodeWarning(p), status), "0\n");
    EXPECT_EQ(status, 0);
}

TEST(VeskoWarningRoundTrip, AProgramThatCannotAnswerGivesFailedAndAReport) {
    obrixtest::TempDir dir;
    ScopedEnv helpers("OBRIX_HELPER_DIR", dir.path().c_str());
    const CString program =
        dir / qvOS::Filename::base(qvOS::AppMain::getBinaryPath("veskoWarning"));
    const VeskoWarningParams p = {"Lost?", {"The line that must not be lost"}, {"OK"}, {}, ""};
    const std::string warning = ". The warning was: Lost?\n  The line that must not be lost";

    obrixtest::TempDir::write(program, "not a program");
    {
        obrix::test::ReportCapture reports;
        EXPECT_EQ(VK_warning(p), VK_WARNING_FAILED);
        ASSERT_EQ(reports.reports().size(), 1u);
        EXPECT_EQ(reports.reports()[0].level, rptLevelError);
        const std::string& text = reports.reports()[0].text;
        EXPECT_EQ(text.rfind("Cannot show a warning through " + program + ": ", 0), 0u) << text;
        EXPECT_EQ(text.substr(text.size() - warning.size()), warning);
    }
#ifndef _WIN32
    obrixtest::TempDir::write(program, "#!/bin/sh\nkill -SEGV $$\n");
    std::filesystem::permissions(obrixtest::TempDir::fsPath(program),
                                 std::filesystem::perms::owner_all);
    obrix::test::ReportCapture reports;
    EXPECT_EQ(VK_warning(p), VK_WARNING_FAILED);
    EXPECT_EQ(reports.texts(), std::vector<std::string>{"Cannot show a warning through " + program +
                                                        ": it crashed (11)" + warning});
#endif
}

#if !defined(_WIN32) && defined(OBRIX_TEST_WARNING_DIALOG)

bool exists(const CString& path) {
    qvOS::FileInfo info;
    return qvOS::File::query(path, info).isOk() && info.exists;
}

// The process display n's lock file names, 0 when there is none. A lock whose process is gone
// is stale: the X server that starts next replaces it.
long long displayHolder(int n) {
    std::ifstream lock(CString::format("/tmp/.X%d-lock", n).c_str());
    long long holder = 0;
    return lock >> holder ? holder : 0;
}

CString tool(const std::vector<CString>& command) {
    int status = 0;
    CString out = run(command[0], {command.begin() + 1, command.end()}, "", status);
    return status == 0 ? out : CString();
}

TEST(VeskoWarningDesktop, TheDialogShowsTheWarningAndAnswersTheButtonPressed) {
    if (tool({"sh", "-c", "command -v xdotool && command -v import && command -v identify"})
            .empty())
        GTEST_SKIP() << "xdotool or imagemagick is missing: scripts/deps.sh desktop installs them";
    // An X server of this test's own, on the first display number no living server holds.
    // Another test run may pick the same number at the same moment: the server is ours only
    // once the display's lock names it, else the next number is tried. Killed servers leave
    // their lock and socket behind, so the test removes its own.
    qvOS::ProcessId xvfb = 0;
    int n = 71;
    auto stopXvfb = [&] {
        qvOS::ProcessResult ignored;
        ProcessManager::kill(xvfb);
        ProcessManager::wait(xvfb, 10, ignored);
        if (displayHolder(n) == static_cast<long long>(xvfb)) {
            std::error_code ignoredError;
            std::filesystem::remove(CString::format("/tmp/.X11-unix/X%d", n).c_str(), ignoredError);
            std::filesystem::remove(CString::format("/tmp/.X%d-lock", n).c_str(), ignoredError);
        }
    };
    bool ready = false;
    for (int tries = 0; n < 99 && tries < 5; ++n) {
        const long long holder = displayHolder(n);
        if (holder && ProcessManager::isAlive(holder))
            continue;
        ++tries;
        xvfb = 0;
        ProcessManager::startAsync(
            "Xvfb", {CString::format(":%d", n), "-screen", "0", "1024x768x24", "-nolisten", "tcp"},
            "", &xvfb);
        if (!xvfb)
            break;
        for (int i = 0; i < 100 && !ready && ProcessManager::isAlive(xvfb); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            ready = displayHolder(n) == static_cast<long long>(xvfb) &&
                    exists(CString::format("/tmp/.X11-unix/X%d", n));
        }
        if (ready)
            break;
        stopXvfb();
    }
    if (!ready)
        GTEST_SKIP() << "no X server could be started (Xvfb: scripts/deps.sh desktop)";
    ScopedEnv display("DISPLAY", CString::format(":%d", n).c_str());
    ScopedEnv unscripted("VESKO_WARNING_ANSWER", nullptr);

    CString title = CString::format("Dialog test %lld", (long long)ProcessManager::currentId());
    auto answer = std::async(std::launch::async, [&] {
        return VK_warning(VK_WARN_TITLE, title.c_str(), VK_WARN_LINE,
                          "The file \xe2\x80\x9cpart.obx\xe2\x80\x9d already exists.",
                          VK_WARN_BUTTON, "Overwrite", VK_WARN_BUTTON, "Cancel", VK_WARN_END);
    });
    CString window = tool({"timeout", "20", "xdotool", "search", "--sync", "--name", title});
    EXPECT_FALSE(window.empty()) << "the dialog did not appear";
    if (!window.empty()) {
        window.erase(window.find('\n'));
        obrixtest::TempDir dir;
        tool({"import", "-window", "root", dir / "screen.png"});
        // The whole screen, with far more colours than an empty one: the text and the icon.
        int width = 0, height = 0, colours = 0;
        std::sscanf(tool({"identify", "-format", "%w %h %k", dir / "screen.png"}).c_str(),
                    "%d %d %d", &width, &height, &colours);
        EXPECT_EQ(width, 1024);
        EXPECT_EQ(height, 768);
        EXPECT_GT(colours, 100);
        // The first button has the focus: Tab moves it to the second, space presses it.
        tool({"xdotool", "windowfocus", "--sync", window, "key", "Tab", "space"});
    }
    // A dialog that never answers ends with its X server, and VK_warning then fails.
    if (answer.wait_for(std::chrono::seconds(20)) != std::future_status::ready)
        stopXvfb();
    EXPECT_EQ(answer.get(), 1);
    stopXvfb();
}

#endif

} // namespace
