/// The texts of --help and --version.
#pragma once

#include <string>

namespace connector_config {

/// @return the first line of the help text, which also follows a usage error
std::string usageLine();

/// @return the whole help text, with an example of each command
std::string helpText();

std::string versionText();

} // namespace connector_config
