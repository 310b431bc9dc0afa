/// Values that no message shows.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <string>
#include <string_view>

namespace connector::configuration::detail {

/// @return whether the key has "password", "secret" or "token" in it, whatever the case of its
///         letters
CONNECTOR_EXPORT bool looksSecret(std::string_view key);

/// @return the payload of the value, as the JSON form writes it; ****** if the key looks secret
CONNECTOR_EXPORT std::string shownValue(std::string_view key, const OptionValue& value);

} // namespace connector::configuration::detail
