/// Writing messages as JSON objects, and the round trip back.
#include "configuration/json/Json.hpp"
#include "configuration/service/Messages.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/json/MessageJson.hpp>
#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Array.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace connector::configuration;
using Object = Poco::JSON::Object::Ptr;
using connector::Message;
using test::as;
using test::expectThrows;
using test::MessagePtr;
using test::print;
using namespace std::string_literals;

// These functions have "Request" in their names, but the type names of their messages do not. Both
// spellings are fixed. The declarations compile only if the functions have exactly these types.
Object (*const serializeKeys)(const MessagePtr&) = serializeConfigurationKeysRequest;
MessagePtr (*const deserializeKeys)(Object) = deserializeConfigurationKeysRequest;
Object (*const serializeAdd)(const MessagePtr&) = serializeAddPropertyFileSourceRequest;
MessagePtr (*const deserializeAdd)(Object) = deserializeAddPropertyFileSourceRequest;

const Option option{"net.port", "site", 80};

struct Row {
    int line;
    Object (*serialize)(const MessagePtr&);
    MessagePtr (*deserialize)(Object);
    MessagePtr message;
    std::string json;
};

/// Messages of every class, with their JSON.
std::vector<Row> rows() {
    std::vector<Row> all;
    const auto add = [&](int line, auto serialize, auto deserialize, MessagePtr message,
                         const std::string& json) {
        all.push_back({line, serialize, deserialize, std::move(message), json});
    };
    add(__LINE__, serializeConfigurationSet, deserializeConfigurationSet,
        std::make_unique<ConfigurationSet>("net.port", 80, "site"),
        R"({"key":"net.port","source":"site","value":{"type":"int","value":80}})");
    add(__LINE__, serializeConfigurationSet, deserializeConfigurationSet,
        std::make_unique<ConfigurationSet>("", std::vector<std::u16string>{u"\u00e4", u""}, ""),
        "{\"key\":\"\",\"source\":\"\",\"value\":{\"type\":\"ustringArray\",\"value\":"
        "[\"\u00e4\",\"\"]}}");
    add(__LINE__, serializeConfigurationGet, deserializeConfigurationGet,
        std::make_unique<ConfigurationGet>("net.port"), R"({"key":"net.port"})");
    add(__LINE__, serializeConfigurationGet, deserializeConfigurationGet,
        std::make_unique<ConfigurationGet>(""), R"({"key":""})");
    add(__LINE__, serializeConfigurationGet, deserializeConfigurationGet,
        std::make_unique<ConfigurationGet>("a \"b\" \\"), R"({"key":"a \"b\" \\"})");
    add(__LINE__, serializeKeys, deserializeKeys, std::make_unique<ConfigurationKeys>(), "{}");
    add(__LINE__, serializeConfigurationKeysResponse, deserializeConfigurationKeysResponse,
        std::make_unique<ConfigurationKeysResponse>(std::set<std::string>{"b", "", "a"}),
        R"({"keys":["","a","b"]})"); // in ascending order
    add(__LINE__, serializeConfigurationKeysResponse, deserializeConfigurationKeysResponse,
        std::make_unique<ConfigurationKeysResponse>(std::set<std::string>()), R"({"keys":[]})");
    add(__LINE__, serializeConfigurationOptionResponse, deserializeConfigurationOptionResponse,
        std::make_unique<ConfigurationOptionResponse>(option),
        R"({"key":"net.port","source":"site","value":{"type":"int","value":80}})");
    add(__LINE__, serializeConfigurationOptionResponse, deserializeConfigurationOptionResponse,
        std::make_unique<ConfigurationOptionResponse>(), "{}");
    add(__LINE__, serializeAdd, deserializeAdd,
        std::make_unique<AddPropertyFileSource>("site", "net", -5, true, u"/etc/\u00e4\U0001F600"),
        "{\"group\":\"net\",\"name\":\"site\",\"order\":-5,\"path\":\"/etc/\u00e4\U0001F600\","
        "\"readOnly\":true}");
    add(__LINE__, serializeAdd, deserializeAdd,
        std::make_unique<AddPropertyFileSource>("", "", 2147483647, false, u""),
        R"({"group":"","name":"","order":2147483647,"path":"","readOnly":false})");
    return all;
}

TEST(MessageJson, IsWrittenForEachMessage) {
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.json, print(row.serialize(row.message)));
    }
}

TEST(MessageJson, IsReadBackAsTheSameMessage) {
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.line);
        const MessagePtr message = row.deserialize(test::parse(row.json));
        EXPECT_EQ(test::classOf(row.message), test::classOf(message));
        EXPECT_EQ(row.json, print(row.serialize(message)));
    }
}

TEST(MessageJson, IsANewObjectEachTime) {
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.line);
        Object one = row.serialize(row.message);
        one->set("key", "changed");
        EXPECT_EQ(row.json, print(row.serialize(row.message)));
    }
}

TEST(MessageJson, IsNotChangedByReading) {
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.line);
        const Object object = test::parse(row.json);
        row.deserialize(object);
        EXPECT_EQ(row.json, print(object));
        EXPECT_EQ(1, object.referenceCount());
    }
}

