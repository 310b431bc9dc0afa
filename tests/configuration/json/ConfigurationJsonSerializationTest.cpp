/// Registering the messages with a serializer, and unregistering them.
#include "configuration/json/Json.hpp"
#include "configuration/service/Messages.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/json/ConfigurationJsonSerialization.hpp>
#include <connector/configuration/json/MessageJson.hpp>
#include <connector/json/JsonSerializerImpl.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace {

using namespace connector::configuration;
using connector::common::DeferredService;
using connector::json::JsonSerializer;
using connector::json::JsonSerializerImpl;
using Object = Poco::JSON::Object::Ptr;
using test::expectThrows;
using test::MessagePtr;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<DeferredService>);
static_assert(std::is_convertible_v<ConfigurationJsonSerialization*, DeferredService*>);
static_assert(!std::is_copy_constructible_v<ConfigurationJsonSerialization>);
static_assert(sizeof(ConfigurationJsonSerialization) ==
                  sizeof(DeferredService) + sizeof(std::shared_ptr<JsonSerializer>),
              "the serializer is its only field");

/// Records which classes are registered and unregistered.
class RecordingSerializer : public JsonSerializer {
public:
    struct Registration {
        std::string typeName;
        std::string messageClass;
        Serialize serialize;
        Deserialize deserialize;
    };

    void registerConverter(const std::string& typeName, const std::type_info& messageClass,
                           Serialize serialize, Deserialize deserialize) override {
        if (registrations.size() == limit)
            throw std::length_error("no room for " + typeName);
        registrations.push_back({typeName, messageClass.name(), serialize, deserialize});
    }

    void unregisterConverter(const std::type_info& messageClass) override {
        if (failsToUnregister)
            throw std::runtime_error("cannot unregister");
        unregistered.emplace_back(messageClass.name());
    }

    std::vector<std::string> typeNames() const { return list(&Registration::typeName); }
    std::vector<std::string> classes() const { return list(&Registration::messageClass); }

    std::vector<Registration> registrations; ///< in order
    std::vector<std::string> unregistered;   ///< the classes, in order
    std::size_t limit = std::numeric_limits<std::size_t>::max();
    bool failsToUnregister = false;

private:
    std::vector<std::string> list(std::string Registration::*field) const {
        std::vector<std::string> entries;
        for (const Registration& registration : registrations)
            entries.push_back(registration.*field);
        return entries;
    }
};

const std::vector<std::string> typeNames{
    "connector/configuration/ConfigurationSet",
    "connector/configuration/ConfigurationGet",
    "connector/configuration/ConfigurationKeys",
    "connector/configuration/ConfigurationKeysResponse",
    "connector/configuration/ConfigurationOptionResponse",
    "connector/configuration/AddPropertyFileSource",
};

const std::vector<std::string> classes{
    typeid(ConfigurationSet).name(),
    typeid(ConfigurationGet).name(),
    typeid(ConfigurationKeys).name(),
    typeid(ConfigurationKeysResponse).name(),
    typeid(ConfigurationOptionResponse).name(),
    typeid(AddPropertyFileSource).name(),
};

TEST(ConfigurationJsonSerialization, RegistersTheMessagesInOrder) {
    const auto serializer = std::make_shared<RecordingSerializer>();
    const ConfigurationJsonSerialization serialization(serializer);
    EXPECT_EQ(typeNames, serializer->typeNames());
    EXPECT_EQ(classes, serializer->classes());
    EXPECT_THAT(serializer->unregistered, IsEmpty());
}

TEST(ConfigurationJsonSerialization, UnregistersExactlyTheMessagesInTheSameOrder) {
    const auto serializer = std::make_shared<RecordingSerializer>();
    { const ConfigurationJsonSerialization serialization(serializer); }
    EXPECT_EQ(classes, serializer->unregistered);
    EXPECT_EQ(6u, serializer->registrations.size());
}

TEST(ConfigurationJsonSerialization, UnregistersWhenItIsDestroyedThroughItsBase) {
    const auto serializer = std::make_shared<RecordingSerializer>();
    std::unique_ptr<DeferredService> service =
        std::make_unique<ConfigurationJsonSerialization>(serializer);
    service.reset();
    EXPECT_EQ(classes, serializer->unregistered);
}

