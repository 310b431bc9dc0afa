// Option values as texts.
#include <connector/etcd/detail/ValueText.hpp>

#include "sources/Shown.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

namespace {

using connector::configuration::OptionValue;
using connector::etcd::detail::readValue;
using connector::etcd::detail::writeValue;

std::string typed(const std::string& type, const std::string& value) {
    return R"({"type":")" + type + R"(","value":)" + value + '}';
}

TEST(ValueTextTest, EveryTypeIsReadAsItIsWritten) {
    const std::vector<OptionValue> values = {
        true,
        -5,
        std::numeric_limits<int>::min(),
        4'000'000'000u,
        0.1,
        -0.0,
        5.0,
        std::numeric_limits<double>::denorm_min(),
        std::numeric_limits<double>::max(),
        std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(),
        std::u16string(u"\u00e4\U0001F600"),
        std::string("text"),
        std::string("\0\n\"", 3),
        std::vector<bool>{true, false},
        std::vector<int>{},
        std::vector<unsigned int>{1, 4'000'000'000u},
        std::vector<double>{0.5, std::numeric_limits<double>::infinity()},
        std::vector<std::string>{"", "a"},
        std::vector<std::u16string>{u"", u"\u00e4"},
    };
    for (const OptionValue& value : values) {
        const std::string text = writeValue(value);
        const auto read = readValue(text);
        ASSERT_TRUE(read) << text;
        EXPECT_EQ(value.which(), read->which()) << text;
        EXPECT_TRUE(value == *read) << text;
    }
    const auto nan = readValue(writeValue(std::nan("")));
    EXPECT_TRUE(nan && std::isnan(boost::get<double>(*nan)));
}

TEST(ValueTextTest, TextsAreStringsUnlessTheyAreObjectsWithAType) {
    for (const std::string& text : std::vector<std::string>{
             "", "debug", "5", "true", "[1]", "\"text\"", "{}", "{", "{\"type\"", R"({"value":5})",
             R"({"a":{"type":"int","value":5}})", R"([{"type":"int","value":5}])",
             R"({"type":"int","value":5} x)", "\xEF\xBB\xBF" + typed("int", "5"),
             typed("int", "5") + std::string(1, '\0')})
        EXPECT_EQ(std::optional(OptionValue(text)), readValue(text)) << text;
}

TEST(ValueTextTest, WhatDoesNotConvertExactlyIsUnreadable) {
    for (const std::string& text :
         std::vector<std::string>{"\xFF",
                                  "\xC3",
                                  "\xED\xA0\x80",
                                  typed("nonsense", "1"),
                                  typed("", "1"),
                                  typed("int", "1.0"),
                                  typed("int", "1e3"),
                                  typed("int", "2147483648"),
                                  typed("int", "\"5\""),
                                  typed("int", "true"),
                                  typed("int", "null"),
                                  typed("int", "[5]"),
                                  typed("uint", "-1"),
                                  typed("uint", "4294967296"),
                                  typed("bool", "1"),
                                  typed("bool", "\"true\""),
                                  typed("double", "9007199254740993"),
                                  typed("double", "1e999"),
                                  typed("double", "\"1\""),
                                  typed("string", "5"),
                                  typed("string", "{}"),
                                  typed("intArray", "5"),
                                  typed("intArray", "[5,\"6\"]"),
                                  typed("intArray", "[[5]]"),
                                  typed("intArray", "[{}]"),
                                  typed("stringArray", "[null]"),
                                  R"({"type":"int"})",
                                  R"({"type":5,"value":5})",
                                  R"({"type":"int","value":5,"more":1})",
                                  R"({"type":"int","type":"int","value":5})",
                                  R"({"type":"int","value":5,"value":5})",
                                  R"({"type":{},"value":5})",
                                  R"({"type":["int"],"value":5})"})
        EXPECT_FALSE(readValue(text)) << text;
}

TEST(ValueTextTest, WhiteSpaceAndOrderDoNotMatter) {
    EXPECT_EQ(std::optional(OptionValue(5)),
              readValue(" {\n\"value\" : 5 , \"type\" : \"int\" }\n"));
    EXPECT_EQ(std::optional(OptionValue(5.0)), readValue(typed("double", "5")));
    EXPECT_EQ(std::optional(OptionValue(18446744073709551616.0)),
              readValue(typed("double", "18446744073709551616")));
}

TEST(ValueTextTest, StringsAreWrittenAsTheyAreUnlessTheyWouldBeReadOtherwise) {
    EXPECT_EQ("debug", writeValue(std::string("debug")));
    EXPECT_EQ("{}", writeValue(std::string("{}")));
    const std::string object = typed("int", "5");
    EXPECT_EQ(R"({"type":"string","value":"{\"type\":\"int\",\"value\":5}"})",
              writeValue(std::string(object)));
    EXPECT_EQ(std::optional(OptionValue(object)), readValue(writeValue(std::string(object))));
}

TEST(ValueTextTest, TextsThatAreNotUnicodeAreRefused) {
    EXPECT_THROW(writeValue(std::string("\xFF")), std::invalid_argument);
    EXPECT_THROW(writeValue(std::vector<std::string>{"\xFF"}), std::invalid_argument);
    EXPECT_THROW(writeValue(std::u16string(1, u'\xD800')), std::invalid_argument);
}

TEST(ValueTextTest, DeepTextsNeedNoStack) {
    const std::string deep =
        typed("int", std::string(1'000'000, '[') + std::string(1'000'000, ']'));
    EXPECT_FALSE(readValue(deep));
    const std::string open(1'000'000, '{');
    EXPECT_EQ(std::optional(OptionValue(open)), readValue(open));
}

TEST(ValueTextTest, EveryTextIsReadOrUnreadable) {
    std::mt19937 random(7);
    const std::string pieces[] = {"{",         "}",       "\"type\"", ":",    "\"int\"", ",",
                                  "\"value\"", "5",       "[",        "]",    "1e999",   " ",
                                  "\"",        "\\u0000", "\xC3\xA4", "null", "-"};
    for (int round = 0; round < 20'000; ++round) {
        std::string text = "{";
        for (int i = 0; i < 9; ++i)
            text += pieces[random() % std::size(pieces)];
        const auto value = readValue(text);
        if (value) {
            EXPECT_EQ(value, readValue(writeValue(*value))) << text;
        }
    }
}

} // namespace
