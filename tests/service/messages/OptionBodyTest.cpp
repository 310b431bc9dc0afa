/// Bodies of requests to set an option.
#include <connector/service/messages/OptionBody.hpp>

#include "support/AllocationCount.hpp"
#include "support/Expect.hpp"

#include <connector/service/messages/TooManyElements.hpp>
#include <connector/service/text/Json.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using connector::configuration::fromOptionValue;
using connector::configuration::OptionValue;
using connector::service::jsonText;
using connector::service::maxElementMemory;
using connector::service::NotJson;
using connector::service::readOptionBody;
using connector::service::TooManyElements;
using connector::service::UnacceptableValue;

struct Accepted {
    int line;
    const char* body;
    OptionValue value;
};

void expectValue(const OptionValue& expected, const std::string& body) {
    const OptionValue value = readOptionBody(body);
    EXPECT_TRUE(expected == value) << jsonText(fromOptionValue(value));
}

void expectValues(const std::vector<Accepted>& rows) {
    for (const Accepted& row : rows) {
        SCOPED_TRACE(row.line);
        expectValue(row.value, row.body);
    }
}

struct Refused {
    int line;
    std::string body;
    const char* reason;
};

void expectRefusals(const std::vector<Refused>& rows) {
    for (const Refused& row : rows) {
        SCOPED_TRACE(row.line);
        test::expectThrows<UnacceptableValue>(row.reason, [&] { readOptionBody(row.body); });
    }
}

std::string typed(const std::string& type, const std::string& value) {
    return R"({"type":")" + type + R"(","value":)" + value + "}";
}

TEST(OptionBody, ABareValueHasTheFirstTypeThatHoldsIt) {
    expectValues({
        {__LINE__, "true", true},
        {__LINE__, " false\n", false},
        {__LINE__, "0", 0},
        {__LINE__, "-0", 0},
        {__LINE__, "2147483647", 2147483647},
        {__LINE__, "-2147483648", -2147483647 - 1},
        {__LINE__, "2147483648", 2147483648u},
        {__LINE__, "4294967295", 4294967295u},
        {__LINE__, "4294967296", 4294967296.0},
        {__LINE__, "-2147483649", -2147483649.0},
        {__LINE__, "9007199254740992", 9007199254740992.0},
        {__LINE__, "9007199254740994", 9007199254740994.0},
        {__LINE__, "1180591620717411303424", 1180591620717411303424.0}, // 2 to the power of 70
        {__LINE__, "1.0", 1.0},
        {__LINE__, "1e2", 100.0},
        {__LINE__, "-1E+2", -100.0},
        {__LINE__, "0.1", 0.1},
        {__LINE__, "1.7976931348623157e308", 1.7976931348623157e308},
        {__LINE__, R"("")", std::string()},
        {__LINE__, R"("1")", std::string("1")},
        {__LINE__, R"("\u00e4\u0000")", std::string("\xc3\xa4\0", 3)},
        {__LINE__, "[]", std::vector<std::string>()},
        {__LINE__, "[true,false]", std::vector<bool>{true, false}},
        {__LINE__, "[1, -1]", std::vector<int>{1, -1}},
        {__LINE__, "[1,2147483648]", std::vector<unsigned int>{1, 2147483648u}},
        {__LINE__, "[-1,2147483648]", std::vector<double>{-1, 2147483648.0}},
        {__LINE__, "[1,4294967296]", std::vector<double>{1, 4294967296.0}},
        {__LINE__, "[1,2.5]", std::vector<double>{1, 2.5}},
        {__LINE__, R"(["a",""])", std::vector<std::string>{"a", ""}},
    });
}

TEST(OptionBody, ABareValueWithoutATypeIsRefused) {
    const char* const unfit = "A number does not fit exactly into a type";
    const char* const mixed = "The elements of an array must be of one kind";
    const char* const null = "null is not a value";
    const char* const nested =
        "A value is a boolean, a number, a string or an array of one of these";
    expectRefusals({
        {__LINE__, "9007199254740993", unfit},
        {__LINE__, "-9007199254740993", unfit},
        {__LINE__, "1180591620717411303425", unfit},
        {__LINE__, std::string(1000, '9'), unfit},
        {__LINE__, "1e309", unfit},
        {__LINE__, "-1e309", unfit},
        {__LINE__, "1e-400", unfit},
        {__LINE__, "[1.5,9007199254740993]", unfit},
        {__LINE__, "[1,true]", mixed},
        {__LINE__, R"([1,"1"])", mixed},
        {__LINE__, R"(["a",true])", mixed},
        {__LINE__, "null", null},
        {__LINE__, "[null]", null},
        {__LINE__, "[1,null,[]]", null},
        {__LINE__, "[[1]]", nested},
        {__LINE__, "[1,{}]", nested},
        {__LINE__, std::string(100000, '[') + std::string(100000, ']'), nested},
    });
}

TEST(OptionBody, ATypedValueHasItsType) {
    const OptionValue values[] = {true,
                                  -2147483647 - 1,
                                  4294967295u,
                                  -0.25,
                                  std::u16string(u"\u00dc\U0001F600"),
                                  std::string("a\0b", 3),
                                  std::vector<bool>{true, false},
                                  std::vector<int>{-7, 7},
                                  std::vector<unsigned int>{80, 443},
                                  std::vector<double>{0.25, 1e300},
                                  std::vector<std::string>{"a", "b"},
                                  std::vector<std::u16string>{u"\u00c4", u""},
                                  std::vector<bool>(),
                                  std::vector<int>(),
                                  std::vector<unsigned int>(),
                                  std::vector<double>(),
                                  std::vector<std::string>(),
                                  std::vector<std::u16string>()};
    for (const OptionValue& value : values) {
        const std::string body = jsonText(fromOptionValue(value));
        SCOPED_TRACE(body);
        expectValue(value, body);
    }
    expectValue(1.0, typed("double", "1"));
    expectValue(1u, R"({ "v\u0061lue" : 1, "type" : "uint" })");
}

