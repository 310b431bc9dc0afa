/// The texts of values in etcd.
#pragma once

#include <connector/configuration/OptionValue.hpp>
#include <connector/etcd/Export.hpp>

#include <optional>
#include <string_view>

namespace connector::etcd {

/// Reads a value as every source does: the JSON object of an option value, {"type": T, "value": V},
/// strictly, or any other UTF-8 text, which is a string. May be called from any thread.
/// @return the value; nothing if the text cannot be read
CONNECTOR_ETCD_EXPORT std::optional<configuration::OptionValue> parseValue(std::string_view text);

} // namespace connector::etcd
