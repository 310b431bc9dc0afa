/// The service for whoever started the program: a request a line, a reply a line.
#pragma once

#include <connector/configuration/Configuration.hpp>

#include <memory>

namespace connector_config {

/// Answers the lines of standard input on standard output, in order, until the input ends. Blank
/// lines are ignored. Everything is allowed.
/// @throws OutputFailure
void serveStandardInput(
    const std::shared_ptr<connector::configuration::Configuration>& configuration);

} // namespace connector_config
