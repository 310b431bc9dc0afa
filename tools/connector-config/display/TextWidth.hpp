/// Text in columns of a terminal. The text is escaped: see Escaping.hpp.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace connector_config {

/// @return how many columns the text takes
std::size_t widthOf(std::string_view text);

/// @return the text, or as much of it as fits with a mark of the cut, "…", behind it; never a part of
///         a character
std::string cutToWidth(std::string_view text, std::size_t width);

} // namespace connector_config
