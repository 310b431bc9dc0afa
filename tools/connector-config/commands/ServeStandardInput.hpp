/// serve without --http.
#pragma once

#include <connector/configuration/Configuration.hpp>

#include <memory>

namespace connector_config {

/// Reads one request per line from standard input and writes one reply per line to standard output,
/// in order, until the end of the input. Skips blank lines. Every request is allowed.
/// @throws OutputError
void serveStandardInput(
    const std::shared_ptr<connector::configuration::Configuration>& configuration);

} // namespace connector_config
