#include "fleet/ExportDocument.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace {

using namespace connector_config;
using connector::configuration::OptionValue;

using Limits = std::numeric_limits<double>;

std::string failureOf(const std::string& text) {
    try {
        readExportDocument(text);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

TEST(ExportDocument, HasTheTypeOfEveryValue) {
    EXPECT_EQ("{\"options\":{}}\n", exportDocument({}));
    EXPECT_EQ(
        R"({"options":{"a \"b\"":{"type":"string","value":"x\n"},)"
        R"("n":{"type":"uint","value":5}}})"
        "\n",
        exportDocument({{"n", OptionValue(5u)}, {"a \"b\"", OptionValue(std::string("x\n"))}}));
}

TEST(ExportDocument, IsReadAsWhatWasWritten) {
    const OptionTable options{
        {"bool", OptionValue(true)},
        {"int", OptionValue(-2147483647 - 1)},
        {"uint", OptionValue(4294967295u)},
        {"tenth", OptionValue(0.1)},
        {"least", OptionValue(Limits::denorm_min())},
        {"greatest", OptionValue(Limits::max())},
        {"infinity", OptionValue(-Limits::infinity())},
        {"string", OptionValue(std::string("gr\u00fcn\n\x7f\0", 8))},
        {"object", OptionValue(std::string(R"({"type":"int","value":1})"))},
        {"ustring", OptionValue(std::u16string(u"\u4e2d\U0001F600"))},
        {"bools", OptionValue(std::vector<bool>{true, false})},
        {"ints", OptionValue(std::vector<int>{})},
        {"uints", OptionValue(std::vector<unsigned int>{1, 2})},
        {"doubles", OptionValue(std::vector<double>{1, 1e300, Limits::infinity()})},
        {"strings", OptionValue(std::vector<std::string>{"", "a b"})},
        {"ustrings", OptionValue(std::vector<std::u16string>{u"x"})},
    };
    const auto read = readExportDocument(exportDocument(options));
    ASSERT_TRUE(read);
    ASSERT_EQ(options.size(), read->size());
    for (const auto& [key, value] : options) {
        ASSERT_EQ(1u, read->count(key)) << key;
        EXPECT_TRUE(value == read->at(key)) << key;
    }
}

TEST(ExportDocument, MayHaveOtherSpacesAndOrders) {
    const auto read = readExportDocument(
        " { \"options\" :\n{ \"a\" : { \"value\" : [ 1 , 2 ] , \"type\":\"intArray\" } } } \n");
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->at("a") == OptionValue(std::vector<int>{1, 2}));
}

TEST(ExportDocument, IsNoOtherDocument) {
    for (const char* text :
         {"", "{}", "[]", "1", "{\"options\":{}", "{\"options\":[]}", "{\"options\":1}",
          R"({"options":{},"more":1})", R"({"other":{"a":{"type":"int","value":1}}})",
          R"({"options":{},"options":{}})", R"({"options":{"a":1}})", R"({"options":{"a":[]}})",
          R"({"options":{"a":{}}})", R"({"options":{"a":{"type":"int"}}})",
          R"({"options":{"a":{"value":1}}})", R"({"options":{"a":{"type":"int","value":1,"b":2}}})",
          R"({"options":{"a":{"type":"int","value":1,"type":"int"}}})",
          "{\"options\":{\"a\":{\"type\":\"string\",\"value\":\"\xFF\"}}}"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(readExportDocument(text));
    }
}

TEST(ExportDocument, NamesTheKeyOfAValueThatCannotBeRead) {
    for (const char* value :
         {R"({"type":"int","value":"x"})", R"({"type":"int","value":1.5})",
          R"({"type":"number","value":1})", R"({"type":"int","value":{"a":[{"b":1}]}})"})
        EXPECT_EQ("Value cannot be read: a.b",
                  failureOf(R"({"options":{"a.b":)" + std::string(value) + "}}"))
            << value;
    EXPECT_EQ("Key stands there twice: a", failureOf(R"({"options":{"a":{"type":"int","value":1},)"
                                                     R"("a":{"type":"int","value":1}}})"));
}

} // namespace
