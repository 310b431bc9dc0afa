/// Adds the sources that the command line names.
#pragma once

#include "arguments/Arguments.hpp"

#include <connector/configuration/Configuration.hpp>

namespace connector_config {

/// Adds a property file as a read-only source.
/// @throws std::runtime_error "Path is not valid UTF-8: " + path
/// @throws what the library throws
void addFile(connector::configuration::Configuration& configuration, const FileArgument& file);

/// Adds files and sets values in the order of the command line.
/// @throws as addFile
void addSources(connector::configuration::Configuration& configuration,
                const std::vector<SourceArgument>& sources);

} // namespace connector_config
