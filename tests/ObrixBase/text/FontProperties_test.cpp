#include "ObrixBase/text/FontProperties.h"

#include <climits>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

using qvObrixBase::FontProperties;
using Style = FontProperties::Style;
using Pitch = FontProperties::Pitch;

TEST(FontProperties, SizesSnapToTheNearestStandardSize) {
    const double inf = std::numeric_limits<double>::infinity();
    const struct {
        double points;
        int snapped;
    } cases[] = {{-5, 8},  {0, 8},     {NAN, 8},    {-inf, 8},  {7.9, 8}, {8.4, 8},
                 {8.5, 9}, {12.9, 12}, {13, 14},    {31.9, 28}, {32, 36}, {59, 48},
                 {60, 72}, {72, 72},   {1e300, 72}, {inf, 72}};
    for (const auto& c : cases)
        EXPECT_EQ(FontProperties::snapSize(c.points), c.snapped) << c.points;
    for (int size : FontProperties::standardSizes())
        EXPECT_EQ(FontProperties::snapSize(size), size);
}

TEST(FontProperties, WeightsStylesAndPitchesClampToAllowedValues) {
    const int weights[][2] = {{INT_MIN, 100}, {-1000, 100}, {0, 100},   {149, 100}, {150, 200},
                              {449, 400},     {450, 500},   {700, 700}, {901, 900}, {INT_MAX, 900}};
    for (const auto& w : weights)
        EXPECT_EQ(FontProperties::clampWeight(w[0]), w[1]) << w[0];
    FontProperties font("Arial", 12, 650);
    EXPECT_EQ(font.weight(), 700);
    EXPECT_TRUE(font.isBold());
    font.setStyle(static_cast<Style>(-3));
    EXPECT_EQ(font.style(), Style::Normal);
    font.setStyle(static_cast<Style>(9));
    EXPECT_EQ(font.style(), Style::Oblique);
    font.setPitch(static_cast<Pitch>(-1));
    EXPECT_EQ(font.pitch(), Pitch::Default);
    EXPECT_EQ(FontProperties("x", 1, 1, static_cast<Style>(5), static_cast<Pitch>(5)).pitch(),
              Pitch::Variable);
}

TEST(FontProperties, FamiliesCompareWithoutAsciiCaseAndOrderComesFieldByField) {
    const FontProperties a("Arial", 12), b("arial", 12.2);
    EXPECT_EQ(a, b);
    FontProperties copy = a;
    copy.setWeight(FontProperties::BoldWeight);
    EXPECT_NE(copy, a);
    EXPECT_LT(a, copy);
    EXPECT_LT(FontProperties("arial", 72), FontProperties("Courier", 8));
    EXPECT_LT(FontProperties("Arial", 8), FontProperties("Arial Black", 8));
    EXPECT_LT(FontProperties("A", 8, 400, Style::Italic),
              FontProperties("A", 8, 400, Style::Oblique));
}

TEST(FontProperties, TextFormParsesBackToAnEqualFont) {
    const FontProperties fonts[] = {
        FontProperties(),
        FontProperties("Segoe UI", 13.2, FontProperties::BoldWeight, Style::Italic,
                       Pitch::Variable),
        FontProperties("odd;name\\with=signs\nand a line", 100, 0, Style::Oblique, Pitch::Fixed),
        FontProperties("\u00c9l\u00e9gante \xff", 9),
    };
    EXPECT_EQ(fonts[1].toText(), "family=Segoe UI;size=14;weight=700;style=italic;pitch=variable");
    EXPECT_EQ(fonts[2].toText(), "family=odd\\;name\\\\with=signs\\nand a line;size=72;"
                                 "weight=100;style=oblique;pitch=fixed");
    for (const FontProperties& font : fonts) {
        FontProperties read("placeholder", 20);
        ASSERT_TRUE(FontProperties::fromText(font.toText(), read).isOk()) << font.toText();
        EXPECT_EQ(read, font);
        EXPECT_EQ(read.family(), font.family()); // exactly, not only without case
    }
    FontProperties read;
    ASSERT_TRUE(FontProperties::fromText("size=13.2;family=Courier New", read).isOk());
    EXPECT_EQ(read, FontProperties("Courier New", 14));
    ASSERT_TRUE(FontProperties::fromText("weight=-7;size=-1e300", read).isOk());
    EXPECT_EQ(read, FontProperties("", 8, 100));
}

TEST(FontProperties, BadTextIsRefusedWithTheFieldNamedAndTheFontKept) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"size=12;size=14", "font text: field \"size\" given twice"},
        {"colour=red", "font text: unknown field \"colour\""},
        {"size", "font text: field \"size\" has no '='"},
        {"family=A;", "font text: field \"\" has no '='"},
        {"size=big", "font text: bad size \"big\""},
        {"weight=1e3", "font text: bad weight \"1e3\""},
        {"weight=99999999999", "font text: bad weight \"99999999999\""},
        {"style=bold", "font text: bad style \"bold\""},
        {"pitch=Fixed", "font text: bad pitch \"Fixed\""},
    };
    const FontProperties kept("Kept", 20);
    for (const auto& c : cases) {
        FontProperties font = kept;
        const qvUtil::Error error = FontProperties::fromText(c.text, font);
        EXPECT_EQ(error.code(), FontProperties::ParseError) << c.text;
        EXPECT_EQ(error.message(), c.message);
        EXPECT_EQ(font, kept);
    }
}
