/// What becomes of the exception of a subscriber or handler that was told of a change.
#pragma once

#include <connector/Export.hpp>

#include <string>

namespace connector::configuration::detail {

/// Writes "Error in configuration value subscriber: " and the key to standard error, which is the
/// only place for it: the failure belongs neither to the caller who changed the option nor to the
/// other subscribers. Where there is no memory for the line, it is not written.
CONNECTOR_EXPORT void reportFailedSubscriber(const std::string& key) noexcept;

} // namespace connector::configuration::detail
