#include "Base/qvOS/Filename.h"

#include <gtest/gtest.h>

#include "Base/qvOS/File.h"
#include "Base/qvOS/URL.h"
#include "tests/support/TempDir.h"

using qvOS::Filename;

namespace {

TEST(Filename, JoinNeverDoublesOrDropsTheSeparator) {
    const std::string s(1, Filename::separator());
    EXPECT_EQ(Filename::join("a", "b"), "a" + s + "b");
    EXPECT_EQ(Filename::join("a/", "b"), "a/b");
    EXPECT_EQ(Filename::join("a/", "/b"), "a/b");
    EXPECT_EQ(Filename::join("a", "/b"), "a/b");
    EXPECT_EQ(Filename::join("", "b"), "b");
    EXPECT_EQ(Filename::join("a", ""), "a");
}

TEST(Filename, DirectoryAndBaseSplitAtTheLastSeparatorAndKeepTheRoot) {
    struct Case {
        const char* path;
        const char* dir;
        const char* base;
    };
    for (const Case& c : {Case{"/a/b/c.txt", "/a/b", "c.txt"}, Case{"/x", "/", "x"},
                          Case{"name", "", "name"}, Case{"d/", "d", ""}, Case{"", "", ""}}) {
        EXPECT_EQ(Filename::directory(c.path), c.dir) << c.path;
        EXPECT_EQ(Filename::base(c.path), c.base) << c.path;
    }
    if (Filename::hasDrives()) {
        EXPECT_EQ(Filename::directory("C:\\x"), "C:\\");
        EXPECT_EQ(Filename::directory("C:x"), "C:");
        EXPECT_EQ(Filename::base("C:x"), "x");
        EXPECT_EQ(Filename::directory("a\\b\\c"), "a\\b");
    }
}

TEST(Filename, AbsolutePathsFollowTheSystemsRules) {
    EXPECT_FALSE(Filename::isAbsolute(nullptr));
    EXPECT_FALSE(Filename::isAbsolute(""));
    EXPECT_FALSE(Filename::isAbsolute("rel/x"));
    EXPECT_TRUE(Filename::isAbsolute("/usr"));
    EXPECT_EQ(Filename::isAbsolute("C:\\x"), Filename::hasDrives());
    EXPECT_EQ(Filename::isAbsolute("\\\\server\\share"), Filename::hasDrives());
    EXPECT_FALSE(Filename::isAbsolute("C:x"));
    EXPECT_EQ(Filename::currentDrive() > 0, Filename::hasDrives());
}

TEST(Filename, MakeDirCreatesParentsAcceptsExistingAndRefusesAFileInTheWay) {
    obrixtest::TempDir tmp;
    qvString::CString deep = tmp / "a/b/\xc3\xa9t\xc3\xa9";
    ASSERT_TRUE(Filename::makeDir(deep).isOk());
    qvOS::FileInfo info;
    ASSERT_TRUE(qvOS::File::query(deep, info).isOk());
    EXPECT_EQ(info.type, qvOS::FileType::Directory);
    EXPECT_EQ(info.modeBits, 0x4000u);
    EXPECT_TRUE(Filename::makeDir(deep).isOk());
    EXPECT_TRUE(Filename::makeDir(deep + "/").isOk());

    obrixtest::TempDir::write(tmp / "plain", "x");
    EXPECT_TRUE(Filename::makeDir(tmp / "plain").isError());
    qvUtil::Error through = Filename::makeDir(tmp / "plain/sub");
    EXPECT_TRUE(through.isError());
    EXPECT_NE(through.message().find("plain"), std::string::npos) << through.message();

    EXPECT_EQ(Filename::makeDir("").code(), qvOS::OSError::InvalidArgument);
}

TEST(URL, PathsFileUrlsAndDrivesAreLocalOtherSchemesAreNot) {
    for (const char* local : {"", "/tmp/x", "rel", "file:///tmp/x", "FILE:/x", "C:", "c:\\x",
                              "C:/x", "./a:b", "1abc:x"})
        EXPECT_TRUE(qvOS::URL::isLocalFile(local)) << local;
    for (const char* remote : {"http://h/x", "https:x", "ftp:", "svn+ssh://h", "files:/x"})
        EXPECT_FALSE(qvOS::URL::isLocalFile(remote)) << remote;
    EXPECT_FALSE(qvOS::URL::isLocalFile(nullptr));
}

} // namespace
