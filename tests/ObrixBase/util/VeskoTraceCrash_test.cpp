// A writer killed at a random moment leaves a ring whose every whole record comes back, in
// order and without a gap up to the last committed one; a record cut off by the kill is
// reported and left out.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Process.h"
#include "ObrixBase/util/VeskoTrace.h"
#include "tests/ObrixBase/util/TraceCrashPayload.h"
#include "tests/ObrixBase/util/TraceTestSupport.h"
#include "tests/support/TempDir.h"

namespace fs = std::filesystem;

namespace {

std::string ringIn(const std::string& dir) {
    for (const auto& entry : fs::directory_iterator(dir))
        return entry.path().string();
    return {};
}

// Checks that lines are "<n> <payload of n>" for consecutive n ending at sequence - 1.
void expectWholeAndConsecutive(const std::vector<std::string>& lines, std::uint64_t sequence) {
    std::uint64_t expected = sequence - lines.size();
    char payload[obrix::test::MaxCrashPayload + 1];
    for (const std::string& line : lines) {
        const std::size_t at = line.find("> ");
        ASSERT_NE(at, std::string::npos) << line;
        obrix::test::crashPayload(expected, payload);
        ASSERT_EQ(line.substr(at + 2), std::to_string(expected) + " " + payload);
        ++expected;
    }
}

} // namespace

TEST(VeskoTraceCrash, KilledWriterLeavesEveryWholeRecordReadable) {
    const int repetitions = 100;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(240);
    const qvString::CString writer = qvOS::AppMain::getBinaryPath("trace_crash_writer");
    std::mt19937 random(1717);
    obrixtest::TempDir scratch;
    int torn = 0;
    for (int rep = 0; rep < repetitions; ++rep) {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "only " << rep << " runs in time";
        const std::string dir = scratch.path() + "/" + std::to_string(rep);
        fs::create_directories(dir);
        // Small rings wrap often, so kills land in every kind of append.
        const unsigned ringBytes = 512u << (rep % 4);
        qvOS::ProcessId pid = 0;
        const qvUtil::Error started =
            qvOS::ProcessManager::startAsync(writer, {dir, std::to_string(ringBytes)}, "", &pid);
        ASSERT_TRUE(started.isOk()) << started.message();

        // Wait until the writer is well into its loop, then kill it a moment later.
        std::string ring;
        VeskoTrace::RecoverResult seen;
        for (int poll = 0; poll < 2000 && seen.sequence < 50; ++poll) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            if (ring.empty())
                ring = ringIn(dir);
            if (!ring.empty())
                VeskoTrace::recover(ring.c_str(), nullptr, nullptr, &seen);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        const qvUtil::Error killed = qvOS::ProcessManager::kill(pid);
        qvOS::ProcessResult ended;
        const qvUtil::Error waited = qvOS::ProcessManager::wait(pid, 30, ended);
        ASSERT_TRUE(killed.isOk()) << killed.message();
        ASSERT_TRUE(waited.isOk()) << waited.message();
        // The writer ends by itself only with 1, 2 or 3 (Windows reports a kill as a code).
        ASSERT_TRUE(ended.crashed || ended.exitCode < 1 || ended.exitCode > 3)
            << "the writer ended by itself, code " << ended.exitCode;
        ASSERT_GE(seen.sequence, 50u) << "the writer never got going";

        VeskoTrace::RecoverResult result;
        const std::vector<std::string> lines = obrix::test::recordsOf(ring.c_str(), &result);
        // Only a torn record that was to replace every other one leaves nothing to read.
        ASSERT_TRUE(!lines.empty() || result.tornRecord);
        ASSERT_GE(result.sequence, seen.sequence);
        expectWholeAndConsecutive(lines, result.sequence);
        torn += result.tornRecord;
        fs::remove_all(dir);
    }
    RecordProperty("torn_records", torn);
    std::printf("%d of %d kills cut a record in the middle\n", torn, repetitions);
}
