#include <connector/service/messages/ParsedRequest.hpp>

#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using connector::service::maxNesting;
using connector::service::parseRequest;

TEST(ParsedRequest, RejectsInvalidJson) {
    const struct {
        int line;
        std::string text;
    } rows[] = {
        {__LINE__, "{"},
        {__LINE__, "{\"a\":1"},
        {__LINE__, "{\"a\":1} x"},
        {__LINE__, "{\"a\":1}{\"b\":2}"},
        {__LINE__, std::string("{}\0", 3)},
        {__LINE__, "{\"a\":1,}"},
        {__LINE__, "{\"a\":[1,]}"},
        {__LINE__, "{\"a\" 1}"},
        {__LINE__, "{a:1}"},
        {__LINE__, "{'a':1}"},
        {__LINE__, "{1:1}"},
        {__LINE__, "{1e400:1}"},
        {__LINE__, "{\"a\":01}"},
        {__LINE__, "{\"a\":+1}"},
        {__LINE__, "{\"a\":.5}"},
        {__LINE__, "{\"a\":1.}"},
        {__LINE__, "{\"a\":1e}"},
        {__LINE__, "{\"a\":-}"},
        {__LINE__, "{\"a\":099999999999999999999999}"},
        {__LINE__, "{\"a\":1e400x}"},
        {__LINE__, "{\"a\":12345e}"},
        {__LINE__, "{\"a\":12345.}"},
        {__LINE__, "{\"a\":123-456}"},
        {__LINE__, "{\"a\":1 2}"},
        {__LINE__, "{\"a\":0x10}"},
        {__LINE__, "{\"a\":NaN}"},
        {__LINE__, "{\"a\":Infinity}"},
        {__LINE__, "{\"a\":True}"},
        {__LINE__, "{\"a\":nul}"},
        {__LINE__, "{\"a\":\"b}"},
        {__LINE__, "{\"a\":\"\\x\"}"},
        {__LINE__, "{\"a\":\"\\"},
        {__LINE__, "{\"a\":\"\\u12\"}"},
        {__LINE__, "{\"a\":\"\\ud800\"}"},
        {__LINE__, "{\"a\":\"\\ud800\\u0041\"}"},
        {__LINE__, "{\"a\":\"\\udc00\"}"},
        {__LINE__, "{\"a\":\"\t\"}"},
        {__LINE__, "{\"a\":\"\n\"}"},
        {__LINE__, std::string("{\"a\":\"\0\"}", 9)},
        {__LINE__, "{} // comment"},
        {__LINE__, "{/* comment */}"},
        {__LINE__, "{\"id\":}"},
        {__LINE__, "{\"id\":[}"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        try {
            parseRequest(row.text);
            ADD_FAILURE() << "was read: " << row.text;
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(typeid(std::invalid_argument).name(), std::string(typeid(error).name()));
            EXPECT_EQ(0u, std::string(error.what()).find("Text is not valid JSON: "))
                << error.what();
        }
    }
}

TEST(ParsedRequest, RejectsInvalidUtf8) {
    for (const char* text : {"\xff", "{\"a\":\"\xc3\"}", "{\"a\":\"\xed\xa0\x80\"}",
                             "{\"a\":\"\xc0\x80\"}", "{\"a\":\"\xf4\x90\x80\x80\"}"})
        test::expectThrows<std::invalid_argument>("Text is not valid UTF-8",
                                                  [text] { parseRequest(text); });
}

TEST(ParsedRequest, RejectsEverythingButObjects) {
    for (const char* text :
         {"", " ", "[]", "[{}]", "1", "\"a\"", "null", "x", "}", "\xEF\xBB\xBF{}"})
        test::expectThrows<std::invalid_argument>("A request is a JSON object",
                                                  [text] { parseRequest(text); });
}

TEST(ParsedRequest, IgnoresSurroundingWhitespace) {
    EXPECT_TRUE(parseRequest(" \t\r\n{ }\n ").object->getNames().empty());
}

/// @return the member "key" of the message in a request where it has this value
Poco::Dynamic::Var keyOf(const std::string& json) {
    return parseRequest(R"({"message":{"key":)" + json + "}}")
        .object->getObject("message")
        ->get("key");
}

TEST(ParsedRequest, TheLastMemberOfANameCounts) {
    EXPECT_EQ(2, parseRequest(R"({"type":1,"type":2})").object->getValue<int>("type"));
    const auto object =
        parseRequest(R"({"message":{"key":1,"name":2},"message":{"k\u0065y":3}})").object;
    EXPECT_EQ(3, object->getObject("message")->getValue<int>("key"));
    EXPECT_FALSE(object->getObject("message")->has("name"));
    EXPECT_TRUE(
        parseRequest(R"({"message":{},"message":[]})").object->getObject("message").isNull());
}

TEST(ParsedRequest, AStringMayContainNul) {
    EXPECT_EQ(std::string("x\0y", 3), keyOf(R"("x\u0000y")").convert<std::string>());
}

TEST(ParsedRequest, ReadsNumbersThatFitNoTypeAsText) {
    for (const std::string number : {"1e400", "-1e400", "1.5E+999", "99999999999999999999",
                                     "-9223372036854775809", "18446744073709551616"}) {
        SCOPED_TRACE(number);
        EXPECT_TRUE(keyOf(number).isString());
        EXPECT_EQ(number, keyOf(number).extract<std::string>());
        EXPECT_EQ(number, keyOf("[" + number + "]")
                              .extract<Poco::JSON::Array::Ptr>()
                              ->getElement<std::string>(0));
    }
}

TEST(ParsedRequest, ReadsOtherNumbersAsNumbers) {
    for (const char* number : {"0", "-1", "-9223372036854775808", "9223372036854775807",
                               "9223372036854775808", "18446744073709551615", "1.5", "1e+300",
                               "-92233720368575809", "0.00001", "123456789.125"}) {
        SCOPED_TRACE(number);
        EXPECT_EQ(number, keyOf(number).convert<std::string>());
        EXPECT_TRUE(keyOf(number).isNumeric());
        EXPECT_FALSE(keyOf(number).isString());
    }
}

TEST(ParsedRequest, LeavesDigitsInStringsUnchanged) {
    EXPECT_EQ("\"1e400 99999999999999999999",
              keyOf(R"("\"1e400 99999999999999999999")").convert<std::string>());
    EXPECT_EQ("\\1234", keyOf(R"("\\1234")").convert<std::string>());
}

TEST(ParsedRequest, BuildsOnlyWhatMessagesRead) {
    const struct {
        int line;
        const char* request;
        const char* built;
    } rows[] = {
        {__LINE__, R"({"id":{"a":1},"x":[{}],"types":"a"})", "{}"},
        {__LINE__, R"({"type":{"a":[1]}})", R"({"type":{"a":[1]}})"},
        {__LINE__, R"({"message":[{"key":1}]})", R"({"message":null})"},
        {__LINE__, R"({"message":"text"})", R"({"message":null})"},
        {__LINE__, R"({"message":{"x":{"key":1},"Key":2,"key":{"x":[{}]}}})",
         R"({"message":{"key":{"x":[{}]}}})"},
        {__LINE__, R"({"message":{"value":[1]}})", R"({"message":{"value":null}})"},
        {__LINE__, R"({"message":{"value":{"x":1,"type":"a","value":[[1]]}}})",
         R"({"message":{"value":{"type":"a","value":[[1]]}}})"},
        {__LINE__, R"({"message":{"order":"7","readOnly":0}})",
         R"({"message":{"order":"7","readOnly":0}})"},
        {__LINE__, R"({"message":{"order":[[1,2],3],"readOnly":{}}})",
         R"({"message":{"order":[null],"readOnly":[]}})"},
        {__LINE__, R"({"message":{"readOnly":{"a":{"b":1}},"path":"p"}})",
         R"({"message":{"path":"p","readOnly":[null]}})"},
        {__LINE__, R"({"message":{"source":1,"name":2,"group":3,"path":4,"keys":[5]}})",
         R"({"message":{"group":3,"keys":[5],"name":2,"path":4,"source":1}})"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        std::ostringstream built;
        parseRequest(row.request).object->stringify(built);
        EXPECT_EQ(row.built, built.str());
    }
}

TEST(ParsedRequest, LimitsNesting) {
    const auto nested = [](std::size_t depth) {
        return "{\"a\":" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
    };
    EXPECT_NO_THROW(parseRequest(nested(maxNesting)));
    EXPECT_NO_THROW(parseRequest(nested(maxNesting)).content());
    for (const std::size_t depth : {maxNesting + 1, std::size_t(500000)})
        test::expectThrows<std::invalid_argument>("A request has at most 64 levels of nesting",
                                                  [&] { parseRequest(nested(depth)).content(); });
}

TEST(ParsedRequest, HasItsIdEvenIfNestedTooDeeply) {
    const std::string brackets = std::string(100, '[') + std::string(100, ']');
    const std::string members = std::string(R"({"a":)") + brackets;
    EXPECT_EQ("1", parseRequest(members + R"(,"id":1})").id);
    EXPECT_EQ("1", parseRequest(R"({"id":1,"a":)" + brackets + "}").id);
    EXPECT_EQ(brackets, parseRequest(R"({"\u0069d": )" + brackets + "}").id);
    EXPECT_FALSE(parseRequest(members + R"(,"b":{"id":1}})").id);
}

/// @return the text inside alternating objects and arrays
std::string wrapped(int depth, const std::string& inside) {
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += i % 2 == 0 ? "{\"a\":" : "[1e400,";
    text += inside;
    for (int i = depth; i-- > 0;)
        text += i % 2 == 0 ? "}" : "]";
    return text;
}

TEST(ParsedRequest, IsValidatedAtAnyDepth) {
    const char* const wrong[] = {"",      "x",         "[1,]",   "{\"a\":}", "[}",    "]",
                                 "[1 2]", "[1][2]",    "1[2]",   "[01]",     "{1:2}", "{[]:1}",
                                 "[",     "[\"\\x\"]", "[[1]2]", "{\"a\"}",  "\"",    "[-[]]"};
    const char* const right[] = {"1", "[]", "{}", "[[1],[2],{\"b\":[]}]", R"("]}[{\"")", "-0.5"};
    for (const int depth : {62, 63, 64, 65, 94, 95, 96, 97, 98, 127, 128, 129, 130, 1000}) {
        SCOPED_TRACE(depth);
        for (const char* inside : wrong)
            EXPECT_THROW(parseRequest(wrapped(depth, inside)), std::invalid_argument) << inside;
        for (const char* inside : right)
            EXPECT_NO_THROW(parseRequest(wrapped(depth, inside))) << inside;
    }
}

TEST(ParsedRequest, AMegabyteOfBracketsIsInvalid) {
    for (const char* bracket : {"[", "{\"a\":", "{\"a\":[", "[[],", "{\"a\":1,\"b\":"}) {
        std::string text = "{\"a\":";
        while (text.size() < 1000000)
            text += bracket;
        EXPECT_THROW(parseRequest(text), std::invalid_argument) << bracket;
    }
}

TEST(ParsedRequest, IgnoresIdsOfInnerObjects) {
    EXPECT_FALSE(parseRequest(R"({"a":{"id":1},"b":["id",{"id":2}],"c":"id"})").id);
    EXPECT_EQ("3", parseRequest(R"({"a":{"id":1},"id":3,"b":{"id":4}})").id);
}

TEST(ParsedRequest, TheNameOfTheIdMayBeEscaped) {
    EXPECT_EQ("1", parseRequest(R"({"\u0069\u0064":1})").id);
    EXPECT_FALSE(parseRequest(R"({"\\u0069d":1,"ID":2,"i\u0064 ":3})").id);
}

} // namespace
