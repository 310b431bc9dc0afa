/// The JSON document of fleet export: {"options": {KEY: {"type": T, "value": V}}}.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace connector_config {

using OptionTable = std::map<std::string, connector::configuration::OptionValue>;

/// @return the document on one line, with a line break
std::string exportDocument(const OptionTable& options);

/// @return nothing if the text is another document, or none
/// @throws std::runtime_error "Value cannot be read: KEY" or "Key stands there twice: KEY"
std::optional<OptionTable> readExportDocument(std::string_view text);

} // namespace connector_config
