/// serve --http
#pragma once

#include "arguments/Arguments.hpp"
#include "commands/NamedFile.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <memory>

namespace connector_config {

/// Writes the listening address to standard output, serves clients and reloads files until SIGINT
/// or SIGTERM. Must be called before the process creates another thread, because it blocks these
/// signals.
/// @param arguments  with the arguments of serve --http
/// @param files      of the sources; blockHangup must have been called before they were read
/// @throws std::runtime_error  the token file, the property root or the address cannot be used
/// @throws OutputError
void serveHttp(const std::shared_ptr<connector::configuration::ConfigurationImpl>& configuration,
               const Arguments& arguments, const NamedFiles& files);

} // namespace connector_config
