#include <connector/configuration/service/ConfigurationKeys.hpp>

#include <connector/configuration/service/ConfigurationServiceProvider.hpp>

namespace connector {

template class MessageAPI<configuration::ConfigurationKeys,
                          configuration::ConfigurationServiceProvider>;

namespace configuration {

ConfigurationKeys::ConfigurationKeys() = default;

ConfigurationKeys::~ConfigurationKeys() = default;

} // namespace configuration
} // namespace connector
