/// The commands that need a service, and the form that watch has for one.
#pragma once

#include "arguments/Arguments.hpp"

#include <connector/service/HttpClient.hpp>

namespace connector_config {

using connector::service::HttpClient;

/// Sets an option of a service.
/// @throws connector::service::ServiceError
void setRemotely(HttpClient& client, const Arguments& arguments);

/// Writes the values of options as they change, until the process is ended. Reports on standard
/// error that the service is lost, and connects to it again. Does not read standard input.
/// @throws connector::service::ServiceError  the service cannot be reached at the beginning, or it
///         refuses to be watched
/// @throws OutputError
void watchRemotely(HttpClient& client, const Arguments& arguments);

} // namespace connector_config
