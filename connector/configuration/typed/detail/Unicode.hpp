/// UTF-8 and UTF-16: strictly for values, forgivingly for messages.
#pragma once

#include <connector/Export.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace connector::configuration::detail {

/// @return the text in the other form; nothing when it is not well-formed
CONNECTOR_EXPORT std::optional<std::string> strictUtf8(const std::u16string& text);
CONNECTOR_EXPORT std::optional<std::u16string> strictUtf16(const std::string& text);

/// @return the text, with U+FFFD in place of each half of a surrogate pair that stands alone
std::string anyUtf8(const std::u16string& text);

/// @return the text, with U+FFFD in place of each byte that is no part of well-formed UTF-8
std::string wellFormedUtf8(std::string_view text);

} // namespace connector::configuration::detail
