/// From a value to what the user reads.
#pragma once

#include "values/ValueType.hpp"

#include <string>

namespace connector_config {

/// @return text as it is, everything else as its JSON
std::string plainText(const OptionValue& value);

/// @return the same, escaped: on one line, with nothing in it that a terminal obeys
std::string shownText(const OptionValue& value);

} // namespace connector_config
