/// Reading option values from arbitrary JSON.
#include "configuration/json/Json.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using connector::configuration::OptionValue;
using connector::configuration::toOptionValue;
using Poco::JSON::Array;
using Poco::JSON::Object;
using test::expectThrows;
using test::parse;
using test::print;

Object::Ptr make(const std::string& tag, const Poco::Dynamic::Var& value) {
    Object::Ptr object = new Object;
    object->set("type", tag);
    object->set("value", value);
    return object;
}

TEST(ToOptionValue, ReadsANullPointerAsAnEmptyString) {
    EXPECT_TRUE(OptionValue(std::string()) == toOptionValue(Object::Ptr()));
}

TEST(ToOptionValue, LeavesTheObjectUnchanged) {
    const Object::Ptr object = parse(R"({"type":"intArray","value":[1,"x",3]})");
    toOptionValue(object);
    EXPECT_EQ(R"({"type":"intArray","value":[1,"x",3]})", print(object));
}

struct ReadRow {
    int line;
    std::string json;
    OptionValue value;
};

void expectRead(const std::vector<ReadRow>& readRows) {
    for (const ReadRow& row : readRows) {
        SCOPED_TRACE(row.line);
        const OptionValue value = toOptionValue(parse(row.json));
        EXPECT_EQ(row.value.which(), value.which());
        EXPECT_TRUE(row.value == value);
    }
}

const OptionValue emptyText = std::string();

TEST(ToOptionValue, ReadsAnUnknownTagAsAnEmptyString) {
    expectRead({
        {__LINE__, R"({"type":"INT","value":1})", emptyText},
        {__LINE__, R"({"type":"Bool","value":true})", emptyText},
        {__LINE__, R"({"type":"int ","value":1})", emptyText},
        {__LINE__, R"({"type":" int","value":1})", emptyText},
        {__LINE__, R"({"type":"in","value":1})", emptyText},
        {__LINE__, R"({"type":"intarray","value":[1]})", emptyText},
        {__LINE__, R"({"type":"strings","value":"text"})", emptyText},
        {__LINE__, R"({"type":"","value":"text"})", emptyText},
        {__LINE__, R"({"value":1})", emptyText},
        {__LINE__, R"({"Type":"int","value":1})", emptyText},
        {__LINE__, R"({"type":null,"value":"text"})", emptyText},
        {__LINE__, R"({"type":5,"value":"text"})", emptyText},
        {__LINE__, R"({"type":true,"value":"text"})", emptyText},
        {__LINE__, R"({"type":["int"],"value":1})", emptyText},
        {__LINE__, R"({"type":{"int":1},"value":1})", emptyText},
        {__LINE__, R"({})", emptyText},
    });
}

TEST(ToOptionValue, ReadsAMissingValueAsTheZeroOfTheTag) {
    for (const std::string members : {R"(})", R"(,"Value":1})", R"(,"value":null})"}) {
        SCOPED_TRACE(members);
        expectRead({
            {__LINE__, R"({"type":"bool")" + members, false},
            {__LINE__, R"({"type":"int")" + members, 0},
            {__LINE__, R"({"type":"uint")" + members, 0u},
            {__LINE__, R"({"type":"double")" + members, 0.0},
            {__LINE__, R"({"type":"ustring")" + members, std::u16string()},
            {__LINE__, R"({"type":"string")" + members, std::string()},
            {__LINE__, R"({"type":"boolArray")" + members, std::vector<bool>()},
            {__LINE__, R"({"type":"intArray")" + members, std::vector<int>()},
            {__LINE__, R"({"type":"uintArray")" + members, std::vector<unsigned int>()},
            {__LINE__, R"({"type":"doubleArray")" + members, std::vector<double>()},
            {__LINE__, R"({"type":"stringArray")" + members, std::vector<std::string>()},
            {__LINE__, R"({"type":"ustringArray")" + members, std::vector<std::u16string>()},
        });
    }
}

TEST(ToOptionValue, ReadsANumberOutOfRangeAsZero) {
    expectRead({
        {__LINE__, R"({"type":"uint","value":-1})", 0u},
        {__LINE__, R"({"type":"uint","value":4294967296})", 0u},
        {__LINE__, R"({"type":"int","value":4294967295})", 0},
        {__LINE__, R"({"type":"int","value":2147483648})", 0},
        {__LINE__, R"({"type":"int","value":-2147483649})", 0},
        {__LINE__, R"({"type":"int","value":1e300})", 0},
        {__LINE__, R"({"type":"uint","value":-0.5e10})", 0u},
    });
}

TEST(ToOptionValue, ReadsAValueThatDoesNotConvertAsZero) {
    expectRead({
        {__LINE__, R"({"type":"double","value":"abc"})", 0.0},
        {__LINE__, R"({"type":"double","value":[1]})", 0.0},
        {__LINE__, R"({"type":"int","value":"abc"})", 0},
        {__LINE__, R"({"type":"int","value":""})", 0},
        {__LINE__, R"({"type":"int","value":"12x"})", 0},
        {__LINE__, R"({"type":"int","value":{"a":1}})", 0},
        {__LINE__, R"({"type":"int","value":[1]})", 0},
        {__LINE__, R"({"type":"uint","value":"-1"})", 0u},
        {__LINE__, R"({"type":"uint","value":"abc"})", 0u},
    });
}

