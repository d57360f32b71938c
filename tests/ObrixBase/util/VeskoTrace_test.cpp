#include "ObrixBase/util/VeskoTrace.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <deque>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Base/qvOS/Env.h"
#include "Base/qvOS/Process.h"
#include "tests/ObrixBase/util/TraceTestSupport.h"
#include "tests/support/TempDir.h"

namespace fs = std::filesystem;
using obrix::test::collectText;
using obrix::test::recordsOf;
using obrix::test::ringRecords;
using obrixtest::TempDir;

namespace {

// "YYYY/MM/DD hh:mm:ss <Debug> ": the prefix length of every Debug line in this century.
constexpr std::size_t DebugPrefix = 28;
constexpr std::size_t MaxDebugMessage = VeskoTrace::MaxLineLength - DebugPrefix;

// The ring's records without their date and level prefix.
std::vector<std::string> dumpedMessages() {
    std::vector<std::string> messages = ringRecords();
    for (std::string& line : messages) {
        const std::size_t at = line.find("> ");
        line = at == std::string::npos ? "<no prefix>" : line.substr(at + 2);
    }
    return messages;
}

// The ring as a list of records, each with its place: a record lives until a later one
// covers any of its bytes, and only the oldest may be covered.
struct RingModel {
    struct Record {
        std::uint32_t position, length;
        std::string message;
    };
    std::uint32_t size = 0, write = 0;
    std::deque<Record> records;

    void append(const std::string& message) {
        std::uint32_t length = std::uint32_t(DebugPrefix + message.size() + 2) / 2 * 2 + 2;
        if (size - write - length < 256)
            length = size - write;
        const std::uint32_t end = write + length;
        while (!records.empty() && records.front().position < end &&
               write < records.front().position + records.front().length)
            records.pop_front();
        for (const Record& r : records)
            EXPECT_FALSE(r.position < end && write < r.position + r.length) << r.message;
        records.push_back({write, length, message});
        write = end == size ? 0 : end;
    }
    std::vector<std::string> messages() const {
        std::vector<std::string> out;
        for (const Record& r : records)
            out.push_back(r.message);
        return out;
    }
};

} // namespace

TEST(VeskoTrace, RingSizeIsRoundedAndEachTraceCallNeedsItsLevel) {
    TempDir dir;
    for (auto [asked, expected] :
         {std::pair{0, 512}, {100, 512}, {513, 768}, {1000, 1024}, {1024, 1024}}) {
        ASSERT_TRUE(VeskoTrace::initialize(dir.path().c_str(), asked, 2));
        const std::string bytes = TempDir::read(VeskoTrace::ringFile());
        EXPECT_EQ(bytes.size(), 64u + expected) << "asked " << asked;
        const std::string name = fs::path(VeskoTrace::ringFile().c_str()).filename().string();
        EXPECT_EQ(name.substr(0, 11) + name.substr(47), "VeskoTrace-.dat") << name;
    }
    EXPECT_FALSE(VeskoTrace::initialize(dir.path().c_str(), VeskoTrace::MaxRingBytes + 1, 1));
    EXPECT_FALSE(VeskoTrace::initialize((dir.path() + "/missing").c_str(), 512, 1));

    VeskoTrace::trace1(VeskoTrace::Picking, "one");
    VeskoTrace::trace2(VeskoTrace::UI, "two %d", 2);
    VeskoTrace::trace3(VeskoTrace::Undo, "three");
    VeskoTrace::trace4(VeskoTrace::Undo, "four");
    VeskoTrace::finalize();
    VeskoTrace::trace1(VeskoTrace::Picking, "after finalize");
    const std::vector<std::string> lines = ringRecords();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[1].substr(19), " <UI> two 2");
    // Local time, the month counted from 1.
    const std::time_t now = std::time(nullptr);
    const std::tm t = *std::localtime(&now);
    char date[32];
    std::snprintf(date, sizeof date, "%d/%02d/", t.tm_year + 1900, t.tm_mon + 1);
    EXPECT_EQ(lines[0].substr(0, 8) + lines[0].substr(19), date + std::string(" <Picking> one"));
}