TEST(ConfigurationJsonSerialization, KeepsTheSerializerAlive) {
    auto serializer = std::make_shared<RecordingSerializer>();
    const std::weak_ptr<RecordingSerializer> observer = serializer;
    auto serialization = std::make_unique<ConfigurationJsonSerialization>(std::move(serializer));
    EXPECT_EQ(1, observer.use_count());
    serialization.reset();
    EXPECT_TRUE(observer.expired());
}

/// The registered functions stay usable after the serialization is destroyed.
TEST(ConfigurationJsonSerialization, RegistersTheFunctionsOfEachMessage) {
    const auto serializer = std::make_shared<RecordingSerializer>();
    { const ConfigurationJsonSerialization serialization(serializer); }
    const std::string texts[] = {
        R"({"key":"a","source":"s","value":{"type":"int","value":3}})",
        R"({"key":"a"})",
        "{}",
        R"({"keys":["a","b"]})",
        R"({"key":"a","source":"s","value":{"type":"int","value":3}})",
        R"({"group":"g","name":"n","order":5,"path":"p","readOnly":false})",
    };
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        const auto& registration = serializer->registrations.at(i);
        SCOPED_TRACE(registration.typeName);
        const MessagePtr message = registration.deserialize(test::parse(texts[i]));
        EXPECT_EQ(registration.messageClass, test::classOf(message));
        EXPECT_EQ(texts[i], test::print(registration.serialize(message)));
    }
}

TEST(ConfigurationJsonSerialization, ThrowsAndUnregistersNothingWhenARegistrationFails) {
    const auto serializer = std::make_shared<RecordingSerializer>();
    serializer->limit = 2;
    expectThrows<std::length_error>("no room for connector/configuration/ConfigurationKeys",
                                    [&] { ConfigurationJsonSerialization{serializer}; });
    EXPECT_THAT(serializer->typeNames(), ElementsAre("connector/configuration/ConfigurationSet",
                                                     "connector/configuration/ConfigurationGet"));
    EXPECT_THAT(serializer->unregistered, IsEmpty());
    EXPECT_EQ(1, serializer.use_count());
}

TEST(ConfigurationJsonSerialization, RequiresASerializer) {
    expectThrows<std::invalid_argument>("A JSON serialization needs a serializer.",
                                        [] { ConfigurationJsonSerialization{nullptr}; });
}

TEST(ConfigurationJsonSerializationDeathTest, TerminatesTheProgramWhenItCannotUnregister) {
    const auto serializer = std::make_shared<RecordingSerializer>();
    serializer->failsToUnregister = true;
    EXPECT_DEATH({ ConfigurationJsonSerialization{serializer}; }, "cannot unregister");
}

TEST(ConfigurationJsonSerialization, RegistersTheMessagesWithTheBundledSerializer) {
    const auto serializer = std::make_shared<JsonSerializerImpl>();
    const auto serialization = std::make_unique<ConfigurationJsonSerialization>(serializer);
    for (const std::string& typeName : typeNames) {
        SCOPED_TRACE(typeName);
        EXPECT_TRUE(serializer->knows(typeName));
        const MessagePtr message =
            serializer->deserialize(test::parse("{\"type\":\"" + typeName + "\",\"message\":{}}"));
        EXPECT_EQ(typeName, serializer->serialize(message)->getValue<std::string>("type"));
    }
}

TEST(ConfigurationJsonSerialization, UnregistersTheMessagesFromTheBundledSerializer) {
    const auto serializer = std::make_shared<JsonSerializerImpl>();
    { const ConfigurationJsonSerialization serialization(serializer); }
    for (const std::string& typeName : typeNames)
        EXPECT_FALSE(serializer->knows(typeName)) << typeName;
    EXPECT_TRUE(serializer->knows("connector/Message"));
}

TEST(ConfigurationJsonSerialization, ThrowsWhenTheMessagesAreRegisteredAlready) {
    const auto serializer = std::make_shared<JsonSerializerImpl>();
    const ConfigurationJsonSerialization serialization(serializer);
    expectThrows<std::invalid_argument>(
        "Message type name already registered: connector/configuration/ConfigurationSet",
        [&] { ConfigurationJsonSerialization{serializer}; });
    EXPECT_TRUE(serializer->knows("connector/configuration/ConfigurationSet"));
}

} // namespace
