#include <connector/configuration/json/ConfigurationJsonSerialization.hpp>

#include <connector/configuration/json/MessageJson.hpp>
#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationGet.hpp>
#include <connector/configuration/service/ConfigurationKeys.hpp>
#include <connector/configuration/service/ConfigurationKeysResponse.hpp>
#include <connector/configuration/service/ConfigurationOptionResponse.hpp>
#include <connector/configuration/service/ConfigurationSet.hpp>

#include <stdexcept>
#include <typeinfo>
#include <utility>

namespace connector::configuration {

namespace {

struct Registration {
    const char* typeName;
    const std::type_info& messageClass;
    Poco::JSON::Object::Ptr (*serialize)(const std::unique_ptr<Message>&);
    std::unique_ptr<Message> (*deserialize)(Poco::JSON::Object::Ptr);
};

/// In the order of registration, and of withdrawal.
const Registration registrations[] = {
    {"connector/configuration/ConfigurationSet", typeid(ConfigurationSet),
     serializeConfigurationSet, deserializeConfigurationSet},
    {"connector/configuration/ConfigurationGet", typeid(ConfigurationGet),
     serializeConfigurationGet, deserializeConfigurationGet},
    {"connector/configuration/ConfigurationKeys", typeid(ConfigurationKeys),
     serializeConfigurationKeysRequest, deserializeConfigurationKeysRequest},
    {"connector/configuration/ConfigurationKeysResponse", typeid(ConfigurationKeysResponse),
     serializeConfigurationKeysResponse, deserializeConfigurationKeysResponse},
    {"connector/configuration/ConfigurationOptionResponse", typeid(ConfigurationOptionResponse),
     serializeConfigurationOptionResponse, deserializeConfigurationOptionResponse},
    {"connector/configuration/AddPropertyFileSource", typeid(AddPropertyFileSource),
     serializeAddPropertyFileSourceRequest, deserializeAddPropertyFileSourceRequest},
};

} // namespace

ConfigurationJsonSerialization::ConfigurationJsonSerialization(
    std::shared_ptr<json::JsonSerializer> newSerializer)
    : serializer(std::move(newSerializer)) {
    if (!serializer)
        throw std::invalid_argument("A JSON serialization needs a serializer.");
    for (const Registration& registration : registrations)
        serializer->registerConverter(registration.typeName, registration.messageClass,
                                      registration.serialize, registration.deserialize);
}

ConfigurationJsonSerialization::~ConfigurationJsonSerialization() {
    for (const Registration& registration : registrations)
        serializer->unregisterConverter(registration.messageClass);
}

} // namespace connector::configuration
