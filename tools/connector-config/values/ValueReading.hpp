/// Converts what the user wrote to a value.
#pragma once

#include "values/ValueType.hpp"

#include <string>

namespace connector_config {

/// The whole text must be a value of the type and in its range:
///     bool             true or false
///     int uint double  a number; no infinity, no NaN
///     string           any bytes
///     ustring          UTF-8
///     arrays           a JSON array whose elements all have the type
/// @param key       of the value, for the failure
/// @param isSecret  masks the text in the failure
/// @throws WrongArguments "Value of KEY does not convert to TYPE: TEXT", with "******" for a secret
///         TEXT
OptionValue readValue(const std::string& key, ValueType type, const std::string& text,
                      bool isSecret = false);

} // namespace connector_config