TEST(VeskoTrace, MessagesAreStoredOnOneLineAndCutAtTheLimit) {
    TempDir dir;
    ASSERT_TRUE(VeskoTrace::initialize(dir.path().c_str(), 1 << 16, 1));
    const std::string atLimit(MaxDebugMessage, 'L'), tenKilobytes(10240, 'K');
    const std::pair<std::string, std::string> cases[] = {
        {"one\ntwo\n", "one two "},
        {"crlf\r\nend", "crlf\r end"},
        {"", ""},
        {atLimit, atLimit},
        {atLimit + "X", atLimit},
        {tenKilobytes, tenKilobytes.substr(0, MaxDebugMessage)},
        {"caf\xc3\xa9 \xff\x01\x7f", "caf\xc3\xa9 \xff\x01\x7f"},
    };
    std::vector<std::string> expected;
    for (const auto& [message, stored] : cases) {
        VeskoTrace::trace1(VeskoTrace::Debug, "%s", message.c_str());
        expected.push_back(stored);
    }
    EXPECT_EQ(dumpedMessages(), expected);
    EXPECT_EQ(ringRecords()[3].size(), std::size_t(VeskoTrace::MaxLineLength));
#ifndef _WIN32
    // A wide character that the C locale cannot convert makes the formatting fail. (mingw's
    // printf writes nothing for it instead, and knows no other failure to provoke.)
    const wchar_t unconvertible[] = {wchar_t(0x4e2d), 0};
    VeskoTrace::trace1(VeskoTrace::Debug, "dropped %ls", unconvertible);
    EXPECT_EQ(dumpedMessages(), expected);
#endif
    VeskoTrace::finalize();
}

// Random appends against the model. Record lengths are steered so that the room R left at
// the end of the ring and the record's length before rounding, L = text + zero + 2, give
// R - L = 255 (stretched), 256 and 257 (not stretched, the next record then meets R = 256),
// and a record that fills R exactly.
TEST(VeskoTrace, RingAgreesWithAModelOfItsRecords) {
#if defined(_WIN32)
    // The Windows leg runs under an emulator: a quarter of the appends keeps it quick.
    constexpr int Appends = 250000;
#else
    constexpr int Appends = 1000000;
#endif
    TempDir dir;
    std::mt19937 random(17);
    for (std::uint32_t size : {512u, 1024u}) {
        ASSERT_TRUE(VeskoTrace::initialize(dir.path().c_str(), size, 1));
        RingModel model;
        model.size = size;
        int hits[4] = {};
        const int gaps[4] = {255, 256, 257, 0};
        std::string message;
        for (int i = 1; i <= Appends; ++i) {
            const long room = long(size - model.write);
            const int pick = room == 256 && random() % 2 ? 3 : int(random() % 8);
            long length = -1;
            if (pick < 4) {
                // The text is prefix + message; filling R takes the longest text, whose
                // length rounds up to R.
                const long text = pick == 3 ? room - 4 : room - 3 - gaps[pick];
                length = text - long(DebugPrefix);
                if (length >= 0 && length <= long(MaxDebugMessage))
                    ++hits[pick];
                else
                    length = -1;
            }
            if (length < 0)
                length = long(random() % (MaxDebugMessage + 1));
            message = std::to_string(i);
            message.resize(std::size_t(length), char('a' + i % 26));
            VeskoTrace::trace1(VeskoTrace::Debug, "%s", message.c_str());
            model.append(message);
            if (i % 1000 == 0) {
                ASSERT_EQ(dumpedMessages(), model.messages()) << "after " << i << " appends";
            }
        }
        for (int k = 0; k < 4; ++k)
            EXPECT_GT(hits[k], 0) << "gap " << gaps[k] << " never hit in a ring of " << size;

        // The file says the same as the writer.
        VeskoTrace::RecoverResult result;
        const std::vector<std::string> recovered =
            recordsOf(VeskoTrace::ringFile().c_str(), &result);
        EXPECT_EQ(recovered, ringRecords());
        EXPECT_EQ(result.sequence, std::uint64_t(Appends));
        EXPECT_FALSE(result.tornRecord);
    }
    VeskoTrace::finalize();
}

