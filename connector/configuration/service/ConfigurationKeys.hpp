/// The request to list every key. Answered by a ConfigurationKeysResponse.
#pragma once

#include <connector/configuration/service/ConfigurationRequest.hpp>

#include <string>

namespace connector {

extern template class MessageAPI<configuration::ConfigurationKeys,
                                 configuration::ConfigurationServiceProvider>;

namespace configuration {

class CONNECTOR_EXPORT ConfigurationKeys : public ConfigurationRequest<ConfigurationKeys> {
public:
    ConfigurationKeys();
    ~ConfigurationKeys() override;

    std::string reserved; ///< always empty and never read: it keeps the shape of the class
};

} // namespace configuration
} // namespace connector
