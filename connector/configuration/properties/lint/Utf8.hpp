/// Code points and UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace connector::configuration::properties::detail {

/// Appends a code point in the bit layout of UTF-8; a surrogate has three bytes, too.
void appendUtf8(std::string& text, char32_t codePoint);

/// @return the length of the well-formed character that the text begins with; 0 if there is none.
///         Surrogates, overlong forms and values above U+10FFFF are not well-formed.
std::size_t utf8Length(std::string_view text);

} // namespace connector::configuration::properties::detail