TEST(ConfigurationSetJson, CarriesAValueOfAnyType) {
    const OptionValue values[] = {
        true,
        -7,
        4294967295u,
        0.1,
        std::u16string(u"\u20ac\U0001F600"),
        "text"s,
        std::vector<bool>{true, false},
        std::vector<int>{1, -1},
        std::vector<unsigned int>{4294967295u},
        std::vector<double>{0.5},
        std::vector<std::string>{"a", ""},
        std::vector<std::u16string>{u"\u00e4"},
    };
    for (const OptionValue& value : values) {
        SCOPED_TRACE(value.which());
        const MessagePtr set = std::make_unique<ConfigurationSet>("key", value, "");
        const Object object = test::parse(print(serializeConfigurationSet(set)));
        EXPECT_EQ(print(fromOptionValue(value)), print(object->getObject("value")));
        EXPECT_TRUE(value == as<ConfigurationSet>(deserializeConfigurationSet(object)).value);

        const MessagePtr reply =
            std::make_unique<ConfigurationOptionResponse>(Option{"", "", value});
        const MessagePtr copy = deserializeConfigurationOptionResponse(
            test::parse(print(serializeConfigurationOptionResponse(reply))));
        EXPECT_TRUE(value == as<ConfigurationOptionResponse>(copy).option->value);
    }
}

TEST(ConfigurationKeysJson, OmitsTheReservedString) {
    auto keys = std::make_unique<ConfigurationKeys>();
    keys->reserved = "something";
    EXPECT_EQ("{}", print(serializeKeys(std::move(keys))));
}

TEST(AddPropertyFileSourceJson, StoresEachMemberWithItsOwnType) {
    const MessagePtr add = std::make_unique<AddPropertyFileSource>("site", "net", 5, true, u"path");
    const Object object = serializeAdd(add);
    EXPECT_TRUE(typeid(std::string) == object->get("name").type());
    EXPECT_TRUE(typeid(std::string) == object->get("group").type());
    EXPECT_TRUE(typeid(Poco::Int32) == object->get("order").type());
    EXPECT_TRUE(typeid(bool) == object->get("readOnly").type());
    EXPECT_TRUE(typeid(std::string) == object->get("path").type());
}

TEST(ConfigurationKeysResponseJson, StoresAnArrayOfStrings) {
    const MessagePtr response =
        std::make_unique<ConfigurationKeysResponse>(std::set<std::string>{"1"});
    const Poco::JSON::Array::Ptr keys =
        serializeConfigurationKeysResponse(response)->getArray("keys");
    ASSERT_FALSE(keys.isNull());
    ASSERT_EQ(1u, keys->size());
    EXPECT_TRUE(typeid(std::string) == keys->get(0).type());
}

/// The smallest and the largest order.
TEST(AddPropertyFileSourceJson, CarriesTheExtremeOrders) {
    for (const int order : {std::numeric_limits<int>::min(), 0, std::numeric_limits<int>::max()}) {
        const MessagePtr add = std::make_unique<AddPropertyFileSource>("", "", order, true, u"");
        const MessagePtr copy = deserializeAdd(test::parse(print(serializeAdd(add))));
        EXPECT_EQ(order, as<AddPropertyFileSource>(copy).order);
    }
}

/// 8-bit strings are bytes; they need not be UTF-8.
TEST(MessageJson, KeepsTheBytesOf8BitStrings) {
    const std::string bytes("\xff\x00\xc3", 3);
    const MessagePtr get = std::make_unique<ConfigurationGet>(bytes);
    EXPECT_EQ(bytes, serializeConfigurationGet(get)->getValue<std::string>("key"));
    EXPECT_EQ(
        bytes,
        as<ConfigurationGet>(deserializeConfigurationGet(serializeConfigurationGet(get))).key);
}

const std::u16string loneSurrogate(1, char16_t(0xd800));

TEST(AddPropertyFileSourceJson, ThrowsForAPathThatIsNotUtf16) {
    const MessagePtr add = std::make_unique<AddPropertyFileSource>("", "", 0, true, loneSurrogate);
    expectThrows<std::runtime_error>("Text is not valid UTF-16", [&] { serializeAdd(add); });
}

TEST(ConfigurationSetJson, ThrowsForAValueThatIsNotUtf16) {
    const MessagePtr set = std::make_unique<ConfigurationSet>("key", loneSurrogate, "");
    expectThrows<std::runtime_error>("Text is not valid UTF-16",
                                     [&] { serializeConfigurationSet(set); });
}

TEST(ConfigurationOptionResponseJson, ThrowsForAValueThatIsNotUtf16) {
    const MessagePtr response = std::make_unique<ConfigurationOptionResponse>(
        Option{"key", "site", std::vector<std::u16string>{loneSurrogate}});
    expectThrows<std::runtime_error>("Text is not valid UTF-16",
                                     [&] { serializeConfigurationOptionResponse(response); });
}

} // namespace