TEST(ToOptionValue, ConvertsOtherJsonTypes) {
    expectRead({
        {__LINE__, R"({"type":"string","value":12})", std::string("12")},
        {__LINE__, R"({"type":"string","value":-12})", std::string("-12")},
        {__LINE__, R"({"type":"string","value":true})", std::string("true")},
        {__LINE__, R"({"type":"string","value":false})", std::string("false")},
        {__LINE__, R"({"type":"string","value":0.5})", std::string("0.5")},
        {__LINE__, R"({"type":"ustring","value":12})", std::u16string(u"12")},
        {__LINE__, R"({"type":"ustring","value":true})", std::u16string(u"true")},
        {__LINE__, R"({"type":"int","value":"12"})", 12},
        {__LINE__, R"({"type":"int","value":true})", 1},
        {__LINE__, R"({"type":"uint","value":"4294967295"})", 4294967295u},
        {__LINE__, R"({"type":"double","value":1})", 1.0},
        {__LINE__, R"({"type":"double","value":"0.5"})", 0.5},
        {__LINE__, R"({"type":"bool","value":1})", true},
        {__LINE__, R"({"type":"bool","value":0})", false},
        {__LINE__, R"({"type":"bool","value":"true"})", true},
        {__LINE__, R"({"type":"bool","value":"false"})", false},
    });
}

TEST(ToOptionValue, ReadsAnArrayTagWithoutAnArrayAsEmpty) {
    for (const std::string payload : {"5", "true", R"("[1]")", R"({"0":1})", "0.5"}) {
        SCOPED_TRACE(payload);
        const std::string value = R"(","value":)" + payload + "}";
        expectRead({
            {__LINE__, R"({"type":"boolArray)" + value, std::vector<bool>()},
            {__LINE__, R"({"type":"intArray)" + value, std::vector<int>()},
            {__LINE__, R"({"type":"uintArray)" + value, std::vector<unsigned int>()},
            {__LINE__, R"({"type":"doubleArray)" + value, std::vector<double>()},
            {__LINE__, R"({"type":"stringArray)" + value, std::vector<std::string>()},
            {__LINE__, R"({"type":"ustringArray)" + value, std::vector<std::u16string>()},
        });
    }
}

TEST(ToOptionValue, KeepsTheLengthOfAMixedArray) {
    expectRead({
        {__LINE__, R"({"type":"intArray","value":[1,"x",3]})", std::vector<int>{1, 0, 3}},
        {__LINE__, R"({"type":"intArray","value":[null,"7",4294967295,[2],{},true]})",
         std::vector<int>{0, 7, 0, 0, 0, 1}},
        {__LINE__, R"({"type":"uintArray","value":[-1,1,null,4294967295,"x"]})",
         std::vector<unsigned int>{0, 1, 0, 4294967295u, 0}},
        {__LINE__, R"({"type":"boolArray","value":[true,null,0,1]})",
         std::vector<bool>{true, false, false, true}},
        {__LINE__, R"({"type":"doubleArray","value":[0.5,"x",null,2]})",
         std::vector<double>{0.5, 0.0, 0.0, 2.0}},
        {__LINE__, R"({"type":"stringArray","value":["a",null,5,true]})",
         (std::vector<std::string>{"a", "", "5", "true"})},
        {__LINE__, R"({"type":"ustringArray","value":["a",null,5,true]})",
         (std::vector<std::u16string>{u"a", u"", u"5", u"true"})},
    });
}

TEST(ToOptionValue, IgnoresFurtherMembers) {
    expectRead({{__LINE__, R"({"type":"int","value":1,"unit":"ms"})", 1}});
}

TEST(ToOptionValue, AcceptsItsMembersInAnyOrder) {
    expectRead({{__LINE__, R"({"value":1,"type":"int"})", 1}});
}

TEST(ToOptionValue, KeepsBytesThatAreNotUtf8) {
    const std::string bytes("\0\xff\xc3", 3);
    EXPECT_TRUE(OptionValue(bytes) == toOptionValue(make("string", bytes)));
    Array::Ptr array = new Array;
    array->add(bytes);
    EXPECT_TRUE(OptionValue(std::vector<std::string>{bytes}) ==
                toOptionValue(make("stringArray", array)));
}

TEST(ToOptionValue, RefusesInvalidUtf8ForUtf16Strings) {
    for (const std::string text : {"\xff", "a\xc3", "\xc0\x80", "\xed\xa0\x80"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        expectThrows<std::runtime_error>("Text is not valid UTF-8",
                                         [&] { toOptionValue(make("ustring", text)); });
        Array::Ptr array = new Array;
        array->add(std::string("good"));
        array->add(text);
        expectThrows<std::runtime_error>("Text is not valid UTF-8",
                                         [&] { toOptionValue(make("ustringArray", array)); });
    }
}

TEST(ToOptionValue, NeverThrowsForOtherContent) {
    const std::string payloads[] = {"1",     "-1",          "\"\"",
                                    "\"x\"", "null",        "[]",
                                    "{}",    "[[1]]",       "[{}]",
                                    "true",

                                    "0.1",   "[1,[2,[3]]]", R"({"a":{"b":[1]}})"};
    const char* const tags[] = {"bool",      "int",         "uint",        "double",
                                "ustring",   "string",      "boolArray",   "intArray",
                                "uintArray", "doubleArray", "stringArray", "ustringArray"};
    for (int index = 0; index < 12; ++index) {
        for (const std::string& payload : payloads) {
            const std::string json =
                std::string(R"({"type":")") + tags[index] + R"(","value":)" + payload + "}";
            SCOPED_TRACE(json);
            EXPECT_NO_THROW(EXPECT_EQ(index, toOptionValue(parse(json)).which()));
        }
    }
}

} // namespace
