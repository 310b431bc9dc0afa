#include <connector/service/text/Json.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using connector::configuration::Option;
using connector::configuration::OptionValue;
using connector::service::jsonText;
using connector::service::optionJson;
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

template <typename Element>
std::vector<Element> repeated(std::size_t count, const Element& element) {
    return std::vector<Element>(count, element);
}

TEST(OptionJson, IsTheSameTextAsThatOfTheObject) {
    for (const std::size_t count : {0u, 1u, 255u, 256u, 257u, 1000u}) {
        const OptionValue values[] = {true,
                                      -1,
                                      4294967295u,
                                      0.1,
                                      std::u16string(u"\u00dc\n"),
                                      std::string("a\"b\xff"),
                                      repeated(count, true),
                                      repeated(count, -1),
                                      repeated(count, 4294967295u),
                                      repeated(count, 0.1),
                                      repeated<std::string>(count, "a],\"[\xff"),
                                      repeated<std::u16string>(count, u"\u00dc")};
        for (const OptionValue& value : values) {
            const Option option{"k\x01", "s\xff", value};
            EXPECT_EQ(jsonText(toJson(option)), optionJson(option));
        }
    }
}

} // namespace
