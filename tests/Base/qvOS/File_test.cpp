#include "Base/qvOS/File.h"

#include <chrono>
#include <set>

#include <gtest/gtest.h>

#include "tests/support/TempDir.h"

#ifndef _WIN32
#include <unistd.h> // geteuid: root ignores permission bits
#endif

using obrixtest::TempDir;
using qvOS::OSError;

namespace {

// Read through std::filesystem's wide calls: DirectorySearch's 8-bit calls on Windows cannot
// spell every name these tests use.
std::set<std::string> namesIn(const qvString::CString& dir) {
    std::set<std::string> names;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(TempDir::fsPath(dir), ec)) {
#ifdef _WIN32
        names.insert(qvString::IString(entry.path().filename().wstring()).toUtf8());
#else
        names.insert(entry.path().filename().string());
#endif
    }
    return names;
}

bool exists(const qvString::CString& path) {
    qvOS::FileInfo info;
    return qvOS::File::query(path, info).isOk() && info.exists;
}

TEST(File, QueryReportsTypeSizeAndTimeAndMissingIsNoError) {
    TempDir tmp;
    TempDir::write(tmp / "f", "12345");
    qvOS::FileInfo info;
    ASSERT_TRUE(qvOS::File::query(tmp / "f", info).isOk());
    EXPECT_TRUE(info.exists);
    EXPECT_EQ(info.type, qvOS::FileType::Regular);
    EXPECT_EQ(info.modeBits, 0x8000u);
    EXPECT_EQ(info.size, 5u);
    auto now = std::chrono::duration_cast<std::chrono::seconds>(
                   std::chrono::system_clock::now().time_since_epoch())
                   .count();
    EXPECT_LE(std::abs(info.modified - now), 120);

    ASSERT_TRUE(qvOS::File::query(tmp / "none", info).isOk());
    EXPECT_FALSE(info.exists);
    EXPECT_EQ(info.type, qvOS::FileType::Missing);
}

TEST(File, CopyWritesTheBytesLeavesNoTemporaryAndHonoursTheOverwriteFlag) {
    TempDir tmp;
    const qvString::CString from = tmp / "s\xc3\xa9lection \xe6\x97\xa5.txt";
    const qvString::CString to = tmp / "copie \xc3\xa9.txt";
    TempDir::write(from, "payload");
    ASSERT_TRUE(qvOS::fileCopy(from, to, false).isOk());
    EXPECT_EQ(TempDir::read(to), "payload");
    EXPECT_EQ(TempDir::read(from), "payload");

    TempDir::write(from, "second");
    qvUtil::Error refused = qvOS::fileCopy(from, to, false);
    EXPECT_EQ(refused.code(), OSError::AlreadyExists);
    EXPECT_NE(refused.message().find(to), std::string::npos) << refused.message();
    EXPECT_EQ(TempDir::read(to), "payload");

    ASSERT_TRUE(qvOS::fileCopy(from, to, true).isOk());
    EXPECT_EQ(TempDir::read(to), "second");

    // A read-only source copies too (the copy keeps its permissions).
    namespace fs = std::filesystem;
    TempDir::write(tmp / "ro", "locked");
    fs::permissions(TempDir::fsPath(tmp / "ro"), fs::perms::owner_read);
    EXPECT_TRUE(qvOS::fileCopy(tmp / "ro", tmp / "ro2", false).isOk());
    EXPECT_EQ(TempDir::read(tmp / "ro2"), "locked");
    for (const char* name : {"ro", "ro2"}) {
        fs::permissions(TempDir::fsPath(tmp / name), fs::perms::owner_all);
        ASSERT_TRUE(qvOS::fileDelete(tmp / name).isOk());
    }
    EXPECT_EQ(namesIn(tmp.path()),
              (std::set<std::string>{"s\xc3\xa9lection \xe6\x97\xa5.txt", "copie \xc3\xa9.txt"}));
}

