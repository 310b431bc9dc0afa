/// Converters that call the serializer, and threads that register and convert concurrently.
#include "configuration/json/Json.hpp"
#include "configuration/service/Messages.hpp"

#include <connector/json/JsonSerializerImpl.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using connector::Message;
using connector::json::JsonSerializerImpl;
using Object = Poco::JSON::Object::Ptr;
using test::MessagePtr;
using test::parse;
using test::print;

class Letter : public Message {};
class Note : public Message {};

Object emptyObject(const MessagePtr&) {
    return new Poco::JSON::Object;
}

template <typename Msg>
MessagePtr make(const Object&) {
    return std::make_unique<Msg>();
}

const char* const letter = R"({"type":"test/Letter","message":{}})";

TEST(JsonConverter, MayConvertAnotherMessage) {
    JsonSerializerImpl serializer;
    serializer.registerConverter(
        "test/Letter", typeid(Letter),
        [&](const MessagePtr&) { return serializer.serialize(std::make_unique<Message>()); },
        [&](const Object& content) { return serializer.deserialize(content); });
    const Object object = serializer.serialize(std::make_unique<Letter>());
    EXPECT_EQ(R"({"message":{"message":{},"type":"connector/Message"},"type":"test/Letter"})",
              print(object));
    EXPECT_EQ(typeid(Message).name(), test::classOf(serializer.deserialize(object)));
}

TEST(JsonConverter, MayRegisterAnotherConverter) {
    JsonSerializerImpl serializer;
    serializer.registerConverter(
        "test/Letter", typeid(Letter), emptyObject, [&](const Object& content) {
            serializer.registerConverter("test/Note", typeid(Note), emptyObject, make<Note>);
            return make<Letter>(content);
        });
    serializer.deserialize(parse(letter));
    EXPECT_TRUE(serializer.knows("test/Note"));
}

TEST(JsonConverter, MayUnregisterItself) {
    JsonSerializerImpl serializer;
    const auto token = std::make_shared<int>(7);
    serializer.registerConverter("test/Letter", typeid(Letter), emptyObject,
                                 [&serializer, token](const Object& content) {
                                     serializer.unregisterConverter(typeid(Letter));
                                     EXPECT_EQ(7, *token);
                                     return make<Letter>(content);
                                 });
    const MessagePtr message = serializer.deserialize(parse(letter));
    EXPECT_EQ(typeid(Letter).name(), test::classOf(message));
    EXPECT_FALSE(serializer.knows("test/Letter"));
    EXPECT_EQ(1, token.use_count());
}

/// Calls the serializer when it is destroyed.
class CallingDestructor {
public:
    explicit CallingDestructor(JsonSerializerImpl& newSerializer, int& newCount)
        : serializer(newSerializer), count(newCount) {}
    ~CallingDestructor() {
        EXPECT_TRUE(serializer.knows("connector/Message"));
        ++count;
    }

private:
    JsonSerializerImpl& serializer;
    int& count;
};

TEST(JsonConverter, MayCallTheSerializerWhenItIsDestroyed) {
    JsonSerializerImpl serializer;
    int destructions = 0;
    const auto serialize = [](std::shared_ptr<CallingDestructor> held) {
        return [held](const MessagePtr&) -> Object { return new Poco::JSON::Object; };
    };
    serializer.registerConverter(
        "test/Letter", typeid(Letter),
        serialize(std::make_shared<CallingDestructor>(serializer, destructions)), make<Letter>);
    EXPECT_EQ(0, destructions);
    serializer.unregisterConverter(typeid(Letter));
    EXPECT_EQ(1, destructions);
    EXPECT_THROW(serializer.registerConverter(
                     "connector/Message", typeid(Letter),
                     serialize(std::make_shared<CallingDestructor>(serializer, destructions)),
                     make<Letter>),
                 std::invalid_argument);
    EXPECT_EQ(2, destructions);
}

TEST(JsonSerializerImpl, ReleasesItsConvertersWhenItIsDestroyed) {
    const auto token = std::make_shared<int>();
    {
        JsonSerializerImpl serializer;
        serializer.registerConverter(
            "test/Letter", typeid(Letter),
            [token](const MessagePtr&) -> Object { return new Poco::JSON::Object; }, make<Letter>);
        EXPECT_EQ(2, token.use_count());
    }
    EXPECT_EQ(1, token.use_count());
}

/// One thread registers and unregisters a class repeatedly. The others may see that class or not,
/// and always see another one.
TEST(JsonSerializerImpl, MayBeUsedBySeveralThreads) {
    JsonSerializerImpl serializer;
    serializer.registerConverter("test/Note", typeid(Note), emptyObject, make<Note>);
    std::atomic<bool> isDone{false};
    std::vector<std::thread> converters;
    for (int i = 0; i < 3; ++i)
        converters.emplace_back([&] {
            do {
                const MessagePtr note = std::make_unique<Note>();
                const MessagePtr copy = serializer.deserialize(serializer.serialize(note));
                EXPECT_EQ(typeid(Note).name(), test::classOf(copy));
                if (serializer.knows("test/Letter")) {
                    try {
                        serializer.deserialize(parse(letter));
                    } catch (const std::invalid_argument&) {
                        continue; // unregistered in the meantime
                    }
                }
            } while (!isDone);
        });
    for (int round = 0; round < 200; ++round) {
        serializer.registerConverter("test/Letter", typeid(Letter), emptyObject, make<Letter>);
        serializer.unregisterConverter(typeid(Letter));
    }
    isDone = true;
    for (std::thread& converter : converters)
        converter.join();
    EXPECT_FALSE(serializer.knows("test/Letter"));
}

} // namespace
