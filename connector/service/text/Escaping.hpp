/// Text that is safe to show.
#pragma once

#include <string>
#include <string_view>

namespace connector::service {

/// @return the text on one line, with nothing in it that a terminal obeys: \n, \r and \t, \xHH for
///         other control characters of ASCII and for bytes that are no UTF-8, \uHHHH for the rest.
///         Backslashes stay single: this form is for eyes, not for reading back.
std::string escaped(std::string_view text);

/// @return the text in well-formed UTF-8, with U+FFFD in place of each byte that is none
std::string repaired(std::string_view text);

/// @return the JSON document with \uHHHH for every control character that JSON lets stand as it is.
///         They stand inside strings only, so the document means the same.
std::string escapedJson(std::string_view document);

} // namespace connector::service
