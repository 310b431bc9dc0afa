/// A running service as a side of diff.
#pragma once

#include "comparing/Differences.hpp"

#include <connector/service/HttpClientOptions.hpp>

namespace connector_config {

/// @return the effective options of the service, as of one moment
/// @throws connector::service::ServiceError
ComparedOptions readRemoteSide(const connector::service::HttpClientOptions& service);

} // namespace connector_config
