/// What watch writes for a value.
#pragma once

#include <connector/configuration/Option.hpp>

#include <string>

namespace connector_config {

/// @param option  masked if it is secret
/// @return a JSON object, or "KEY = VALUE  (SOURCE)"; with a line break
std::string changeText(const connector::configuration::Option& option, bool json);

} // namespace connector_config
