/// Converts a value to the text that the user reads.
#pragma once

#include "values/ValueType.hpp"

#include <string>

namespace connector_config {

/// @return text unchanged, any other value as JSON
std::string plainText(const OptionValue& value);

/// @return the same, escaped: one line without control characters
std::string displayText(const OptionValue& value);

} // namespace connector_config
