#include <connector/service/text/Json.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace {

using connector::configuration::Option;
using connector::configuration::OptionValue;
using connector::service::jsonText;
using connector::service::toJson;

std::string textOf(const OptionValue& value) {
    return jsonText(toJson(Option{"k", "s", value}));
}

TEST(JsonText, KeepsTheOrderOfMembers) {
    EXPECT_EQ(R"({"key":"k","source":"s","value":{"type":"int","value":5}})", textOf(5));
}

TEST(JsonText, ReplacesBytesThatAreNotUtf8) {
    EXPECT_EQ("{\"key\":\"k\xEF\xBF\xBD\",\"source\":\"\xEF\xBF\xBD\",\"value\":"
              "{\"type\":\"stringArray\",\"value\":[\"a\xEF\xBF\xBD\"]}}",
              jsonText(toJson(Option{"k\xff", "\xc3", std::vector<std::string>{"a\xfe"}})));
}

TEST(JsonText, WritesNumbersThatJsonLacksAsStrings) {
    EXPECT_EQ(R"({"key":"k","source":"s","value":{"type":"double","value":"inf"}})",
              textOf(std::numeric_limits<double>::infinity()));
    EXPECT_EQ(R"({"key":"k","source":"s","value":{"type":"doubleArray","value":["-inf",1]}})",
              textOf(std::vector<double>{-std::numeric_limits<double>::infinity(), 1}));
}

} // namespace
