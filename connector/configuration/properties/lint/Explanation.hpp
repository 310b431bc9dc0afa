/// Why the two readers differ on a segment.
#pragma once

#include <connector/configuration/properties/Finding.hpp>
#include <connector/configuration/properties/lint/Comparison.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace connector::configuration::properties::detail {

/// A place in the file at which the readers part.
struct Reason {
    std::size_t offset;
    Rule rule;
    std::string text; ///< what happens there
};

/// @param segment  one that differs
/// @return at least one reason, in the order of the file
std::vector<Reason> explain(const Comparison& files, const Segment& segment);

} // namespace connector::configuration::properties::detail
