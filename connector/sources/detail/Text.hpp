/// The text of a document.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <string_view>

namespace connector::sources::detail {

/// @return the text without a byte order mark at its start
/// @throws DocumentError at the first byte that is not UTF-8
std::string_view checkedText(std::string_view bytes);

/// @return the position of a byte
Place placeOf(std::string_view text, std::size_t offset);

/// @return the offset of a position in the text
std::size_t offsetOf(std::string_view text, Place place);

} // namespace connector::sources::detail
