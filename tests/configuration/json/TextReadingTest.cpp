/// Reading members that hold strings.
#include "configuration/json/Converters.hpp"
#include "configuration/json/Json.hpp"
#include "support/Expect.hpp"

#include <Poco/JSON/Array.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace {

using Object = Poco::JSON::Object::Ptr;
using test::add;
using test::Converter;
using test::get;
using test::optionResponse;
using test::parse;
using test::Row;
using test::set;

/// Every member that holds a string.
const struct {
    int line;
    Converter converter;
    std::string name;
} textMembers[] = {
    {__LINE__, set, "key"},
    {__LINE__, set, "source"},
    {__LINE__, get, "key"},
    {__LINE__, optionResponse, "key"},
    {__LINE__, optionResponse, "source"},
    {__LINE__, add, "name"},
    {__LINE__, add, "group"},
    {__LINE__, add, "path"},
};

/// @return what each of these members is read as, when its JSON is `json`
std::vector<std::string> readEverywhere(const std::string& json) {
    std::vector<std::string> texts;
    for (const auto& member : textMembers) {
        const Object object = parse("{\"" + member.name + "\":" + json + ",\"value\":{}}");
        texts.push_back(member.converter.readAndWrite(object)->getValue<std::string>(member.name));
    }
    return texts;
}

std::vector<std::string> everywhere(const std::string& text) {
    return std::vector<std::string>(std::size(textMembers), text);
}

TEST(ReadingText, ReadsNumbersAndBooleansAsText) {
    const Row rows[] = {
        {__LINE__, R"("text")", "text"},
        {__LINE__, R"("")", ""},
        {__LINE__, "null", ""},
        {__LINE__, "12", "12"},
        {__LINE__, "-3", "-3"},
        {__LINE__, "1.5", "1.5"},
        {__LINE__, "18446744073709551615", "18446744073709551615"},
        {__LINE__, "true", "true"},
        {__LINE__, "false", "false"},
        {__LINE__, R"("\u00e4\u20ac\ud83d\ude00")", "\u00e4\u20ac\U0001F600"},
        {__LINE__, R"("a\nb\" \\ \/")", "a\nb\" \\ /"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(everywhere(row.expected), readEverywhere(row.input));
    }
}

/// The white space of the resulting text is unspecified.
TEST(ReadingText, ReadsArraysAndObjectsAsTheirJson) {
    for (const std::string json : {R"([1,"a"])", "[]", R"({"a":{"b":null}})", "{}"}) {
        SCOPED_TRACE(json);
        std::vector<std::string> texts = readEverywhere(json);
        for (std::string& text : texts)
            text.erase(std::remove_if(text.begin(), text.end(),
                                      [](unsigned char c) { return std::isspace(c) != 0; }),
                       text.end());
        EXPECT_EQ(everywhere(json), texts);
    }
}

TEST(ReadingText, KeepsTheBytesOf8BitStrings) {
    const std::string bytes("\xff\x00\xc3", 3);
    for (const auto& member : textMembers) {
        if (member.name == "path")
            continue; // the only member that is stored as UTF-16
        SCOPED_TRACE(member.line);
        Object object = parse(R"({"value":{}})");
        object->set(member.name, bytes);
        EXPECT_EQ(bytes, member.converter.readAndWrite(object)->getValue<std::string>(member.name));
    }
}

TEST(ReadingUtf16Text, ThrowsForInvalidUtf8) {
    const auto expectInvalid = [](const Converter& converter, const Object& object) {
        test::expectThrows<std::runtime_error>("Text is not valid UTF-8",
                                               [&] { converter.deserialize(object); });
    };
    Object path = parse("{}");
    path->set("path", std::string("/etc/\xff"));
    expectInvalid(add, path);

    Object value = parse(R"({"value":{"type":"ustring"}})");
    value->getObject("value")->set("value", std::string("\xc3"));
    expectInvalid(set, value);
    expectInvalid(optionResponse, value);

    Object values = parse(R"({"value":{"type":"ustringArray","value":["ok"]}})");
    values->getObject("value")->getArray("value")->add(std::string("\xc3"));
    expectInvalid(set, values);
    expectInvalid(optionResponse, values);
}

} // namespace
