/// Options as lines of a property file.
#pragma once

#include <string>

namespace connector::configuration::detail {

/// @return the key, escaped so that it ends at its separator
std::string propertyKey(const std::string& key);

/// @return a value of any bytes, escaped so that it reads back after a "=" on a line that ends
std::string propertyValue(const std::string& value);

/// @return comment lines, as many as the text has, each with its end
std::string propertyComment(const std::string& text);

} // namespace connector::configuration::detail
