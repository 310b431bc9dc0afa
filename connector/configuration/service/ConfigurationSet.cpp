#include <connector/configuration/service/ConfigurationSet.hpp>

#include <connector/configuration/service/ConfigurationServiceProvider.hpp>

namespace connector {

template class MessageAPI<configuration::ConfigurationSet,
                          configuration::ConfigurationServiceProvider>;

namespace configuration {

ConfigurationSet::ConfigurationSet(const std::string& newKey, const OptionValue& newValue,
                                   const std::string& newSource)
    : key(newKey), source(newSource), value(newValue) {
}

ConfigurationSet::~ConfigurationSet() = default;

} // namespace configuration
} // namespace connector
