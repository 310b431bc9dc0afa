/// The request to read one option. Answered by a ConfigurationOptionResponse.
#pragma once

#include <connector/configuration/service/ConfigurationRequest.hpp>

#include <string>

namespace connector {

extern template class MessageAPI<configuration::ConfigurationGet,
                                 configuration::ConfigurationServiceProvider>;

namespace configuration {

class CONNECTOR_EXPORT ConfigurationGet : public ConfigurationRequest<ConfigurationGet> {
public:
    explicit ConfigurationGet(const std::string& newKey);
    ~ConfigurationGet() override;

    std::string key; ///< of the option to read
};

} // namespace configuration
} // namespace connector
