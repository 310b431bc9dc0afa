/// The text that both readers read alike.

#include <connector/configuration/properties/Lint.hpp>

#include <gtest/gtest.h>

namespace test {

using connector::configuration::properties::fixed;

TEST(Fixed, OnlyLinesWithAFindingChange) {
    const struct {
        int line;
        std::string text;
        std::string expected;
    } rows[] = {
        {__LINE__, "# c\n\n  \na==b\n! d\nx = y\n", "# c\n\n=\na=b\n! d\nx = y\n"},
        {__LINE__, "key\na = b\n", "key\\u000Aa = b\n"},
        {__LINE__, " a=b\n", "=a=b\n"},
        {__LINE__, " # c\n", "=# c\n"},
        {__LINE__, "a == b\n", "a == b\n"},
        {__LINE__, "a= =  b\r\n", "a=\\ b\r\n"},
        {__LINE__, "path : C:\\temp\\new\r", "path : C:tempnew\r"},
        {__LINE__, "a =   b\n", "a = \\  b\n"},
        {__LINE__, "a =  \n", "a = \\ \n"},
        {__LINE__, "a =\t\tb\n", "a =\t\\u0009b\n"},
        {__LINE__, "a=one\\\n  two\\\n\tthree\n", "a=one\\\n  two\\\n\\u0009three\n"},
        {__LINE__, "a=one\\\n\n  two\n", "a=onetwo\n"},
        {__LINE__, "a\\\nb=c\n", "a\\u000Ab=c\n"},
        {__LINE__, "a \\\n= b\n", "a \\\n\\= b\n"},
        {__LINE__, "a\fb=c\n", "a\\u000Cb=c\n"},
        {__LINE__, "a=\\u41 \\u00e9\n", "a=\\u0041u00e9\n"},
        {__LINE__,
         "\xEF\xBB\xBF"
         "a=b\nc=d\n",
         "\\uFEFFa=b\nc=d\n"},
        {__LINE__, "a==\xFF\n", "a=\xFF\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.expected, fixed(row.text));
    }
}

TEST(Fixed, ALostPropertyBecomesAComment) {
    EXPECT_EQ("a=b\n#c=", fixed("a=b\nc="));
    EXPECT_EQ("#one\r\n\r\n#two", fixed("one\r\n\r\ntwo"));
    EXPECT_EQ("#a=b\\\n", fixed("a=b\\\n"));
    EXPECT_EQ("#\xEF\xBB\xBF"
              "a=",
              fixed("\xEF\xBB\xBF"
                    "a="));
}

TEST(Fixed, ARewrittenLastLineGetsTheLineBreakOfTheFile) {
    EXPECT_EQ("a=b\n", fixed("a==b"));
    EXPECT_EQ("# c\r\na=b\r\n", fixed("# c\r\na==b"));
    EXPECT_EQ("a=b", fixed("a=b"));
}

TEST(Fixed, WhatNoTextCanSayStays) {
    EXPECT_EQ("a=\\ud83d\\uDE00\n", fixed("a=\\ud83d\\uDE00\n"));
    EXPECT_EQ("a=x\\ud83dt\n", fixed("a==x\\ud83d\\t\n"));
    // The library takes three digits and the first byte of the character.
    EXPECT_EQ("a=\\u123\xC3\xA9t\n", fixed("a==\\u123\xC3\xA9\\t\n"));
}

TEST(Fixed, ALineOnWhichOnlyIgnoredRulesAreBrokenStays) {
    using connector::configuration::properties::Rule;
    const std::string text = "a=\\t\nb==c\nc==\\t\n";
    EXPECT_EQ("a=\\t\nb=c\nc=t\n", fixed(text, {Rule::Escape}));
    EXPECT_EQ("a=t\nb==c\nc=t\n", fixed(text, {Rule::SecondSeparator}));
    EXPECT_EQ(text, fixed(text, {Rule::Escape, Rule::SecondSeparator}));
}

TEST(Fixed, WithoutAFindingNothingChanges) {
    for (const std::string text : {"", "a=b", " # c", "a==b\na=c\n", "\xEF\xBB\xBF"})
        EXPECT_EQ(text, fixed(text));
}

} // namespace test
