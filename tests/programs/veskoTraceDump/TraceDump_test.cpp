#include "programs/veskoTraceDump/TraceDump.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Process.h"
#include "ObrixBase/util/VeskoTrace.h"
#include "tests/ObrixBase/util/TraceTestSupport.h"
#include "tests/support/TempDir.h"

TEST(VeskoTraceDump, TraceEventsAreValidJsonInLineOrder) {
    const std::vector<std::string> lines = {
        "2026/01/02 03:04:05 <UI> first \"quoted\" \\ done",
        "2026/01/02 03:04:05 <Undo> same second\r",
        "no prefix at all",
        "1970/01/01 00:00:01 <SPF> bad \xff byte, good \xc3\xa9, cut \xe2\x82",
    };
    std::ostringstream out;
    veskoTraceDump::writeTraceEvents(lines, 42, out);
    const std::string t = "1767323045000000"; // 2026-01-02 03:04:05 in microseconds since 1970
    EXPECT_EQ(
        out.str(),
        "{\"traceEvents\":[\n"
        "{\"name\":\"first \\\"quoted\\\" \\\\ done\",\"cat\":\"UI\",\"ph\":\"i\","
        "\"s\":\"p\",\"ts\":" +
            t +
            ",\"pid\":42,\"tid\":0},\n"
            "{\"name\":\"same second\\u000d\",\"cat\":\"Undo\",\"ph\":\"i\",\"s\":\"p\","
            "\"ts\":1767323045000001,\"pid\":42,\"tid\":0},\n"
            "{\"name\":\"no prefix at all\",\"cat\":\"unknown\",\"ph\":\"i\",\"s\":\"p\","
            "\"ts\":1767323045000002,\"pid\":42,\"tid\":0},\n"
            "{\"name\":\"bad \\ufffd byte, good \xc3\xa9, cut \\ufffd\\ufffd\",\"cat\":\"SPF\","
            "\"ph\":\"i\",\"s\":\"p\",\"ts\":1000000,\"pid\":42,\"tid\":0}\n"
            "]}\n");
}

// The program itself: the text and JSON of a real ring, and a one-line refusal with a
// non-zero exit for what it cannot use.
TEST(VeskoTraceDump, ProgramPrintsARingAndRefusesBadArguments) {
    obrixtest::TempDir dir;
    ASSERT_TRUE(VeskoTrace::initialize(dir.path().c_str(), 512, 1));
    for (int i = 0; i < 20; ++i)
        VeskoTrace::trace1(VeskoTrace::Picking, "pick %d", i);
    const std::string ring = VeskoTrace::ringFile();
    const std::vector<std::string> lines = obrix::test::ringRecords();
    VeskoTrace::finalize();

    const qvString::CString program = qvOS::AppMain::getBinaryPath("veskoTraceDump");
    auto run = [&](std::vector<qvString::CString> args, std::string* out = nullptr) {
        qvOS::ProcessOptions options;
        options.captureStdout = true;
        options.timeoutSeconds = 60;
        qvOS::ProcessResult result;
        const qvUtil::Error error = qvOS::ProcessManager::runSync(program, args, options, result);
        EXPECT_TRUE(error.isOk()) << error.message();
        if (out) {
            *out = result.stdoutText;
#ifdef _WIN32
            // stdout is a text stream there: "\n" goes out as "\r\n".
            for (std::size_t at; (at = out->find("\r\n")) != std::string::npos;)
                out->erase(at, 1);
#endif
        }
        return result.exitCode;
    };

    std::string out, text, json;
    for (const std::string& line : lines)
        text += line + "\n";
    std::ostringstream expectedJson;
    veskoTraceDump::writeTraceEvents(lines, qvOS::ProcessManager::currentId(), expectedJson);
    EXPECT_EQ(run({ring}, &out), 0);
    EXPECT_EQ(out, text);
    EXPECT_EQ(run({"--format=json", ring}, &out), 0);
    EXPECT_EQ(out, expectedJson.str());
    EXPECT_EQ(run({"--help"}, &out), 0);
    EXPECT_EQ(out.substr(0, 6), "usage:");

    EXPECT_EQ(run({}), 2);
    EXPECT_EQ(run({"--format=xml", ring}), 2);
    EXPECT_EQ(run({"--verbose", ring}), 2);
    EXPECT_EQ(run({ring, ring}), 2);
    EXPECT_EQ(run({dir.path() + "/missing.dat"}), 1);
    EXPECT_EQ(run({program}), 1) << "a file that is no ring";
}
