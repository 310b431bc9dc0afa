/// Shared by the reading tests: the converters of the messages, and table rows.
#pragma once

#include "configuration/service/Messages.hpp"

#include <connector/configuration/json/MessageJson.hpp>

#include <string>

namespace test {

/// The two conversion functions of one message class.
struct Converter {
    using Object = Poco::JSON::Object::Ptr;

    MessagePtr (*deserialize)(Object);
    Object (*serialize)(const MessagePtr&);

    Object readAndWrite(const Object& object) const { return serialize(deserialize(object)); }
};

inline const Converter set{connector::configuration::deserializeConfigurationSet,
                           connector::configuration::serializeConfigurationSet};
inline const Converter get{connector::configuration::deserializeConfigurationGet,
                           connector::configuration::serializeConfigurationGet};
inline const Converter keys{connector::configuration::deserializeConfigurationKeysRequest,
                            connector::configuration::serializeConfigurationKeysRequest};
inline const Converter keysResponse{connector::configuration::deserializeConfigurationKeysResponse,
                                    connector::configuration::serializeConfigurationKeysResponse};
inline const Converter optionResponse{
    connector::configuration::deserializeConfigurationOptionResponse,
    connector::configuration::serializeConfigurationOptionResponse};
inline const Converter add{connector::configuration::deserializeAddPropertyFileSourceRequest,
                           connector::configuration::serializeAddPropertyFileSourceRequest};

/// An input, and the JSON of the message that is read from it.
struct Row {
    int line;
    std::string input;
    std::string expected;
};

} // namespace test
