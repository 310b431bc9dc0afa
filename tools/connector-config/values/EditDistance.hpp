/// How far two texts are apart.
#pragma once

#include <cstddef>
#include <string_view>

namespace connector_config {

/// @return how many bytes must be inserted, removed or replaced to make one text of the other;
///         `limit` if that are so many or more. Takes time in proportion to the length and `limit`.
std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit);

} // namespace connector_config
