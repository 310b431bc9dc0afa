/// How documents become options.
#pragma once

#include <connector/sources/TableChange.hpp>
#include <connector/sources/detail/Document.hpp>

namespace connector::sources::detail {

/// The rules are those of docs/sources.md, the same for all formats.
/// @throws DocumentError where a key comes a second time, and when the top is no object
Table optionsOf(const Document& document);

} // namespace connector::sources::detail
