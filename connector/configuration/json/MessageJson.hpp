/// The messages of the configuration service as JSON objects. docs/messages.md shows every form.
///
/// A serializer takes a message of its class, which it does not check, and returns a new object. A
/// deserializer tolerates members that are missing or do not convert: strings become empty, "order"
/// 0, "readOnly" true, sets and values empty. None of them keeps its argument; all may be called
/// from any thread.
///
/// The functions of ConfigurationKeys and AddPropertyFileSource have "Request" in their names,
/// their type names do not. Both spellings are in use and stay as they are.
///
/// @throws Poco::NullPointerException from a deserializer that gets a null object;
///         deserializeConfigurationKeysRequest does not look at it and accepts one
/// @throws std::runtime_error "Text is not valid UTF-8" or "Text is not valid UTF-16" for values
///         and paths whose text cannot be converted
#pragma once

#include <connector/Export.hpp>
#include <connector/Message.hpp>

#include <Poco/JSON/Object.h>

#include <memory>

namespace connector::configuration {

CONNECTOR_EXPORT Poco::JSON::Object::Ptr
serializeConfigurationSet(const std::unique_ptr<Message>& message);
CONNECTOR_EXPORT std::unique_ptr<Message>
deserializeConfigurationSet(Poco::JSON::Object::Ptr object);

CONNECTOR_EXPORT Poco::JSON::Object::Ptr
serializeConfigurationGet(const std::unique_ptr<Message>& message);
CONNECTOR_EXPORT std::unique_ptr<Message>
deserializeConfigurationGet(Poco::JSON::Object::Ptr object);

CONNECTOR_EXPORT Poco::JSON::Object::Ptr
serializeConfigurationKeysRequest(const std::unique_ptr<Message>& message);
CONNECTOR_EXPORT std::unique_ptr<Message>
deserializeConfigurationKeysRequest(Poco::JSON::Object::Ptr object);

CONNECTOR_EXPORT Poco::JSON::Object::Ptr
serializeConfigurationKeysResponse(const std::unique_ptr<Message>& message);
CONNECTOR_EXPORT std::unique_ptr<Message>
deserializeConfigurationKeysResponse(Poco::JSON::Object::Ptr object);

CONNECTOR_EXPORT Poco::JSON::Object::Ptr
serializeConfigurationOptionResponse(const std::unique_ptr<Message>& message);
/// An object without an object "value" is a response without an option, whatever else it has.
CONNECTOR_EXPORT std::unique_ptr<Message>
deserializeConfigurationOptionResponse(Poco::JSON::Object::Ptr object);

CONNECTOR_EXPORT Poco::JSON::Object::Ptr
serializeAddPropertyFileSourceRequest(const std::unique_ptr<Message>& message);
CONNECTOR_EXPORT std::unique_ptr<Message>
deserializeAddPropertyFileSourceRequest(Poco::JSON::Object::Ptr object);

} // namespace connector::configuration
