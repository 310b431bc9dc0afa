/// Which lines are plain. The parser's tests show how plain lines are read.

#include <connector/configuration/properties/PlainLine.hpp>

#include <gtest/gtest.h>

#include <string>

namespace test {

namespace {

using connector::configuration::detail::PlainLine;
using connector::configuration::detail::plainLine;

void expectPlain(const std::string& text, const std::string& key, const std::string& value,
                 std::size_t length) {
    SCOPED_TRACE(testing::PrintToString(text));
    const PlainLine line = plainLine(text);
    EXPECT_EQ(key, line.key);
    EXPECT_EQ(value, line.value);
    EXPECT_EQ(length, line.length);
}

void expectNotPlain(const std::string& text) {
    EXPECT_EQ(0u, plainLine(text).length) << testing::PrintToString(text);
}

} // namespace

TEST(PlainLine, IncludesItsLineBreak) {
    expectPlain("a=b\n", "a", "b", 4);
    expectPlain("a.b : c d \nnext", "a.b", "c d ", 11);
    expectPlain(" =\t\n", "", "", 4);
}

TEST(PlainLine, EndsAtACarriageReturn) {
    expectPlain("a=b\r\nnext", "a", "b", 4);
    expectPlain("a= \r\n", "a", "", 4);
}

TEST(PlainLine, ContainsNoBackslash) {
    expectNotPlain("a\\=b=c\n");
    expectNotPlain("a=b\\\n c\n");
    expectPlain("a=b\nc=\\d\n", "a", "b", 4);
}

TEST(PlainLine, IsCompleteAndNeitherACommentNorEmpty) {
    for (const char* text : {"", "\n", "\r\n", "\r", "#a=b\n", "!a=b\n", "a", "a=b", "a=b\r"})
        expectNotPlain(text);
}

TEST(PlainLine, HasASeparatorBeforeAnyLineBreak) {
    for (const char* text : {"a\nb=c\n", "a\r\nb=c\n", "a\rb=c\n", "a=b\rc=d\n"})
        expectNotPlain(text);
}

TEST(PlainLine, IsLimitedInLength) {
    const std::string longest = "a=" + std::string(1021, 'b');
    expectPlain(longest + "\n", "a", longest.substr(2), 1024);
    expectNotPlain(longest + "b\n");
}

} // namespace test
