/// What the user probably meant.
#pragma once

#include <string>
#include <vector>

namespace connector_config {

/// @return ", did you mean CANDIDATE?" with the nearest candidate, the first one of several; empty
///         if none is within two edits
std::string suggestion(const std::string& text, const std::vector<std::string>& candidates);

} // namespace connector_config
