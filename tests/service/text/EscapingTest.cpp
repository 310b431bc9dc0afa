#include <connector/service/text/Escaping.hpp>

#include <connector/service/text/Utf8.hpp>

#include <gtest/gtest.h>

#include <Poco/JSON/Parser.h>

namespace {

using namespace connector::service;

TEST(Escaped, HasNoControlCharacters) {
    const struct {
        int line;
        std::string text;
        std::string shown;
    } rows[] = {
        {__LINE__, "", ""},
        {__LINE__, "plain text ~", "plain text ~"},
        {__LINE__, "\n\r\t", "\\n\\r\\t"},
        {__LINE__, std::string(1, '\0'), "\\x00"},
        {__LINE__, "\x01\x1f\x7f", "\\x01\\x1f\\x7f"},
        {__LINE__, "\xc2\x80\xc2\x9f\xc2\xa0", "\\u0080\\u009f\xc2\xa0"}, // C1 control characters
        {__LINE__, "\\n", "\\n"}, // backslashes are not escaped
        {__LINE__, "h\xc3\xa9", "h\xc3\xa9"},
        {__LINE__, "\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80"},
        {__LINE__, "\xe2\x80\xa8\xe2\x80\xa9", "\\u2028\\u2029"}, // line and paragraph separators
        {__LINE__, "\xe2\x80\xae\xe2\x81\xa6", "\\u202e\\u2066"}, // writing direction
        {__LINE__, "\xe2\x80\x8e\xe2\x80\x8f\xd8\x9c", "\\u200e\\u200f\\u061c"},
        {__LINE__, "\xe2\x80\x8d\xe2\x80\x90\xd8\x9b\xd8\x9d", // their neighbours
         "\xe2\x80\x8d\xe2\x80\x90\xd8\x9b\xd8\x9d"},
        {__LINE__, "\xff\xfe", "\\xff\\xfe"},
        {__LINE__, "\xc3", "\\xc3"},                   // truncated
        {__LINE__, "\xe2\x82x", "\\xe2\\x82x"},        // truncated before another character
        {__LINE__, "\xc0\x80", "\\xc0\\x80"},          // overlong
        {__LINE__, "\xed\xa0\x80", "\\xed\\xa0\\x80"}, // half of a surrogate pair
        {__LINE__, "\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"}, // beyond Unicode
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.shown, escaped(row.text));
    }
}

TEST(Shortened, KeepsWholeCharacters) {
    EXPECT_EQ("", shortened("", 0));
    EXPECT_EQ("abc", shortened("abc", 3));
    EXPECT_EQ("abc...", shortened("abcd", 3));
    EXPECT_EQ("...", shortened("a", 0));
    EXPECT_EQ("a...", shortened("a\xe2\x82\xac", 3));
    EXPECT_EQ("a\xe2\x82\xac", shortened("a\xe2\x82\xac", 4));
    EXPECT_EQ("a\xe2\x82\xac...", shortened("a\xe2\x82\xac\xe2\x82\xac", 6));
    EXPECT_EQ("a\xff\xff...", shortened("a\xff\xff\xff", 3)); // not UTF-8
}

TEST(ToValidUtf8, ReplacesBytesThatAreNotUtf8) {
    EXPECT_EQ("a\xEF\xBF\xBD\xEF\xBF\xBD"
              "b\n\xc3\xa9",
              toValidUtf8("a\xe2\x82"
                          "b\n\xc3\xa9"));
}

TEST(EscapedJson, EscapesControlCharactersWithoutChangingTheMeaning) {
    const std::string document =
        "[\"a\x7f\xc2\x85\xe2\x80\xa8\xe2\x80\x8e\xe2\x80\x8f\xd8\x9c\xc3\xa9\"]";
    const std::string result = escapedJson(document);
    EXPECT_EQ("[\"a\\u007f\\u0085\\u2028\\u200e\\u200f\\u061c\xc3\xa9\"]", result);
    EXPECT_EQ(Poco::JSON::Parser().parse(document).toString(),
              Poco::JSON::Parser().parse(result).toString());
}

TEST(Utf8, ASingleByteIsACharacterExactlyIfItIsAscii) {
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(byte < 0x80, isUtf8(std::string(1, static_cast<char>(byte)))) << byte;
}

} // namespace
