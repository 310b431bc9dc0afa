/// TOML.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <string_view>

namespace connector::sources::detail {

/// @param text  UTF-8, without byte order mark
/// @throws DocumentError
Document readToml(std::string_view text);

} // namespace connector::sources::detail
