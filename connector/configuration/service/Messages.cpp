/// The constructors of the messages, and their key functions: each class has its vtable here.
#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationGet.hpp>
#include <connector/configuration/service/ConfigurationKeys.hpp>
#include <connector/configuration/service/ConfigurationKeysResponse.hpp>
#include <connector/configuration/service/ConfigurationOptionResponse.hpp>
#include <connector/configuration/service/ConfigurationServiceProvider.hpp>
#include <connector/configuration/service/ConfigurationSet.hpp>

#include <utility>

namespace connector {

template class MessageAPI<configuration::AddPropertyFileSource,
                          configuration::ConfigurationServiceProvider>;
template class MessageAPI<configuration::ConfigurationGet,
                          configuration::ConfigurationServiceProvider>;
template class MessageAPI<configuration::ConfigurationKeys,
                          configuration::ConfigurationServiceProvider>;
template class MessageAPI<configuration::ConfigurationSet,
                          configuration::ConfigurationServiceProvider>;

namespace configuration {

AddPropertyFileSource::AddPropertyFileSource(const std::string& newName,
                                             const std::string& newGroup, int newOrder,
                                             bool newReadOnly, const std::u16string& newPath)
    : name(newName), group(newGroup), order(newOrder), readOnly(newReadOnly), path(newPath) {
}

AddPropertyFileSource::~AddPropertyFileSource() = default;

ConfigurationGet::ConfigurationGet(const std::string& newKey) : key(newKey) {
}

ConfigurationGet::~ConfigurationGet() = default;

ConfigurationKeys::ConfigurationKeys() = default;

ConfigurationKeys::~ConfigurationKeys() = default;

ConfigurationKeysResponse::ConfigurationKeysResponse(std::set<std::string>&& newKeys)
    : keys(std::move(newKeys)) {
}

ConfigurationKeysResponse::~ConfigurationKeysResponse() = default;

ConfigurationOptionResponse::ConfigurationOptionResponse() = default;

ConfigurationOptionResponse::ConfigurationOptionResponse(const Option& newOption)
    : option(std::make_unique<Option>(newOption)) {
}

ConfigurationOptionResponse::~ConfigurationOptionResponse() = default;

ConfigurationSet::ConfigurationSet(const std::string& newKey, const OptionValue& newValue,
                                   const std::string& newSource)
    : key(newKey), source(newSource), value(newValue) {
}

ConfigurationSet::~ConfigurationSet() = default;

} // namespace configuration

} // namespace connector
