/// What the program says about itself.
#pragma once

#include <string>

namespace connector_config {

/// One line.
std::string usageLine();

/// Everything, with an example for each command.
std::string helpText();

std::string versionText();

} // namespace connector_config
