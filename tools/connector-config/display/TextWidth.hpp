/// The width of text on a terminal. The text must be escaped, see Escaping.hpp.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace connector_config {

/// @return the number of columns that the text occupies
std::size_t widthOf(std::string_view text);

/// @return the text if it fits; otherwise as many whole characters as fit, followed by "…"
std::string cutToWidth(std::string_view text, std::size_t width);

} // namespace connector_config
