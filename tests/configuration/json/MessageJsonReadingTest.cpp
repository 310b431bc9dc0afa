/// Reading messages from objects with missing or unexpected members, which is never an error. A row
/// holds the input, and the JSON of the message that was read.
#include "configuration/json/Converters.hpp"
#include "configuration/json/Json.hpp"
#include "support/Expect.hpp"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace connector::configuration;
using Object = Poco::JSON::Object::Ptr;
using test::add;
using test::Converter;
using test::expectThrows;
using test::get;
using test::keys;
using test::keysResponse;
using test::MessagePtr;
using test::optionResponse;
using test::parse;
using test::print;
using test::Row;
using test::set;

template <typename Rows>
void expectRead(const Converter& converter, const Rows& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.expected, print(converter.readAndWrite(parse(row.input))));
    }
}

const std::string emptyText = R"("value":{"type":"string","value":""}})";
const std::string emptySet = R"({"key":"","source":"",)" + emptyText;

TEST(ReadingAConfigurationSet, ToleratesMissingAndUnexpectedMembers) {
    expectRead(set, std::vector<Row>{
                        {__LINE__, "{}", emptySet},
                        {__LINE__, R"({"key":"a"})", R"({"key":"a","source":"",)" + emptyText},
                        {__LINE__, R"({"source":"s"})", R"({"key":"","source":"s",)" + emptyText},
                        {__LINE__, R"({"KEY":"a","Source":"s","other":1})", emptySet},
                        {__LINE__, R"({"value":null})", emptySet},
                        {__LINE__, R"({"value":5})", emptySet},
                        {__LINE__, R"({"value":1.5})", emptySet},
                        {__LINE__, R"({"value":true})", emptySet},
                        {__LINE__, R"({"value":"text"})", emptySet},
                        {__LINE__, R"({"value":[]})", emptySet},
                        {__LINE__, R"({"value":[{"type":"int","value":3}]})", emptySet},
                        {__LINE__, R"({"value":{}})", emptySet},
                        {__LINE__, R"({"value":{"type":"INT","value":3}})", emptySet},
                        {__LINE__, R"({"value":{"type":"int"}})",
                         R"({"key":"","source":"","value":{"type":"int","value":0}})"},
                        {__LINE__, R"({"value":{"type":"int","value":3},"source":"s","key":"a"})",
                         R"({"key":"a","source":"s","value":{"type":"int","value":3}})"},
                    });
}

TEST(ReadingAConfigurationGet, ToleratesMissingAndUnexpectedMembers) {
    expectRead(get, std::vector<Row>{
                        {__LINE__, "{}", R"({"key":""})"},
                        {__LINE__, R"({"Key":"a"})", R"({"key":""})"},
                        {__LINE__, R"({"key":"a","source":"s","value":{}})", R"({"key":"a"})"},
                    });
}

TEST(ReadingConfigurationKeys, IgnoresTheObject) {
    expectRead(keys, std::vector<Row>{
                         {__LINE__, "{}", "{}"},
                         {__LINE__, R"({"key":"a","reserved":"b","keys":["c"]})", "{}"},
                     });
    const MessagePtr message = keys.deserialize(parse(R"({"reserved":"b"})"));
    EXPECT_EQ("", test::as<ConfigurationKeys>(message).reserved);
}

TEST(ReadingAConfigurationKeysResponse, ToleratesMissingAndUnexpectedMembers) {
    const std::string none = R"({"keys":[]})";
    expectRead(keysResponse,
               std::vector<Row>{
                   {__LINE__, "{}", none},
                   {__LINE__, R"({"keys":null})", none},
                   {__LINE__, R"({"keys":"a"})", none},
                   {__LINE__, R"({"keys":5})", none},
                   {__LINE__, R"({"keys":true})", none},
                   {__LINE__, R"({"keys":{"0":"a"}})", none},
                   {__LINE__, R"({"keys":[]})", none},
                   {__LINE__, R"({"Keys":["a"]})", none},
                   {__LINE__, R"({"keys":["b","a","b"]})", R"({"keys":["a","b"]})"},
                   {__LINE__, R"({"keys":[2,true,1.5,"a"]})", R"({"keys":["1.5","2","a","true"]})"},
                   {__LINE__, R"({"keys":["a",null,"b"]})", R"({"keys":["","a","b"]})"},
                   {__LINE__, R"({"keys":[null,"",null]})", R"({"keys":[""]})"},
               });
}

