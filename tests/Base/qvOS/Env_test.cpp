#include "Base/qvOS/Env.h"

#include <gtest/gtest.h>

#include "Base/qvOS/OSError.h"
#include "Base/qvOS/Uuid.h"

namespace {

TEST(Env, SetReadRemoveInBothWidthsKeepsEmptyAndNonAsciiValuesAndRefusesBadNames) {
    const char* name = "OBRIX_ENV_TEST_\xc3\xa9";
    ASSERT_TRUE(qvOS::SetEnv(name, "val \xe6\x97\xa5").isOk());
    qvString::CString narrow;
    ASSERT_TRUE(qvOS::GetEnv(name, narrow));
    EXPECT_EQ(narrow, "val \xe6\x97\xa5");
    qvString::IString wide;
    ASSERT_TRUE(qvOS::GetEnv(qvString::CString(name).toWide().c_str(), wide));
    EXPECT_EQ(wide, L"val \x65e5");

    ASSERT_TRUE(qvOS::SetEnv(name, "").isOk());
    narrow = "stale";
    ASSERT_TRUE(qvOS::GetEnv(name, narrow));
    EXPECT_EQ(narrow, "");

    ASSERT_TRUE(qvOS::SetEnv(name, nullptr).isOk());
    narrow = "kept";
    EXPECT_FALSE(qvOS::GetEnv(name, narrow));
    EXPECT_EQ(narrow, "kept");

    // Bad names are refused.
    EXPECT_FALSE(qvOS::GetEnv(static_cast<const char*>(nullptr), narrow));
    EXPECT_FALSE(qvOS::GetEnv("", narrow));
    EXPECT_FALSE(qvOS::GetEnv(static_cast<const wchar_t*>(nullptr), wide));
    EXPECT_FALSE(qvOS::GetEnv(L"", wide));
    for (const char* bad : {static_cast<const char*>(nullptr), "", "A=B"})
        EXPECT_EQ(qvOS::SetEnv(bad, "x").code(), qvOS::OSError::InvalidArgument);
}

TEST(Uuid, IsVersion4LowerCaseHexAndUnique) {
    qvOS::Uuid a, b;
    qvString::CString s = a.asString();
    ASSERT_EQ(s.size(), 36u);
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (i == 8 || i == 13 || i == 18 || i == 23)
            EXPECT_EQ(s[i], '-');
        else
            EXPECT_TRUE((s[i] >= '0' && s[i] <= '9') || (s[i] >= 'a' && s[i] <= 'f')) << s;
    }
    EXPECT_EQ(s[14], '4');
    EXPECT_NE(std::string("89ab").find(s[19]), std::string::npos) << s;
    EXPECT_FALSE(a == b);
    EXPECT_NE(s, b.asString());
}

} // namespace
