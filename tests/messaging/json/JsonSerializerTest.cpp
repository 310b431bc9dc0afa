/// The bundled serializer: the envelope, and what is refused.
#include "configuration/json/Json.hpp"
#include "configuration/service/Messages.hpp"
#include "support/Expect.hpp"
#include "support/Slots.hpp"

#include <connector/json/JsonSerializerImpl.hpp>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using connector::Message;
using connector::json::JsonSerializer;
using connector::json::JsonSerializerImpl;
using Object = Poco::JSON::Object::Ptr;
using test::expectThrows;
using test::MessagePtr;
using test::parse;
using test::print;

static_assert(std::is_abstract_v<JsonSerializer>);
static_assert(std::has_virtual_destructor_v<JsonSerializer>);
static_assert(std::is_base_of_v<JsonSerializer, JsonSerializerImpl>);

// Each of these compiles only if the operation has exactly this type.
void (JsonSerializer::*const registerConverter)(
    const std::string&, const std::type_info&, std::function<Object(const MessagePtr&)>,
    std::function<MessagePtr(Object)>) = &JsonSerializer::registerConverter;
void (JsonSerializer::*const unregisterConverter)(const std::type_info&) =
    &JsonSerializer::unregisterConverter;

#ifdef TEST_SLOTS_ARE_KNOWN
TEST(JsonSerializer, KeepsItsOperationsInTheirSlots) {
    EXPECT_EQ(2u, test::slotOf(registerConverter)); // after the two destructors
    EXPECT_EQ(3u, test::slotOf(unregisterConverter));
}
#endif

class Note : public Message {
public:
    explicit Note(const std::string& newText) : text(newText) {}
    std::string text;
};

class UrgentNote : public Note {
public:
    using Note::Note;
};

Object serializeNote(const MessagePtr& message) {
    Object object = new Poco::JSON::Object;
    object->set("text", test::as<Note>(message).text);
    return object;
}

MessagePtr deserializeNote(Object object) {
    return std::make_unique<Note>(object->getValue<std::string>("text"));
}

class JsonSerializerImplTest : public testing::Test {
protected:
    void registerNote() {
        (serializer.*registerConverter)("test/Note", typeid(Note), serializeNote, deserializeNote);
    }

    void expectDeserializationFails(const std::string& text, const Object& object) {
        expectThrows<std::invalid_argument>(text, [&] { serializer.deserialize(object); });
    }

    JsonSerializerImpl serializer;
};

TEST_F(JsonSerializerImplTest, WrapsAMessageInAnEnvelope) {
    registerNote();
    EXPECT_EQ(R"({"message":{"text":"hello"},"type":"test/Note"})",
              print(serializer.serialize(std::make_unique<Note>("hello"))));
}

TEST_F(JsonSerializerImplTest, ReadsAMessageFromAnEnvelope) {
    registerNote();
    const MessagePtr note =
        serializer.deserialize(parse(R"({"type":"test/Note","message":{"text":"hello"}})"));
    EXPECT_EQ("hello", test::as<Note>(note).text);
}

TEST_F(JsonSerializerImplTest, IgnoresOtherMembersOfTheEnvelope) {
    const MessagePtr message =
        serializer.deserialize(parse(R"({"id":7,"type":"connector/Message","message":{"a":1}})"));
    EXPECT_EQ(typeid(Message).name(), test::classOf(message));
}

TEST_F(JsonSerializerImplTest, WritesABareMessageWithoutARegistration) {
    EXPECT_EQ(R"({"message":{},"type":"connector/Message"})",
              print(serializer.serialize(std::make_unique<Message>())));
}

TEST_F(JsonSerializerImplTest, ReadsABareMessageWithoutARegistration) {
    const MessagePtr message =
        serializer.deserialize(parse(R"({"type":"connector/Message","message":{}})"));
    EXPECT_EQ(typeid(Message).name(), test::classOf(message));
}

TEST_F(JsonSerializerImplTest, KnowsTheRegisteredNames) {
    EXPECT_TRUE(serializer.knows("connector/Message"));
    EXPECT_FALSE(serializer.knows("test/Note"));
    registerNote();
    EXPECT_TRUE(serializer.knows("test/Note"));
    EXPECT_FALSE(serializer.knows("test/note"));
    EXPECT_FALSE(serializer.knows(""));
    (serializer.*unregisterConverter)(typeid(Note));
    EXPECT_FALSE(serializer.knows("test/Note"));
    EXPECT_TRUE(serializer.knows("connector/Message"));
}

TEST_F(JsonSerializerImplTest, RefusesANameThatIsTaken) {
    registerNote();
    expectThrows<std::invalid_argument>("Message type name already registered: test/Note", [&] {
        serializer.registerConverter("test/Note", typeid(UrgentNote), serializeNote,
                                     deserializeNote);
    });
    const MessagePtr urgent = std::make_unique<UrgentNote>("hello");
    EXPECT_THROW(serializer.serialize(urgent), std::invalid_argument) << "nothing was registered";
}

