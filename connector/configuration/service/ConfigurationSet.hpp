/// The request to write one option. Answered by a ConfigurationOptionResponse.
#pragma once

#include <connector/configuration/OptionValue.hpp>
#include <connector/configuration/service/ConfigurationRequest.hpp>

#include <string>

namespace connector {

extern template class MessageAPI<configuration::ConfigurationSet,
                                 configuration::ConfigurationServiceProvider>;

namespace configuration {

class CONNECTOR_EXPORT ConfigurationSet : public ConfigurationRequest<ConfigurationSet> {
public:
    /// The arguments stand in the order of Configuration::set, the fields in that of the JSON form:
    /// both orders are in use and stay as they are.
    ConfigurationSet(const std::string& newKey, const OptionValue& newValue,
                     const std::string& newSource);
    ~ConfigurationSet() override;

    std::string key;    ///< of the option to write
    std::string source; ///< the source to write into; empty: the first writable one
    OptionValue value;  ///< the value to write
};

} // namespace configuration
} // namespace connector
