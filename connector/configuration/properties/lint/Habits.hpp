/// What both readers read alike, but what is probably a mistake.
#pragma once

#include <connector/configuration/properties/lint/Explanation.hpp>
#include <connector/configuration/properties/lint/Lines.hpp>

#include <functional>
#include <string_view>
#include <vector>

namespace connector::configuration::properties::detail {

/// @param isSecret  the texts do not show the values of such keys
/// @return the reasons of the rules behind `Difference`, in the order of the file
std::vector<Reason> habits(const Comparison& files, const Lines& lines,
                           const std::function<bool(std::string_view)>& isSecret);

} // namespace connector::configuration::properties::detail
