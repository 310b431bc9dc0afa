/// Parses the change that plan is asked about.
#pragma once

#include "arguments/WatchLine.hpp"

#include <string>
#include <variant>
#include <vector>

namespace connector_config {

struct ReloadFiles {};

using PlannedChange = std::variant<SetLine, AddLine, RemoveLine, ReloadFiles>;

/// @param words  set KEY[:TYPE]=VALUE [@SOURCE], add FILE, remove NAME or reload. Unlike on a line
///               of watch, spaces separate nothing.
/// @param secrets  keys whose values are masked in failures
/// @throws WrongArguments
PlannedChange parsePlannedChange(const std::vector<std::string>& words, const Secrets& secrets);

} // namespace connector_config
