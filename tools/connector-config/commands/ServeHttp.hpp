/// The service for other programs, over HTTP.
#pragma once

#include "arguments/HttpArguments.hpp"
#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

namespace connector_config {

using connector::service::Secrets;

/// Says where it listens, on standard output, and serves until SIGINT or SIGTERM. To be called before
/// there is any other thread.
/// @throws std::runtime_error for a token file, a directory or an address that is no good
/// @throws OutputFailure
void serveHttp(connector::configuration::ConfigurationImpl& configuration,
               const HttpArguments& arguments, const Secrets& secrets);

} // namespace connector_config
