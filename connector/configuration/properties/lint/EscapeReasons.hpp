/// The escapes that the two readers read differently.
#pragma once

#include <connector/configuration/properties/lint/Explanation.hpp>

#include <vector>

namespace connector::configuration::properties::detail {

/// @return the reasons among the escapes of a segment, in the order of the file
std::vector<Reason> escapeReasons(const Comparison& files, const Segment& segment);

} // namespace connector::configuration::properties::detail