TEST_F(JsonSerializerImplTest, RefusesAClassThatIsRegistered) {
    registerNote();
    expectThrows<std::invalid_argument>(
        std::string("Message class already registered: ") + typeid(Note).name(), [&] {
            serializer.registerConverter("test/Other", typeid(Note), serializeNote,
                                         deserializeNote);
        });
    EXPECT_FALSE(serializer.knows("test/Other"));
    EXPECT_TRUE(serializer.knows("test/Note"));
}

TEST_F(JsonSerializerImplTest, RefusesTheNameAndTheClassOfABareMessage) {
    expectThrows<std::invalid_argument>(
        "Message type name already registered: connector/Message", [&] {
            serializer.registerConverter("connector/Message", typeid(Note), serializeNote,
                                         deserializeNote);
        });
    expectThrows<std::invalid_argument>(
        "Message class already registered: N9connector7MessageE", [&] {
            serializer.registerConverter("test/Other", typeid(Message), serializeNote,
                                         deserializeNote);
        });
}

TEST_F(JsonSerializerImplTest, RefusesToUnregisterAClassThatIsNotRegistered) {
    expectThrows<std::invalid_argument>(std::string("Message class not registered: ") +
                                            typeid(Note).name(),
                                        [&] { serializer.unregisterConverter(typeid(Note)); });
}

TEST_F(JsonSerializerImplTest, RegistersAClassAgainAfterUnregistering) {
    registerNote();
    serializer.unregisterConverter(typeid(Note));
    registerNote();
    EXPECT_TRUE(serializer.knows("test/Note"));
}

TEST_F(JsonSerializerImplTest, RefusesAMessageOfAClassThatIsNotRegistered) {
    const MessagePtr note = std::make_unique<Note>("hello");
    expectThrows<std::invalid_argument>(std::string("Message class not registered: ") +
                                            typeid(Note).name(),
                                        [&] { serializer.serialize(note); });
}

TEST_F(JsonSerializerImplTest, DoesNotUseTheConverterOfABaseClass) {
    registerNote();
    const MessagePtr urgent = std::make_unique<UrgentNote>("hello");
    expectThrows<std::invalid_argument>(std::string("Message class not registered: ") +
                                            typeid(UrgentNote).name(),
                                        [&] { serializer.serialize(urgent); });
}

TEST_F(JsonSerializerImplTest, RefusesANullMessage) {
    expectThrows<std::invalid_argument>("No message to serialize",
                                        [&] { serializer.serialize(nullptr); });
}

TEST_F(JsonSerializerImplTest, RefusesANullObject) {
    expectDeserializationFails("No object to deserialize", nullptr);
}

TEST_F(JsonSerializerImplTest, RefusesAnUnknownTypeName) {
    expectDeserializationFails("Unknown message type: test/Note",
                               parse(R"({"type":"test/Note","message":{}})"));
    expectDeserializationFails("Unknown message type: connector/message",
                               parse(R"({"type":"connector/message","message":{}})"));
}

TEST_F(JsonSerializerImplTest, RefusesAnEnvelopeWithoutAType) {
    expectDeserializationFails("Unknown message type: ", parse("{}"));
    expectDeserializationFails("Unknown message type: ", parse(R"({"message":{}})"));
    expectDeserializationFails("Unknown message type: ", parse(R"({"type":null,"message":{}})"));
    expectDeserializationFails("Unknown message type: 7", parse(R"({"type":7,"message":{}})"));
}

TEST_F(JsonSerializerImplTest, RefusesAnEnvelopeWithoutContent) {
    for (const char* const envelope :
         {R"({"type":"connector/Message"})", R"({"type":"connector/Message","message":null})",
          R"({"type":"connector/Message","message":[]})",
          R"({"type":"connector/Message","message":"{}"})",
          R"({"type":"connector/Message","message":5})"}) {
        SCOPED_TRACE(envelope);
        expectDeserializationFails("Message without content: connector/Message", parse(envelope));
    }
}

TEST_F(JsonSerializerImplTest, ThrowsWhatAConverterThrows) {
    serializer.registerConverter(
        "test/Note", typeid(Note),
        [](const MessagePtr&) -> Object { throw std::domain_error("cannot write"); },
        [](const Object&) -> MessagePtr { throw std::range_error("cannot read"); });
    const MessagePtr note = std::make_unique<Note>("hello");
    expectThrows<std::domain_error>("cannot write", [&] { serializer.serialize(note); });
    expectThrows<std::range_error>("cannot read", [&] {
        serializer.deserialize(parse(R"({"type":"test/Note","message":{}})"));
    });
    EXPECT_TRUE(serializer.knows("test/Note"));
}

} // namespace