// Images of the file just before and just after one append give every state a writer can die
// in: the torn one (bytes of the new record written, positions not yet published) must hand
// back exactly the records the append keeps, never one it half overwrote.
TEST(VeskoTrace, RecoverSkipsATornRecordAndNothingElse) {
    TempDir dir;
    ASSERT_TRUE(VeskoTrace::initialize(dir.path().c_str(), 512, 1));
    for (int i = 0; i < 7; ++i)
        VeskoTrace::trace1(VeskoTrace::SPF, "filling record %d %s", i,
                           std::string(40, 'f').c_str());
    const std::string before = TempDir::read(VeskoTrace::ringFile());
    VeskoTrace::trace1(VeskoTrace::SPF, "the new one %s", std::string(90, 'n').c_str());
    const std::string after = TempDir::read(VeskoTrace::ringFile());
    VeskoTrace::finalize();

    VeskoTrace::FileHeader b, a;
    std::memcpy(&b, before.data(), sizeof b);
    std::memcpy(&a, after.data(), sizeof a);
    ASSERT_EQ(a.sequence, b.sequence + 1);
    ASSERT_NE(a.pendingStart, std::int32_t(b.positions >> 32)) << "the append must drop records";
    std::vector<std::string> kept = recordsOf(after);
    kept.pop_back();

    const std::size_t at = sizeof b + a.pendingPosition;
    for (std::size_t written : {std::size_t(0), std::size_t(3), std::size_t(a.pendingLength)}) {
        std::string torn = before;
        torn.replace(at, written, after, at, written);
        VeskoTrace::FileHeader h = b;
        h.pendingSequence = a.pendingSequence;
        h.pendingPosition = a.pendingPosition;
        h.pendingLength = a.pendingLength;
        h.pendingStart = a.pendingStart;
        std::memcpy(torn.data(), &h, sizeof h);
        VeskoTrace::RecoverResult result;
        EXPECT_EQ(recordsOf(torn, &result), kept) << written << " bytes written";
        EXPECT_TRUE(result.tornRecord);
        EXPECT_EQ(result.sequence, b.sequence);
    }

    // Positions published, sequence not yet raised: the record is whole.
    std::string published = after;
    VeskoTrace::FileHeader h = a;
    h.sequence = b.sequence;
    std::memcpy(published.data(), &h, sizeof h);
    VeskoTrace::RecoverResult result;
    EXPECT_EQ(recordsOf(published, &result), recordsOf(after));
    EXPECT_FALSE(result.tornRecord);
    EXPECT_EQ(result.sequence, a.sequence);
}

TEST(VeskoTrace, RecoverRefusesWhatIsNoIntactRing) {
    TempDir dir;
    ASSERT_TRUE(VeskoTrace::initialize(dir.path().c_str(), 512, 1));
    for (int i = 0; i < 3; ++i)
        VeskoTrace::trace1(VeskoTrace::UI, "line %d", i);
    const std::string good = TempDir::read(VeskoTrace::ringFile());
    VeskoTrace::finalize();
    std::vector<std::string> lines;
    auto recover = [&](std::string image, std::size_t at, char byte) {
        image[at] = byte;
        return VeskoTrace::recover(image.data(), image.size(), collectText, &lines).message();
    };
    EXPECT_EQ(recover(good, 0, 'X'), "image is not a trace ring");
    EXPECT_EQ(recover(good, 4, 9),
              "Trace ring image has format version 9; this library reads version 1");
    EXPECT_TRUE(VeskoTrace::recover(good.data(), good.size() - 1, collectText, &lines).isError());
    EXPECT_TRUE(lines.empty());
    // A damaged third record: the two before it still come back, with the error.
    const auto lengthAt = [&](std::size_t at) { return std::size_t(std::uint8_t(good[at])); };
    const std::size_t third = 64 + lengthAt(64) + lengthAt(64 + lengthAt(64));
    EXPECT_EQ(recover(good, third, 3),
              "Trace ring image is damaged: a record length at offset " + std::to_string(third));
    EXPECT_EQ(lines.size(), 2u);
}

TEST(VeskoTrace, DumpLogNamesTheFileAfterUserTagAndMinute) {
    TempDir dir;
    const std::string logDir = dir.path() + "/logs/nested";
    obrix::test::ScopedEnv noUserName("USERNAME", nullptr);
    obrix::test::ScopedEnv noUser("USER", nullptr);
    ASSERT_TRUE(VeskoTrace::initialize(dir.path().c_str(), 1024, 1));
    VeskoTrace::initLog(nullptr, nullptr);
    VeskoTrace::trace1(VeskoTrace::UIFunction, "before initLog");
    VeskoTrace::dumpLog();
    EXPECT_FALSE(fs::exists(logDir));

    VeskoTrace::initLog(logDir.c_str(), "session");
    auto stampNow = [] {
        const std::time_t now = std::time(nullptr);
        const std::tm t = *std::localtime(&now);
        char stamp[32];
        std::snprintf(stamp, sizeof stamp, "%02d%02d%04d%02d%02d", t.tm_mon, t.tm_mday,
                      t.tm_year + 1900, t.tm_hour, t.tm_min);
        return std::string(stamp);
    };
    auto logFiles = [&] {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(logDir))
            names.push_back(entry.path().filename().string());
        return names;
    };

    // Two dumps in one minute share a name: the second replaces the first. It holds
    // everything the first did, since both read the same ring and the second later.
    std::string stamp;
    for (int attempt = 0; attempt < 3; ++attempt) {
        stamp = stampNow();
        VeskoTrace::dumpLog();
        VeskoTrace::trace1(VeskoTrace::UIFunction, "between the dumps");
        VeskoTrace::dumpLog();
        if (stampNow() == stamp)
            break;
        fs::remove_all(logDir); // the minute turned: two files, try again
    }
    const std::string name = "VeskoTraceLog-Unknown User-session-" + stamp + ".log";
    EXPECT_EQ(logFiles(), std::vector<std::string>{name});
    // A text stream: lines end as the system's text files do.
