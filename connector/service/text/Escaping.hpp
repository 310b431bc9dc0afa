/// Makes arbitrary bytes safe to show.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace connector::service {

/// For people, on a terminal or in a log. The result is a single line without control characters.
/// \n, \r and \t are escaped like this; other ASCII control characters and bytes that are not UTF-8
/// become \xHH, other control characters become \uHHHH. A backslash is not escaped, so the result
/// cannot be converted back.
std::string escaped(std::string_view text);

/// @return the text; if it is longer than this number of bytes, only its beginning, which ends with
///         a whole character, and "..."
std::string shortened(std::string_view text, std::size_t maxLength);

/// @return the text with U+FFFD in place of every byte that is not part of a UTF-8 character
std::string toValidUtf8(std::string_view text);

/// @return the JSON document with \uHHHH in place of every control character that JSON allows
///         unescaped. Such characters occur only inside strings, so the document means the same.
std::string escapedJson(std::string_view document);

} // namespace connector::service
