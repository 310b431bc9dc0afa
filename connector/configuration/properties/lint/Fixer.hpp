/// Rewrites the segments that differ.
#pragma once

#include <connector/configuration/properties/Finding.hpp>

#include <set>
#include <string>
#include <string_view>

namespace connector::configuration::properties::detail {

/// @return the text that says to both readers what the library reads now; see `fixed`
std::string withoutDifferences(std::string_view text, const std::set<Rule>& ignored);

} // namespace connector::configuration::properties::detail
