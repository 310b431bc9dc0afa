/// The manual page.
#pragma once

#include "documentation/HelpDocument.hpp"

#include <string>

namespace connector_config {

/// @param version  as in the output of --version
/// @return the help text as a page of section 1, in the man macros of roff
std::string manualPage(const HelpDocument& help, const std::string& version);

} // namespace connector_config