TEST(OptionBody, ATypedValueIsNotConverted) {
    const struct {
        int line;
        const char* type;
        const char* value;
    } rows[] = {
        {__LINE__, "bool", "1"},
        {__LINE__, "bool", R"("true")"},
        {__LINE__, "int", R"("1")"},
        {__LINE__, "int", "1.0"},
        {__LINE__, "int", "1e2"},
        {__LINE__, "int", "2147483648"},
        {__LINE__, "int", "-2147483649"},
        {__LINE__, "int", "99999999999999999999"},
        {__LINE__, "int", "true"},
        {__LINE__, "int", "[1]"},
        {__LINE__, "uint", "-1"},
        {__LINE__, "uint", "4294967296"},
        {__LINE__, "double", R"("1.5")"},
        {__LINE__, "double", "9007199254740993"},
        {__LINE__, "double", "1e309"},
        {__LINE__, "string", "1"},
        {__LINE__, "string", "true"},
        {__LINE__, "string", R"(["a"])"},
        {__LINE__, "ustring", "1"},
        {__LINE__, "boolArray", "true"},
        {__LINE__, "boolArray", "[true,1]"},
        {__LINE__, "intArray", "1"},
        {__LINE__, "intArray", "[1,2.5]"},
        {__LINE__, "intArray", R"([1,"2"])"},
        {__LINE__, "uintArray", "[1,-1]"},
        {__LINE__, "doubleArray", R"([1.5,"2"])"},
        {__LINE__, "stringArray", R"(["a",1])"},
        {__LINE__, "ustringArray", R"(["a",false])"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        test::expectThrows<UnacceptableValue>(std::string("Value is not of type ") + row.type,
                                              [&] { readOptionBody(typed(row.type, row.value)); });
    }
}

TEST(OptionBody, AnObjectNeedsExactlyTypeAndValue) {
    const char* const other = "Members other than type and value are not allowed";
    const char* const twice = "A member is given twice";
    expectRefusals({
        {__LINE__, "{}", "Member is missing: type"},
        {__LINE__, R"({"value":1})", "Member is missing: type"},
        {__LINE__, R"({"type":"int"})", "Member is missing: value"},
        {__LINE__, R"({"type":"int","value":1,"x":2})", other},
        {__LINE__, R"({"Type":"int","value":1})", other},
        {__LINE__, R"({"type":"int","value":1,"value":2})", twice},
        {__LINE__, R"({"type":"int","type":"int","value":1})", twice},
        {__LINE__, R"({"type":1,"value":1})", "Type is not a string"},
        {__LINE__, R"({"type":["int"],"value":1})", "Type is not a string"},
        {__LINE__, R"({"type":null,"value":1})", "Type is not a string"},
        {__LINE__, typed("INT", "1"), "Unknown type"},
        {__LINE__, typed("", "1"), "Unknown type"},
        {__LINE__, typed("int", "null"), "null is not a value"},
        {__LINE__, typed("intArray", "[null]"), "null is not a value"},
        {__LINE__, typed("int", R"({"type":"int","value":1})"),
         "A value is a boolean, a number, a string or an array of one of these"},
        {__LINE__, typed("intArray", "[[1]]"),
         "A value is a boolean, a number, a string or an array of one of these"},
    });
}

TEST(OptionBody, WhatIsNotJsonIsTold) {
    for (const std::string body :
         {"", " ", "x", "1 2", "[1", "[1,]", "{\"type\":\"int\",\"value\":1", "nul", "'a'", "01",
          "[null,]", "{\"x\":}", "[[[", "NaN", "\"\\ud800\"",
          "\xEF\xBB\xBF"
          "1"})
        EXPECT_THROW(readOptionBody(body), NotJson) << body;
    EXPECT_THROW(readOptionBody(std::string("1\0", 2)), NotJson);
    test::expectThrows<NotJson>("Text is not valid UTF-8", [] { readOptionBody("\"\xff\""); });
    test::expectThrows<NotJson>("Text is not valid JSON: Excess characters found after JSON end.",
                                [] { readOptionBody("1 2"); });
}

std::string arrayOf(std::size_t count, const std::string& element) {
    std::string body = "[" + element;
    for (std::size_t i = 1; i < count; ++i)
        body += "," + element;
    return body + "]";
}

TEST(OptionBody, TooManyElementsAreRefused) {
    for (const char* element : {"1", "true", "0.5", R"("")", R"("0123456789abcdef")"}) {
        SCOPED_TRACE(element);
        EXPECT_THROW(readOptionBody(arrayOf(70000, element)), TooManyElements);
        const std::string body = arrayOf(20000, element);
        test::takePeakOfAllocatedBytes();
        const std::ptrdiff_t before = test::allocatedBytes();
        EXPECT_NO_THROW(readOptionBody(body));
        EXPECT_LE(test::takePeakOfAllocatedBytes() - before,
                  static_cast<std::ptrdiff_t>(maxElementMemory));
    }
    EXPECT_THROW(readOptionBody(arrayOf(70000, "null")), UnacceptableValue);
    EXPECT_NO_THROW(readOptionBody('"' + std::string(1024 * 1024, 'x') + '"'));
}

} // namespace
