/// Limits that are checked before a TOML file is parsed.
#pragma once

#include <string_view>

namespace connector::sources::detail {

/// The parser creates a table for each part of a dotted key, destroys tables recursively, and keeps
/// every value. A file that would exhaust the stack or the memory is therefore rejected before it
/// is parsed. This does not check the syntax, and it is exact only for values; files that are
/// nested slightly too deeply are rejected later.
/// @throws DocumentError
void checkTomlLimits(std::string_view text);

} // namespace connector::sources::detail
