#include "Base/qvOS/Process.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "Base/qvTCP/Socket.h"
#include "tests/support/ScopedEnv.h"
#include "tests/support/TempDir.h"

using qvOS::ProcessManager;
using qvOS::ProcessOptions;
using qvOS::ProcessResult;
using qvString::CString;

namespace {

CString helper() {
    return qvOS::AppMain::getBinaryPath("obrix_test_helper");
}

TEST(AppMain, FindsHelpersBesideTheTestsAndHonoursTheOverride) {
    CString exe = qvOS::AppMain::getExecutablePath();
    ASSERT_FALSE(exe.empty());
    EXPECT_TRUE(qvOS::Filename::isAbsolute(exe.c_str()));
    EXPECT_FALSE(qvOS::AppMain::getLibraryPath().empty());
    CString path = helper();
    EXPECT_EQ(qvOS::Filename::directory(path), qvOS::Filename::directory(exe));
    qvOS::FileInfo info;
    ASSERT_TRUE(qvOS::File::query(path, info).isOk());
    EXPECT_TRUE(info.exists) << path;

    // A missing helper still names a path beside the executable, so starting it says so.
    EXPECT_EQ(qvOS::AppMain::getBinaryPath("no_such_helper"),
              qvOS::Filename::join(qvOS::Filename::directory(exe), qvOS::Filename::hasDrives()
                                                                       ? "no_such_helper.exe"
                                                                       : "no_such_helper"));
    EXPECT_EQ(qvOS::AppMain::getBinaryPath(nullptr), "");

    obrixtest::TempDir tmp;
    CString name = qvOS::Filename::base(path);
    ASSERT_TRUE(qvOS::fileCopy(path, tmp / name, false).isOk());
    obrix::test::ScopedEnv helperDir("OBRIX_HELPER_DIR", tmp.path().c_str());
    EXPECT_EQ(helper(), tmp / name);
}

TEST(ProcessManager, ArgumentsArriveVerbatimAndExitCodesComeBack) {
    const std::vector<CString> args = {"plain",
                                       "with space",
                                       "",
                                       "quote\"inside",
                                       "\"quoted\"",
                                       "back\\slash",
                                       "trailing\\",
                                       "trailing space\\",
                                       "\\\\server\\share\\",
                                       "slash-quote\\\"",
                                       "tab\there",
                                       "\xc3\xa9t\xc3\xa9 \xe6\x97\xa5",
                                       "%PATH% $HOME `x` ;|&<>*?"};
    std::vector<CString> command = {"echo"};
    command.insert(command.end(), args.begin(), args.end());
    ProcessOptions options;
    options.captureStdout = true;
    ProcessResult result;
    ASSERT_TRUE(ProcessManager::runSync(helper(), command, options, result).isOk());
    CString expected;
    for (const CString& a : args)
        expected += CString::format("%lu:", static_cast<unsigned long>(a.size())) + a + "\n";
    EXPECT_EQ(result.stdoutText, expected);
    EXPECT_EQ(result.exitCode, 0);

    for (int code : {0, 1, 7, 255}) {
        ASSERT_TRUE(ProcessManager::runSync(helper(), {"exit", CString::format("%d", code)},
                                            ProcessOptions{}, result)
                        .isOk());
        EXPECT_EQ(result.exitCode, code);
        EXPECT_FALSE(result.crashed);
    }
}

TEST(ProcessManager, MissingProgramsFailAtOnce) {
    obrixtest::TempDir tmp;
    ProcessResult result;
    auto start = std::chrono::steady_clock::now();
    qvUtil::Error e =
        ProcessManager::runSync(tmp / "no_such_program", {}, ProcessOptions{}, result);
    EXPECT_EQ(e.code(), qvOS::OSError::NotFound) << e.message();
    EXPECT_NE(e.message().find("no_such_program"), std::string::npos) << e.message();
    qvOS::ProcessId pid = 0;
    EXPECT_EQ(ProcessManager::startAsync(tmp / "no_such_program", {}, "", &pid).code(),
              qvOS::OSError::NotFound);
    EXPECT_EQ(ProcessManager::startAsync("", {}, "", &pid).code(), qvOS::OSError::InvalidArgument);
    EXPECT_TRUE(
        ProcessManager::startAsync(helper(), {"exit", "0"}, tmp / "no_such_dir", &pid).isError());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(ProcessManager, LargeStdinAndStdoutFlowTogetherWithoutDeadlock) {
    // Far more than a pipe holds in either direction: the child writes back while we still feed.
    CString text;
    for (int i = 0; text.size() < (3 << 20); ++i)
        text += CString::format("line %d\n", i);
    ProcessOptions options;
    options.feedStdin = true;
    options.stdinText = text;
    options.captureStdout = true;
    options.timeoutSeconds = 60;
    ProcessResult result;
    ASSERT_TRUE(ProcessManager::runSync(helper(), {"cat"}, options, result).isOk());
    EXPECT_EQ(result.stdoutText.size(), text.size());
    EXPECT_TRUE(result.stdoutText == text);
}

TEST(ProcessManager, TimeoutKillsTheChild) {
    ProcessOptions options;
    options.timeoutSeconds = 0.3;
    ProcessResult result;
    auto start = std::chrono::steady_clock::now();
    qvUtil::Error e = ProcessManager::runSync(helper(), {"sleep", "30"}, options, result);
    EXPECT_EQ(e.code(), qvOS::OSError::TimedOut) << e.message();
    EXPECT_TRUE(result.crashed);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(ProcessManager, AsyncChildrenAreWaitedForKilledAndForgotten) {
    qvOS::ProcessId pid = 0;
    ASSERT_TRUE(ProcessManager::startAsync(helper(), {"exit", "3"}, "", &pid).isOk());
    ProcessResult result;
    ASSERT_TRUE(ProcessManager::wait(pid, 20, result).isOk());
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_FALSE(ProcessManager::isAlive(pid));
    EXPECT_EQ(ProcessManager::wait(pid, 1, result).code(), qvOS::OSError::InvalidArgument);

    ASSERT_TRUE(ProcessManager::startAsync(helper(), {"sleep", "30"}, "", &pid).isOk());
    EXPECT_TRUE(ProcessManager::isAlive(pid));
    EXPECT_EQ(ProcessManager::wait(pid, 0.1, result).code(), qvOS::OSError::TimedOut);
    ASSERT_TRUE(ProcessManager::kill(pid).isOk());
    ASSERT_TRUE(ProcessManager::wait(pid, 20, result).isOk());
    EXPECT_TRUE(result.crashed || result.exitCode != 0);

    // A child nobody waits for is collected by later calls and then reported as ended.
    ASSERT_TRUE(ProcessManager::startAsync(helper(), {"exit", "0"}, "", &pid).isOk());
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (ProcessManager::isAlive(pid) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(ProcessManager::isAlive(pid));
    EXPECT_TRUE(ProcessManager::isAlive(ProcessManager::currentId()));
    EXPECT_EQ(ProcessManager::kill(0x7ffffff0).code(), qvOS::OSError::NotFound);
}

// A child started while a connection is open must not hold it: the peer sees the close at once,
// not when the child ends (a cache server would otherwise never see its client leave).
TEST(ProcessManager, ChildrenHoldNoneOfTheParentsConnections) {
    qvTCP::Server server;
    server.setLoopbackOnly();
    ASSERT_TRUE(server.listen().isOk());
    auto client = std::make_unique<qvTCP::ClientSocket>(qvTCP::Address::loopback(server.getPort()));
    ASSERT_TRUE(client->connect().isOk());
    std::unique_ptr<qvTCP::Socket> accepted;
    ASSERT_TRUE(server.accept(5.0, accepted).isOk());
    ASSERT_TRUE(accepted);

    qvOS::ProcessId pid = 0;
    ASSERT_TRUE(ProcessManager::startAsync(helper(), {"sleep", "30"}, "", &pid).isOk());
    client.reset();
    accepted->setReceiveTimeout(5.0);
    char byte = 0;
    EXPECT_EQ(accepted->read(&byte, 1).code(), qvTCP::ErrorPeerClosed);
    ProcessResult result;
    ASSERT_TRUE(ProcessManager::kill(pid).isOk());
    ASSERT_TRUE(ProcessManager::wait(pid, 20, result).isOk());
}

} // namespace
