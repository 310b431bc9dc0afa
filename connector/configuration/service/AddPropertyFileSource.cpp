#include <connector/configuration/service/AddPropertyFileSource.hpp>

#include <connector/configuration/service/ConfigurationServiceProvider.hpp>

namespace connector {

template class MessageAPI<configuration::AddPropertyFileSource,
                          configuration::ConfigurationServiceProvider>;

namespace configuration {

AddPropertyFileSource::AddPropertyFileSource(const std::string& newName,
                                             const std::string& newGroup, int newOrder,
                                             bool newReadOnly, const std::u16string& newPath)
    : name(newName), group(newGroup), order(newOrder), readOnly(newReadOnly), path(newPath) {
}

AddPropertyFileSource::~AddPropertyFileSource() = default;

} // namespace configuration
} // namespace connector