TEST(ReadingAConfigurationOptionResponse, WithoutAValueObjectHoldsNoOption) {
    expectRead(
        optionResponse,
        std::vector<Row>{
            {__LINE__, "{}", "{}"},
            {__LINE__, R"({"key":"a","source":"s"})", "{}"},
            {__LINE__, R"({"key":"a","source":"s","value":null})", "{}"},
            {__LINE__, R"({"key":"a","source":"s","value":5})", "{}"},
            {__LINE__, R"({"key":"a","source":"s","value":"text"})", "{}"},
            {__LINE__, R"({"key":"a","source":"s","value":false})", "{}"},
            {__LINE__, R"({"key":"a","source":"s","value":[]})", "{}"},
            {__LINE__, R"({"key":"a","source":"s","value":[{"type":"int","value":3}]})", "{}"},
            {__LINE__, R"({"key":"a","source":"s","Value":{"type":"int","value":3}})", "{}"},
        });
}

TEST(ReadingAConfigurationOptionResponse, WithAValueObjectHoldsAnOption) {
    expectRead(optionResponse,
               std::vector<Row>{
                   {__LINE__, R"({"value":{"type":"int","value":3}})",
                    R"({"key":"","source":"","value":{"type":"int","value":3}})"},
                   {__LINE__, R"({"value":{}})", emptySet},
                   {__LINE__, R"({"value":{"type":"unknown","value":3}})", emptySet},
                   {__LINE__, R"({"value":{"type":"intArray","value":[1,"x",3]},"key":"a"})",
                    R"({"key":"a","source":"","value":{"type":"intArray","value":[1,0,3]}})"},
               });
}

TEST(ReadingAnAddPropertyFileSource, FromAnEmptyObjectUsesTheDefaults) {
    expectRead(
        add, std::vector<Row>{
                 {__LINE__, "{}", R"({"group":"","name":"","order":0,"path":"","readOnly":true})"},
                 {__LINE__, R"({"Name":"a","readonly":false})",
                  R"({"group":"","name":"","order":0,"path":"","readOnly":true})"},
             });
}

TEST(ReadingAnAddPropertyFileSource, ToleratesEveryOrder) {
    const Row rows[] = {
        {__LINE__, "7", "7"},
        {__LINE__, "-7", "-7"},
        {__LINE__, R"("7")", "7"},
        {__LINE__, R"("-7")", "-7"},
        {__LINE__, R"("x")", "0"},
        {__LINE__, R"("7x")", "0"},
        {__LINE__, R"("7.5")", "0"},
        {__LINE__, R"("")", "0"},
        {__LINE__, "null", "0"},
        {__LINE__, "true", "1"},
        {__LINE__, "false", "0"},
        {__LINE__, "2.9", "2"},
        {__LINE__, "2147483647", "2147483647"},
        {__LINE__, "2147483648", "0"},
        {__LINE__, R"("2147483648")", "0"},
        {__LINE__, "-2147483648", "-2147483648"},
        {__LINE__, "-2147483649", "0"},
        {__LINE__, "1e300", "0"},
        {__LINE__, "18446744073709551615", "0"},
        {__LINE__, "[7]", "0"},
        {__LINE__, R"({"order":7})", "0"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        const Object written = add.readAndWrite(parse("{\"order\":" + row.input + "}"));
        EXPECT_EQ(row.expected, written->getValue<std::string>("order"));
    }
}

/// An empty string, array or object counts as false; only a missing member or null takes the
/// default. This is deliberate.
TEST(ReadingAnAddPropertyFileSource, ToleratesEveryReadOnlyFlag) {
    const Row rows[] = {
        {__LINE__, "true", "true"},
        {__LINE__, "false", "false"},
        {__LINE__, "null", "true"},
        {__LINE__, "1", "true"},
        {__LINE__, "-1", "true"},
        {__LINE__, "0", "false"},
        {__LINE__, "0.0", "false"},
        {__LINE__, R"("true")", "true"},
        {__LINE__, R"("false")", "false"},
        {__LINE__, R"("FALSE")", "false"},
        {__LINE__, R"("0")", "false"},
        {__LINE__, R"("no")", "true"},
        {__LINE__, R"("")", "false"},
        {__LINE__, "[]", "false"},
        {__LINE__, "[false]", "true"},
        {__LINE__, "{}", "false"},
        {__LINE__, R"({"readOnly":false})", "true"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        const Object written = add.readAndWrite(parse("{\"readOnly\":" + row.input + "}"));
        EXPECT_EQ(row.expected, written->getValue<std::string>("readOnly"));
    }
}

TEST(ReadingANullObject, ThrowsWhenAMemberIsRead) {
    for (const Converter& converter : {set, get, keysResponse, optionResponse, add})
        expectThrows<Poco::NullPointerException>("Null pointer",
                                                 [&] { converter.deserialize(nullptr); });
}

TEST(ReadingANullObject, SucceedsForConfigurationKeys) {
    EXPECT_EQ("", test::as<ConfigurationKeys>(keys.deserialize(nullptr)).reserved);
}

} // namespace
