/// serve --http
#pragma once

#include "arguments/HttpArguments.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/service/text/Secrets.hpp>

namespace connector_config {

/// Writes the listening address to standard output and serves clients until SIGINT or SIGTERM. Must
/// be called before the process creates another thread, because it blocks these signals.
/// @throws std::runtime_error  the token file, the property root or the address cannot be used
/// @throws OutputError
void serveHttp(connector::configuration::ConfigurationImpl& configuration,
               const HttpArguments& arguments, const connector::service::Secrets& secrets);

} // namespace connector_config
