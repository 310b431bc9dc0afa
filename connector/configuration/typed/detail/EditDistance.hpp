/// How far two texts are apart.
#pragma once

#include <cstddef>
#include <string_view>

namespace connector::configuration::detail {

/// @return how many bytes must be inserted, removed or replaced to make one text of the other;
///         `limit` when that are so many or more
std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit);

} // namespace connector::configuration::detail
