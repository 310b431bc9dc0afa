/// Rewrites the segments that differ.
#pragma once

#include <string>
#include <string_view>

namespace connector::configuration::properties::detail {

/// @return the text that says to both readers what the library reads now; see `fixed`
std::string withoutDifferences(std::string_view text);

} // namespace connector::configuration::properties::detail
