#include "ObrixBase/util/vk_string.h"

#include <string>

#include <gtest/gtest.h>

namespace {

// Runs an in-place edit on a copy of `text` held in a buffer with one spare byte.
template <class Edit>
std::string edited(const std::string& text, Edit edit) {
    std::string buffer = text + '\0';
    edit(buffer.data());
    return buffer.c_str();
}

} // namespace

TEST(VkString, NumbersLoseTrailingZerosButKeepADigitAfterThePoint) {
    const std::pair<std::string, std::string> cases[] = {
        {"1.500", "1.5"}, {"2.000", "2.0"}, {"0.000", "0.0"}, {"000", "0"},
        {"100", "1"},     {"2.", "2.0"},    {"", "0"},        {"-0.25", "-0.25"}};
    for (const auto& [in, out] : cases)
        EXPECT_EQ(edited(in, VK_string_number_de_zero), out) << in;
    VK_string_number_de_zero(nullptr);
}

TEST(VkString, StrippingRemovesTheCharacterEverywhereOrAtTheEnds) {
    auto strip = [](char c) { return [c](char* s) { VK_string_stripchar(s, c); }; };
    auto trim = [](char c) { return [c](char* s) { VK_string_leading_trailing_remove(s, c); }; };
    auto trail = [](char c) { return [c](char* s) { VK_string_trailing_remove(s, c); }; };
    EXPECT_EQ(edited("a,b,,c", strip(',')), "abc");
    EXPECT_EQ(edited("  a b  ", trim(' ')), "a b");
    EXPECT_EQ(edited("    ", trim(' ')), "");
    EXPECT_EQ(edited("", trim(' ')), "");
    EXPECT_EQ(edited("xyy", trail('y')), "x");
    // The scratch buffer grows for a longer string and is reused for shorter ones.
    EXPECT_EQ(edited(std::string(5000, '-') + "x" + std::string(300, '-'), trim('-')), "x");
    EXPECT_EQ(edited("--y-", trim('-')), "y");

    char dst[8] = "keep";
    VK_string_strcpy_stripchar(dst, "a.b.c", '.');
    EXPECT_STREQ(dst, "abc");
    VK_string_strcpy_stripchar(dst, nullptr, '.');
    EXPECT_STREQ(dst, "");
}
