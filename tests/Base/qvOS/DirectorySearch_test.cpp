#include "Base/qvOS/DirectorySearch.h"

#include <set>

#include <gtest/gtest.h>

#include "tests/support/TempDir.h"

using obrixtest::TempDir;

namespace {

std::multiset<std::string> listAll(qvOS::DirectorySearch& search) {
    std::multiset<std::string> names;
    for (qvString::CString n; search.next(n);)
        names.insert(n);
    return names;
}

TEST(DirectorySearch, ListsEveryNameOnceWithDotEntries) {
    TempDir tmp;
    TempDir::write(tmp / "a.txt", "1");
    TempDir::write(tmp / "\xc3\xa9t\xc3\xa9", "2");
    ASSERT_TRUE(qvOS::Filename::makeDir(tmp / "sub").isOk());
    qvOS::DirectorySearch search;
    ASSERT_TRUE(search.open(tmp.path()).isOk());
    EXPECT_EQ(listAll(search),
              (std::multiset<std::string>{".", "..", "a.txt", "\xc3\xa9t\xc3\xa9", "sub"}));
    qvString::CString name = "untouched";
    EXPECT_FALSE(search.next(name));
    EXPECT_EQ(name, "untouched");

    // Reopening (here with a trailing separator) starts a new listing.
    ASSERT_TRUE(search.open(tmp.path() + "/").isOk());
    EXPECT_EQ(listAll(search).size(), 5u);
    // An empty directory has only the dot entries.
    ASSERT_TRUE(search.open(tmp / "sub").isOk());
    EXPECT_EQ(listAll(search), (std::multiset<std::string>{".", ".."}));
}

TEST(DirectorySearch, BadDirectoriesFail) {
    TempDir tmp;
    qvOS::DirectorySearch search;

    qvUtil::Error missing = search.open(tmp / "missing");
    EXPECT_EQ(missing.code(), qvOS::OSError::NotFound) << missing.message();
    EXPECT_NE(missing.message().find("missing"), std::string::npos);
    qvString::CString name;
    EXPECT_FALSE(search.next(name));
    TempDir::write(tmp / "file", "x");
    EXPECT_EQ(search.open(tmp / "file").code(), qvOS::OSError::NotFound);
    EXPECT_EQ(search.open("").code(), qvOS::OSError::InvalidArgument);
    search.close();
    search.close();
}

} // namespace