#ifdef _WIN32
    const char* const lineEnd = "\r\n";
#else
    const char* const lineEnd = "\n";
#endif
    std::string text;
    for (const std::string& line : ringRecords())
        text += line + lineEnd;
    EXPECT_EQ(TempDir::read(logDir + "/" + name), text);
    EXPECT_NE(text.find("between the dumps"), std::string::npos);

    obrix::test::ScopedEnv user("USER", "ada");
    fs::remove_all(logDir);
    VeskoTrace::dumpLog();
    EXPECT_EQ(logFiles()[0].substr(0, 23), "VeskoTraceLog-ada-sessi");

    fs::remove_all(logDir);
    VeskoTrace::finalize();
    VeskoTrace::dumpLog();
    EXPECT_FALSE(fs::exists(logDir)) << "nothing is written once tracing is off";
}

// Every initialize leaves a ring behind; removeOldRings keeps the newest of ended processes and
// never touches a running writer's ring, the current ring or a file that is no ring.
TEST(VeskoTrace, RemoveOldRingsKeepsTheNewestRingsOfEndedProcesses) {
    TempDir dir;
    ASSERT_TRUE(VeskoTrace::initialize(dir.path().c_str(), 512, 1));
    const fs::path current = TempDir::fsPath(VeskoTrace::ringFile());
    std::string ring(fs::file_size(current), '\0');
    std::ifstream(current, std::ios::binary).read(ring.data(), std::streamsize(ring.size()));
    // Copies made by "other processes": one still running (this one), four ended (an id no
    // system hands out), the ended ones written a minute apart, newest first.
    auto plant = [&](const std::string& name, std::int64_t writer, int minutesAgo) {
        std::string bytes = ring;
        std::memcpy(&bytes[offsetof(VeskoTrace::FileHeader, writerProcess)], &writer,
                    sizeof writer);
        const fs::path path = TempDir::fsPath(dir.path()) / name;
        std::ofstream(path, std::ios::binary) << bytes;
        fs::last_write_time(path,
                            fs::file_time_type::clock::now() - std::chrono::minutes(minutesAgo));
    };
    const std::int64_t ended = 0x7FFFFFF0;
    for (int i = 0; i < 4; ++i)
        plant("VeskoTrace-ended" + std::to_string(i) + ".dat", ended, 10 * (i + 1));
    plant("VeskoTrace-running.dat", qvOS::ProcessManager::currentId(), 60);
    std::ofstream(TempDir::fsPath(dir.path()) / "VeskoTrace-notes.dat") << "not a ring";
    fs::last_write_time(current, fs::file_time_type::clock::now() - std::chrono::hours(2));

    int removed = -1;
    ASSERT_TRUE(VeskoTrace::removeOldRings(dir.path().c_str(), 2, &removed).isOk());
    EXPECT_EQ(removed, 2);
    std::vector<std::string> left;
    for (const auto& entry : fs::directory_iterator(TempDir::fsPath(dir.path())))
        left.push_back(entry.path().filename().string());
    std::sort(left.begin(), left.end());
    std::vector<std::string> expected{"VeskoTrace-ended0.dat", "VeskoTrace-ended1.dat",
                                      "VeskoTrace-notes.dat", "VeskoTrace-running.dat",
                                      current.filename().string()};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(left, expected);

    EXPECT_TRUE(VeskoTrace::removeOldRings(nullptr, 0, &removed).isError());
    EXPECT_TRUE(VeskoTrace::removeOldRings(dir.path().c_str(), -1, &removed).isError());
    EXPECT_TRUE(VeskoTrace::removeOldRings((dir.path() + "/missing").c_str(), 0).isError());
    VeskoTrace::finalize();
}
