#include "Base/qvString/CString.h"

#include <gtest/gtest.h>

using qvString::CString;
using qvString::IString;

TEST(CString, FormatHandlesEmptyLongAndNullInput) {
    EXPECT_EQ(CString::format("%d-%s", 42, "x"), "42-x");
    EXPECT_EQ(CString::format("%s", ""), "");
    EXPECT_EQ(CString::format("%s", std::string(3000, 'z').c_str()).size(), 3000u);
    EXPECT_EQ(CString(static_cast<const char*>(nullptr)), "");
}

TEST(CString, Utf8AndWideRoundTripIncludingCharactersOutsideTheBasicPlane) {
    const char* samples[] = {"", "plain", "caf\xC3\xA9", "\xE2\x82\xAC 5", "\xF0\x9F\x98\x80!"};
    for (const char* s : samples) {
        CString c(s);
        EXPECT_EQ(c.toWide().toUtf8(), c) << s;
    }
    EXPECT_EQ(CString("caf\xC3\xA9").toWide(), IString(L"caf\u00e9"));
}

TEST(CString, MalformedUtf8BecomesReplacementCharacters) {
    IString w = CString("a\xFF"
                        "b\xC3")
                    .toWide();
    EXPECT_EQ(w, IString(L"a\uFFFDb\uFFFD"));
}