TEST(File, MoveRenamesUnlessTheTargetExistsAndDeleteTakesOnlyFiles) {
    TempDir tmp;
    TempDir::write(tmp / "a", "A");
    TempDir::write(tmp / "b", "B");
    EXPECT_EQ(qvOS::fileMove(tmp / "a", tmp / "b", false).code(), OSError::AlreadyExists);
    EXPECT_EQ(TempDir::read(tmp / "a"), "A");
    EXPECT_EQ(TempDir::read(tmp / "b"), "B");
    ASSERT_TRUE(qvOS::fileMove(tmp / "a", tmp / "b", true).isOk());
    EXPECT_FALSE(exists(tmp / "a"));
    EXPECT_EQ(TempDir::read(tmp / "b"), "A");
    ASSERT_TRUE(qvOS::fileMove(tmp / "b", tmp / "\xc3\xbc", false).isOk());
    EXPECT_EQ(TempDir::read(tmp / "\xc3\xbc"), "A");

    ASSERT_TRUE(qvOS::Filename::makeDir(tmp / "d1").isOk());
    ASSERT_TRUE(qvOS::fileMove(tmp / "d1", tmp / "d2", false).isOk());
    EXPECT_TRUE(exists(tmp / "d2"));

    ASSERT_TRUE(qvOS::fileDelete(tmp / "\xc3\xbc").isOk());
    EXPECT_FALSE(exists(tmp / "\xc3\xbc"));
    qvUtil::Error missing = qvOS::fileDelete(tmp / "\xc3\xbc");
    EXPECT_EQ(missing.code(), OSError::NotFound);
    EXPECT_NE(missing.message().find(tmp / "\xc3\xbc"), std::string::npos) << missing.message();
    EXPECT_TRUE(qvOS::fileDelete(tmp / "d2").isError());
    EXPECT_TRUE(exists(tmp / "d2"));
}

TEST(File, BadPathsAndMissingSourcesAreErrorsWithTheSystemsText) {
    TempDir tmp;
    qvUtil::Error missing = qvOS::fileCopy(tmp / "none", tmp / "t", true);
    EXPECT_EQ(missing.code(), OSError::NotFound);
    // The message names the path and adds the system's own words after it.
    EXPECT_EQ(missing.message().rfind("Cannot copy \"" + (tmp / "none") + "\": ", 0), 0u)
        << missing.message();
    EXPECT_GT(missing.message().size(), ("Cannot copy \"" + (tmp / "none") + "\": ").size());
    EXPECT_FALSE(exists(tmp / "t"));
    EXPECT_EQ(qvOS::fileMove(tmp / "none", tmp / "t", true).code(), OSError::NotFound);
    EXPECT_EQ(qvOS::fileCopy(tmp.path(), tmp / "t", true).code(), OSError::Failed);

    const qvString::CString huge(40000, 'x');
    const qvString::CString withNul("a\0b", 3);
    for (const qvString::CString& bad : {qvString::CString(), huge, withNul}) {
        qvOS::FileInfo info;
        EXPECT_EQ(qvOS::File::query(bad, info).code(), OSError::InvalidArgument);
        EXPECT_EQ(qvOS::fileCopy(bad, tmp / "t", true).code(), OSError::InvalidArgument);
        EXPECT_EQ(qvOS::fileCopy(tmp / "t", bad, true).code(), OSError::InvalidArgument);
        EXPECT_EQ(qvOS::fileMove(bad, tmp / "t", true).code(), OSError::InvalidArgument);
        EXPECT_EQ(qvOS::fileDelete(bad).code(), OSError::InvalidArgument);
    }
    // Longer than a name may be, though short enough to reach the system.
    TempDir::write(tmp / "f", "x");
    EXPECT_TRUE(qvOS::fileCopy(tmp / "f", tmp / qvString::CString(300, 'n'), true).isError());
    EXPECT_EQ(namesIn(tmp.path()), (std::set<std::string>{"f"}));
}

#ifndef _WIN32
// Windows has no permission bits on directories to take away.
TEST(File, CopyIntoAReadOnlyDirectoryIsPermissionDeniedAndLeavesNothing) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "root ignores permission bits";
    TempDir tmp;
    TempDir::write(tmp / "f", "x");
    ASSERT_TRUE(qvOS::Filename::makeDir(tmp / "ro").isOk());
    std::filesystem::permissions(TempDir::fsPath(tmp / "ro"),
                                 std::filesystem::perms::owner_read |
                                     std::filesystem::perms::owner_exec);
    qvUtil::Error e = qvOS::fileCopy(tmp / "f", tmp / "ro/f", false);
    std::filesystem::permissions(TempDir::fsPath(tmp / "ro"), std::filesystem::perms::owner_all);
    EXPECT_EQ(e.code(), OSError::PermissionDenied) << e.message();
    EXPECT_NE(e.message().find("Permission denied"), std::string::npos) << e.message();
    EXPECT_TRUE(namesIn(tmp / "ro").empty());
}
#endif

} // namespace
