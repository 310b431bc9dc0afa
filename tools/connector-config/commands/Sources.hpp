/// Adds the sources that the command line names.
#pragma once

#include "arguments/Arguments.hpp"
#include "commands/NamedFile.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

namespace connector_config {

/// Adds a file as a read-only source.
/// @throws what the library throws
void addFile(connector::configuration::ConfigurationImpl& configuration,
             const std::shared_ptr<NamedFile>& file);

/// Adds files and the environment, and sets values, in the order of the command line.
/// @return the files
/// @throws as openFile, and what the library throws
NamedFiles addSources(connector::configuration::ConfigurationImpl& configuration,
                      const std::vector<SourceArgument>& sources);

/// Warns on standard error if the type of an assignment is probably mistyped.
void warnOfUnknownType(const Assignment& assignment);

} // namespace connector_config
