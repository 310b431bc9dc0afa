/// The request to add a property file as a source. Answered by a bare Message.
#pragma once

#include <connector/configuration/service/ConfigurationRequest.hpp>

#include <string>

namespace connector {

extern template class MessageAPI<configuration::AddPropertyFileSource,
                                 configuration::ConfigurationServiceProvider>;

namespace configuration {

/// The fields are the arguments of Configuration::addPropertyFileSource.
class CONNECTOR_EXPORT AddPropertyFileSource : public ConfigurationRequest<AddPropertyFileSource> {
public:
    AddPropertyFileSource(const std::string& newName, const std::string& newGroup, int newOrder,
                          bool newReadOnly, const std::u16string& newPath);
    ~AddPropertyFileSource() override;

    std::string name;    ///< under which the source is registered
    std::string group;   ///< of the source
    int order;           ///< of the source; smaller is consulted first
    bool readOnly;       ///< whether set skips the source
    std::u16string path; ///< of the file
};

} // namespace configuration
} // namespace connector
