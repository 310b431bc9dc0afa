/// What the tests of reading share: the messages' converters, and rows.
#pragma once

#include "configuration/service/Messages.hpp"

#include <connector/configuration/json/MessageJson.hpp>

#include <string>

namespace test {

/// Both functions of one message.
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

/// What arrives, and the form of the message that it is read as.
struct Row {
    int line;
    std::string arrives;
    std::string isReadAs;
};

} // namespace test
