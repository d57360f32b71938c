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

TEST(CString, IllFormedUtf8IsReplacedOneCharacterPerMaximalBadPrefix) {
    // Each row: bytes in, expected wide text. A decoder that only checks the bit patterns would
    // turn the overlong forms into NUL and '/', and the surrogate and out-of-range forms into
    // code points no valid text contains.
    const struct {
        const char* name;
        std::string bytes;
        std::wstring expected;
    } cases[] = {
        {"overlong NUL", "a\xC0\x80z", L"a\uFFFD\uFFFDz"},
        {"overlong slash", "\xE0\x80\xAF/", L"\uFFFD\uFFFD\uFFFD/"},
        {"overlong four-byte", "\xF0\x8F\xBF\xBF", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"high surrogate", "\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},
        {"low surrogate", "\xED\xBF\xBFx", L"\uFFFD\uFFFD\uFFFDx"},
        {"above U+10FFFF", "\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"lead beyond F4", "\xF5\x80", L"\uFFFD\uFFFD"},
        {"truncated at the end", "b\xF0\x9F\x98", L"b\uFFFD"},
        {"truncated by an ASCII byte", "\xE2\x82z", L"\uFFFDz"},
        {"truncated by a lead byte", "\xE2\xC3\xA9", L"\uFFFD\u00e9"},
        {"stray continuation and FF", "a\x80\xFF", L"a\uFFFD\uFFFD"},
        // The edges of the valid ranges must still decode.
        {"last before surrogates", "\xED\x9F\xBF", L"\uD7FF"},
        {"first after surrogates", "\xEE\x80\x80", L"\uE000"},
        {"smallest three-byte", "\xE0\xA0\x80", L"\u0800"},
        {"largest code point", "\xF4\x8F\xBF\xBF", L"\U0010FFFF"},
        {"smallest four-byte", "\xF0\x90\x80\x80", L"\U00010000"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CString(c.bytes).toWide(), IString(c.expected)) << c.name;
}
