/// Option values as JSON, and the round trip back.
#include "configuration/json/Json.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <boost/variant/get.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

using connector::configuration::fromOptionValue;
using connector::configuration::OptionValue;
using connector::configuration::toOptionValue;
using Poco::JSON::Array;
using Poco::JSON::Object;
using test::expectThrows;
using test::parse;
using test::print;
using testing::ElementsAre;

const std::string smileUtf8 = "a\xc3\xa4\xf0\x9f\x98\x80";
const std::u16string smileUtf16 = u"a\u00e4\U0001f600";

struct Row {
    int line;
    OptionValue value;
    std::string json; // POCO prints the members in alphabetical order
};

const Row rows[] = {
    {__LINE__, false, R"({"type":"bool","value":false})"},
    {__LINE__, true, R"({"type":"bool","value":true})"},
    {__LINE__, 0, R"({"type":"int","value":0})"},
    {__LINE__, std::numeric_limits<int>::min(), R"({"type":"int","value":-2147483648})"},
    {__LINE__, std::numeric_limits<int>::max(), R"({"type":"int","value":2147483647})"},
    {__LINE__, 0u, R"({"type":"uint","value":0})"},
    {__LINE__, std::numeric_limits<unsigned int>::max(), R"({"type":"uint","value":4294967295})"},
    {__LINE__, 0.5, R"({"type":"double","value":0.5})"},
    {__LINE__, -2.25, R"({"type":"double","value":-2.25})"},
    {__LINE__, std::u16string(), R"({"type":"ustring","value":""})"},
    {__LINE__, std::u16string(u"text"), R"({"type":"ustring","value":"text"})"},
    {__LINE__, smileUtf16, R"({"type":"ustring","value":")" + smileUtf8 + R"("})"},
    {__LINE__, std::string(), R"({"type":"string","value":""})"},
    {__LINE__, std::string("a \"text\""), R"({"type":"string","value":"a \"text\""})"},
    {__LINE__, smileUtf8, R"({"type":"string","value":")" + smileUtf8 + R"("})"},
    {__LINE__, std::vector<bool>{}, R"({"type":"boolArray","value":[]})"},
    {__LINE__, std::vector<bool>{true, false}, R"({"type":"boolArray","value":[true,false]})"},
    {__LINE__, std::vector<int>{}, R"({"type":"intArray","value":[]})"},
    {__LINE__, std::vector<int>{3, -1, 3}, R"({"type":"intArray","value":[3,-1,3]})"},
    {__LINE__, std::vector<unsigned int>{}, R"({"type":"uintArray","value":[]})"},
    {__LINE__, std::vector<unsigned int>{1, 4294967295u},
     R"({"type":"uintArray","value":[1,4294967295]})"},
    {__LINE__, std::vector<double>{}, R"({"type":"doubleArray","value":[]})"},
    {__LINE__, std::vector<double>{0.5, -2.25}, R"({"type":"doubleArray","value":[0.5,-2.25]})"},
    {__LINE__, std::vector<std::string>{}, R"({"type":"stringArray","value":[]})"},
    {__LINE__, std::vector<std::string>{"b", "", smileUtf8},
     R"({"type":"stringArray","value":["b","",")" + smileUtf8 + R"("]})"},
    {__LINE__, std::vector<std::u16string>{}, R"({"type":"ustringArray","value":[]})"},
    {__LINE__, std::vector<std::u16string>{u"b", u"", smileUtf16},
     R"({"type":"ustringArray","value":["b","",")" + smileUtf8 + R"("]})"},
};

TEST(FromOptionValue, WritesTheTagAndTheValue) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.json, print(fromOptionValue(row.value)));
    }
}

TEST(FromOptionValue, WritesTwoMembersOnly) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_THAT(fromOptionValue(row.value)->getNames(), ElementsAre("type", "value"));
    }
}

