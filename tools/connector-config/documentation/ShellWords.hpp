/// Texts in shell scripts.
#pragma once

#include <string>
#include <vector>

namespace connector_config {

/// @return 'text', which sh, bash and zsh read as the text
std::string singleQuoted(const std::string& text);

/// @return the texts with the separator between them
std::string joined(const std::vector<std::string>& texts, const std::string& separator);

} // namespace connector_config
