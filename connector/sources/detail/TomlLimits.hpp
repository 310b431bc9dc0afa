/// What must be known of a TOML file before it is parsed.
#pragma once

#include <string_view>

namespace connector::sources::detail {

/// The parser makes a table for each part of a dotted key, destroys tables recursively, and keeps
/// every value. So a file that would take the stack or the memory is refused before. This is no
/// check of the syntax, and exact only for values; what is nested a little too deeply is left to
/// those who come after.
/// @throws DocumentError
void checkTomlLimits(std::string_view text);

} // namespace connector::sources::detail