TEST(FromOptionValue, CreatesANewObjectEachTime) {
    const OptionValue value = std::vector<int>{1};
    const Object::Ptr first = fromOptionValue(value);
    const Object::Ptr second = fromOptionValue(value);
    EXPECT_NE(first.get(), second.get());
    first->getArray("value")->add(2);
    EXPECT_EQ(1u, second->getArray("value")->size());
}

TEST(FromOptionValue, KeepsTheTypesOfScalars) {
    const auto typeOf = [](const OptionValue& value) -> const std::type_info& {
        const Object::Ptr object = fromOptionValue(value);
        EXPECT_EQ(typeid(std::string), object->get("type").type());
        return object->get("value").type();
    };
    EXPECT_EQ(typeid(bool), typeOf(true));
    EXPECT_EQ(typeid(int), typeOf(1));
    EXPECT_EQ(typeid(unsigned int), typeOf(1u));
    EXPECT_EQ(typeid(double), typeOf(1.0));
    EXPECT_EQ(typeid(std::string), typeOf(std::u16string(u"a")));
    EXPECT_EQ(typeid(std::string), typeOf(std::string("a")));
}

TEST(FromOptionValue, KeepsTheTypesOfElements) {
    const auto typeOf = [](const OptionValue& value) -> const std::type_info& {
        const Object::Ptr object = fromOptionValue(value);
        EXPECT_EQ(typeid(Array::Ptr), object->get("value").type());
        return object->getArray("value")->get(0).type();
    };
    EXPECT_EQ(typeid(bool), typeOf(std::vector<bool>{true}));
    EXPECT_EQ(typeid(int), typeOf(std::vector<int>{1}));
    EXPECT_EQ(typeid(unsigned int), typeOf(std::vector<unsigned int>{1}));
    EXPECT_EQ(typeid(double), typeOf(std::vector<double>{1}));
    EXPECT_EQ(typeid(std::string), typeOf(std::vector<std::string>{"a"}));
    EXPECT_EQ(typeid(std::string), typeOf(std::vector<std::u16string>{u"a"}));
}

TEST(FromOptionValue, KeepsBytesThatAreNotUtf8) {
    const std::string bytes("\0\xff\xc3", 3);
    EXPECT_EQ(bytes, fromOptionValue(bytes)->getValue<std::string>("value"));
}

TEST(FromOptionValue, RefusesInvalidUtf16) {
    const std::u16string loneSurrogate(1, char16_t(0xd800));
    expectThrows<std::runtime_error>("Text is not valid UTF-16",
                                     [&] { fromOptionValue(loneSurrogate); });
    expectThrows<std::runtime_error>("Text is not valid UTF-16", [&] {
        fromOptionValue(std::vector<std::u16string>{u"good", loneSurrogate});
    });
}

TEST(ToOptionValue, ReadsBackEveryAlternative) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        const OptionValue value = toOptionValue(fromOptionValue(row.value));
        EXPECT_EQ(row.value.which(), value.which());
        EXPECT_TRUE(row.value == value);
    }
}

TEST(ToOptionValue, ReadsBackEveryAlternativeThroughText) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_TRUE(row.value == toOptionValue(parse(row.json)));
        EXPECT_TRUE(row.value == toOptionValue(parse(print(fromOptionValue(row.value)))));
    }
}

TEST(ToOptionValue, ReadsBackValuesThatJsonTextCannotHold) {
    const std::string bytes("\0\xff\xc3", 3);
    EXPECT_TRUE(OptionValue(bytes) == toOptionValue(fromOptionValue(bytes)));
    const std::u16string withNul(u"a\0\ufeff", 3);
    EXPECT_TRUE(OptionValue(withNul) == toOptionValue(fromOptionValue(withNul)));
    for (const double value :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max(),
          std::numeric_limits<double>::denorm_min(), -0.0})
        EXPECT_TRUE(OptionValue(value) == toOptionValue(fromOptionValue(value)));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(boost::get<double>(toOptionValue(fromOptionValue(nan)))));
}

} // namespace
