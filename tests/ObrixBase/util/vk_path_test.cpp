#include "ObrixBase/util/vk_path.h"

#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Base/qvOS/Filename.h"
#include "tests/support/ReportCapture.h"
#include "tests/support/ScopedEnv.h"
#include "tests/support/TempDir.h"

using obrix::test::ScopedEnv;
using obrixtest::TempDir;

namespace {

std::string taken(char* s) {
    std::unique_ptr<char, decltype(&std::free)> owner(s, &std::free);
    return s ? s : "<null>";
}

// Every entry of an open directory, in the order read: (name, entry number).
std::vector<std::pair<std::string, long>> readAll(_dir_struc* dir) {
    std::vector<std::pair<std::string, long>> entries;
    while (win32_dirent* e = win32_readdir(dir)) {
        EXPECT_EQ(e->d_namlen, std::string(e->d_name).size());
        entries.emplace_back(e->d_name, e->d_ino);
    }
    return entries;
}

} // namespace

TEST(VkPath, CopyDeleteAndMoveAnswerOneOrZero) {
    TempDir tmp;
    const std::string a = tmp / "a", b = tmp / "b";
    TempDir::write(a, "A");
    EXPECT_EQ(qvFileCopy(a.c_str(), b.c_str(), false), 1);
    EXPECT_EQ(qvFileMove(a.c_str(), b.c_str(), false), 0); // target exists
    EXPECT_EQ(qvFileDelete(b.c_str()) + qvFileDelete(b.c_str()), 1);
    EXPECT_EQ(qvFileCopy(nullptr, b.c_str(), true) + qvFileMove(a.c_str(), nullptr, true), 0);
}

TEST(VkPath, ExistenceGivesTheFileTypeAndToleratesTrailingSeparators) {
    TempDir tmp;
    const std::string sep(1, qvOS::Filename::separator());
    const std::string file = tmp / "f.txt";
    TempDir::write(file, "x");
    EXPECT_EQ(OB_FileExists(tmp.path().c_str()), 0x4000);
    EXPECT_EQ(OB_FileExists((tmp.path() + sep).c_str()), 0x4000);
    EXPECT_EQ(OB_FileExists(file.c_str()), 0x8000);
    EXPECT_EQ(OB_FileExists((tmp / "missing").c_str()), 0);
    EXPECT_EQ(OB_FileExists(nullptr), 0);
    EXPECT_EQ(OB_FileExists(sep.c_str()), 0x4000);
    if (qvOS::Filename::hasDrives()) {
        EXPECT_EQ(OB_FileExists("C:"), 0x4000);
        EXPECT_EQ(OB_FileExists("C:\\"), 0x4000);
    } else {
        EXPECT_EQ(OB_FileExists("C:"), 0); // tested as "C:\", a name POSIX does not have
    }
    obrix::test::ReportCapture reports;
    EXPECT_EQ(OB_FileExists((std::string(300, 'a') + sep).c_str()), 0);
    EXPECT_EQ(reports.texts(), std::vector<std::string>{
                                   "OB_FileExists: a path of 301 characters is longer than 260"});
}

TEST(VkPath, ConversionTurnsEverySlashOneWayOnEverySystem) {
    EXPECT_EQ(taken(convertFilename("a\\b/c\\\\d", 1)), "a/b/c//d");
    EXPECT_EQ(taken(convertFilename("a\\b/c//d", 0)), "a\\b\\c\\\\d");
    EXPECT_EQ(taken(convertFilename("", 1)), "");
    EXPECT_EQ(taken(convertFilename(nullptr, 1)), "<null>");
}

TEST(VkPath, TildeExpandsToAHomeDirectory) {
    TempDir home;
    ScopedEnv posixHome("HOME", home.path().c_str());
    ScopedEnv windowsHome("USERPROFILE", home.path().c_str());
    ScopedEnv user("USERNAME", nullptr);
    EXPECT_EQ(taken(ExpandPathname("~/pix/a.pix")), home.path() + "/pix/a.pix");
    EXPECT_EQ(taken(ExpandPathname("~")), home.path());
    EXPECT_EQ(taken(ExpandPathname("plain/~x")), "plain/~x");
    EXPECT_EQ(taken(ExpandPathname("~no-such-user-obrix/x")), "~no-such-user-obrix/x");
    EXPECT_EQ(taken(ExpandPathname(nullptr)), "<null>");

    obrix::test::ReportCapture reports;
    EXPECT_EQ(taken(ExpandPathname(("~" + std::string(1024, 'u') + "/x").c_str())), "<null>");
    EXPECT_EQ(reports.texts(),
              std::vector<std::string>{"ExpandPathname: a user name of 1024 characters is longer "
                                       "than 1023"});
    EXPECT_NE(taken(ExpandPathname(("~" + std::string(1023, 'u')).c_str())), "<null>");
}

TEST(VkPath, DirectoryReaderListsRewindsAndNumbersAcrossDirectories) {
    TempDir tmp;
    const std::string full = tmp / "full", empty = tmp / "empty";
    qvOS::Filename::makeDir(full);
    qvOS::Filename::makeDir(empty);
    for (const char* name : {"a.pix", "b.pix", "c"})
        TempDir::write(full + "/" + name, name);

    std::string path = full;
    _dir_struc* dir = win32_opendir(path.data());
    ASSERT_NE(dir, nullptr);
    EXPECT_EQ(dir->nfiles, 5);
    auto entries = readAll(dir);
    EXPECT_EQ(win32_readdir(dir), nullptr); // stays at the end
    std::set<std::string> names;
    for (const auto& entry : entries)
        names.insert(entry.first);
    EXPECT_EQ(names, (std::set<std::string>{".", "..", "a.pix", "b.pix", "c"}));

    // One counter numbers every read: through a rewind and on into the next directory.
    win32_rewinddir(dir);
    auto again = readAll(dir);
    EXPECT_EQ(again, [&] {
        auto expected = entries;
        for (auto& entry : expected)
            entry.second += 5;
        return expected;
    }());
    path = empty + qvOS::Filename::separator();
    _dir_struc* other = win32_opendir(path.data());
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(path, empty + qvOS::Filename::separator()); // the caller's text is untouched
    auto dots = readAll(other);
    ASSERT_EQ(dots.size(), 2u); // "." and ".." only
    EXPECT_EQ(dots[0].second, again.back().second + 1);
    EXPECT_EQ(dots[1].second, again.back().second + 2);
    EXPECT_EQ(win32_closedir(other), 1);
    EXPECT_EQ(win32_closedir(dir), 1);

    std::string file = full + "/c", missing = tmp / "missing", longPath = std::string(261, 'd');
    for (std::string* bad : {&file, &missing, &longPath})
        EXPECT_EQ(win32_opendir(bad->data()), nullptr) << *bad;
    EXPECT_EQ(win32_opendir(nullptr), nullptr);
    EXPECT_EQ(win32_readdir(nullptr), nullptr);
    win32_rewinddir(nullptr);
    EXPECT_EQ(win32_closedir(nullptr), 1);
}
