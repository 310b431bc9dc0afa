/// Lists as a file has them: items between commas.
#pragma once

#include <connector/Export.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace connector::configuration::detail {

/// Blanks and tabs around an item are dropped; `\,` is a comma, `\\` a backslash, `\` before a
/// blank or a tab keeps it, `\e` alone is an empty item, and every other backslash is itself.
/// @return the items; none for the empty text, one for blanks
std::vector<std::string> readList(std::string_view text);

/// @return a text that readList reads as these items
CONNECTOR_EXPORT std::string writeList(const std::vector<std::string>& items);

} // namespace connector::configuration::detail
