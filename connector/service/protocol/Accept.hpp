/// Content types that a client takes.
#pragma once

#include <string_view>

namespace connector::service {

/// @param header  the value of "Accept" (RFC 9110, 12.5.1); an empty one takes everything
/// @param type    as in "application/json"
/// @return whether the most exact range of the header that fits has a weight above 0
bool accepts(std::string_view header, std::string_view type);

/// @param header  the value of "Content-Type", with or without parameters
/// @return whether it is application/json
bool isJsonType(std::string_view header);

} // namespace connector::service
