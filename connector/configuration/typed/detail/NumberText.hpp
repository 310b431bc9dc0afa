/// Numbers of floating point as std::to_chars writes them.
#pragma once

#include <connector/Export.hpp>

#include <string>

namespace connector::configuration::detail {

CONNECTOR_EXPORT std::string numberText(double number);
CONNECTOR_EXPORT std::string numberText(float number);

} // namespace connector::configuration::detail
