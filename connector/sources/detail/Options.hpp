/// Converts documents to options.
#pragma once

#include <connector/sources/TableChange.hpp>
#include <connector/sources/detail/Document.hpp>

namespace connector::sources::detail {

/// The rules are in docs/sources.md. They are the same for all formats.
/// @throws DocumentError at the second occurrence of a key, and if the top is not an object
Table optionsOf(const Document& document);

} // namespace connector::sources::detail
