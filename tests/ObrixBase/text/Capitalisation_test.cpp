#include "ObrixBase/text/Capitalisation.h"

#include <string>

#include <gtest/gtest.h>

using qvObrixBase::sentenceCase;
using qvObrixBase::titleCase;

namespace {

struct Case {
    const char* in;
    const char* out;
};

// Each row pins one rule or a collision between two.
const Case kTitles[] = {
    // small words inside, first and last (each row covers several words of the list)
    {"the lord of the rings", "The Lord of the Rings"},
    {"a tale of two cities and war with peace", "A Tale of Two Cities and War with Peace"},
    {"into the wild as time goes by", "Into the Wild as Time Goes By"},
    {"vs. batman vs. superman", "Vs. Batman vs. Superman"},
    {"a", "A"},
    {"", ""},
    {"The Lord Of The Rings", "The Lord of the Rings"},
    {"the i in team", "The I in Team"},
    // colons, question and exclamation marks open and close a part
    {"what it is for: a study", "What It Is For: A Study"},
    {"where are you going to?", "Where Are You Going To?"},
    {"why? because it works", "Why? Because It Works"},
    {"stop! in the name of love", "Stop! In the Name of Love"},
    // hyphenated parts are words of their own
    {"out-of-date maps", "Out-of-Date Maps"},
    {"self- and co-operation", "Self- and Co-Operation"},
    {"the end of-the", "The End of-The"},
    {"DVD-ROM drives and cd-rom", "DVD-ROM Drives and Cd-Rom"},
    // capitals inside a word leave it alone, wherever it stands
    {"iPhone apps in a week", "iPhone Apps in a Week"},
    {"A TALE of two cities", "A TALE of Two Cities"},
    {"O'Brien and the sea", "O'Brien and the Sea"},
    {"o'brien and the sea", "O'brien and the Sea"},
    {"the 3D modeller's handbook", "The 3D Modeller's Handbook"},
    {"3d printing for designers", "3d Printing for Designers"},
    // punctuation around words, white space and lines
    {"(the) brackets around words", "(The) Brackets Around Words"},
    {"\"quoted\" words in the title", "\"Quoted\" Words in the Title"},
    {"\u201ccurly quotes\u201d on the title", "\u201cCurly Quotes\u201d on the Title"},
    {"-- the dash", "-- The Dash"},
    {"   leading  spaces\tand a tab   ", "   Leading  Spaces\tand a Tab   "},
    {"first title\nsecond of the titles", "First Title\nSecond of the Titles"},
    {"hello\r\nworld of windows", "Hello\r\nWorld of Windows"},
    // letters beyond ASCII, and bytes that are not UTF-8
    {"\u00e9lan vital and the will", "\u00c9lan Vital and the Will"},
    {"\u00c9T\u00c9 in paris", "\u00c9T\u00c9 in Paris"},
    {"\u00dftart word", "\u00dftart Word"},
    {"\u03a9mega and the greeks", "\u03a9mega and the Greeks"},
    {"bad \xff bytes of text", "Bad \xff Bytes of Text"},
    {"\xc3 truncated", "\xc3 Truncated"},
    {"caf\xc3", "Caf\xc3"},
    {"\xe2\x80 half a quote", "\xe2\x80 Half a Quote"},
};

} // namespace

TEST(Capitalisation, TitleCaseFollowsTheBookTitleRulesIsStableAndKeepsTheLength) {
    for (const Case& c : kTitles) {
        EXPECT_EQ(titleCase(c.in), c.out) << "input: \"" << c.in << '"';
        EXPECT_EQ(titleCase(c.out), c.out) << "input: \"" << c.out << '"';
        EXPECT_EQ(titleCase(c.in).size(), std::string(c.in).size());
    }
    const std::string withNul("a\0the end", 9); // a NUL byte is a character like any other
    EXPECT_EQ(titleCase(withNul), std::string("A\0the End", 9));
}

TEST(Capitalisation, SentenceCaseCapitalisesOnlyWhereASentenceStarts) {
    const Case cases[] = {
        {"Hello World. This Is A Test", "Hello world. This is a test"},
        {"THE quick brown fox. it jumps!", "THE quick brown fox. It jumps!"},
        {"i think i'm right. are you?", "I think I'm right. Are you?"},
        {"It is\u2019nt I\u2019m", "It is\u2019nt I\u2019m"},
        {"what? no way! yes.", "What? No way! Yes."},
        {"the NURBS surface of an iPhone", "The NURBS surface of an iPhone"},
        {"\"Quoted.\" then more", "\"Quoted.\" Then more"},
        {"Well-Known Facts About Paris", "Well-known facts about paris"},
        {"e.g. this one", "E.g. This one"},
        {"line one\nLine two", "Line one\nline two"},
        {"\u00c9LAN. \u00fcber", "\u00c9LAN. \u00dcber"},
        {"\xff\xfe Abc. def", "\xff\xfe abc. Def"},
        {"", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(sentenceCase(c.in), c.out) << "input: \"" << c.in << '"';
}
