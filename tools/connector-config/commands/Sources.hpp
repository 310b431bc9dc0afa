/// From arguments to sources.
#pragma once

#include "arguments/Arguments.hpp"

#include <connector/configuration/Configuration.hpp>

namespace connector_config {

/// Adds a property file, read-only.
/// @throws what the library says
void addFile(connector::configuration::Configuration& configuration, const FileArgument& file);

/// Adds files and sets values, in the order given.
/// @throws what the library says
void addSources(connector::configuration::Configuration& configuration,
                const std::vector<SourceArgument>& sources);

} // namespace connector_config
