/// From what the user wrote to a value.
#pragma once

#include "values/ValueType.hpp"

#include <string>

namespace connector_config {

/// Reads strictly: the whole text must be a value of the type, in its range.
///     bool             true or false
///     int uint double  a number; no infinity, no NaN
///     string           any bytes
///     ustring          UTF-8
///     the arrays       a JSON array whose elements all have the type
/// @param isSecret  whether nobody may see the text
/// @throws WrongArguments "Value does not convert to TYPE: TEXT", where TEXT is "******" if it is secret
OptionValue readValue(ValueType type, const std::string& text, bool isSecret = false);

} // namespace connector_config
