#include <connector/configuration/service/ConfigurationGet.hpp>

#include <connector/configuration/service/ConfigurationServiceProvider.hpp>

namespace connector {

template class MessageAPI<configuration::ConfigurationGet,
                          configuration::ConfigurationServiceProvider>;

namespace configuration {

ConfigurationGet::ConfigurationGet(const std::string& newKey) : key(newKey) {
}

ConfigurationGet::~ConfigurationGet() = default;

} // namespace configuration
} // namespace connector
