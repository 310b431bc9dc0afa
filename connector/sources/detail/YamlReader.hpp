/// YAML.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <string_view>

namespace connector::sources::detail {

/// @param text  UTF-8, without byte order mark
/// @return a document without a top if the text has no document, or an empty one
/// @throws DocumentError
Document readYaml(std::string_view text);

} // namespace connector::sources::detail
