/// What both readers read alike, but what is probably a mistake.
#pragma once

#include <connector/configuration/properties/lint/Explanation.hpp>

#include <functional>
#include <vector>

namespace connector::configuration::properties::detail {

/// @param lineOf  the number of the line of an offset
/// @return the reasons of the rules behind `Difference`, in the order of the file
std::vector<Reason> habits(const Comparison& files,
                           const std::function<std::size_t(std::size_t)>& lineOf);

} // namespace connector::configuration::properties::detail
