/// Values as the JSON form of an option writes them, compact.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <string>
#include <string_view>

namespace connector::configuration::detail {

/// @return what a serializer prints for the payload of the value; bytes that are no UTF-8, and
///         halves of surrogate pairs, as U+FFFD each. Infinity is inf, not a number nan.
CONNECTOR_EXPORT std::string jsonPayload(const OptionValue& value);

/// @param text  UTF-8; other bytes as above
/// @return the text between quotes, escaped
CONNECTOR_EXPORT std::string jsonString(std::string_view text);

CONNECTOR_EXPORT std::string jsonNumber(double number);

} // namespace connector::configuration::detail
