/// Property files.
#pragma once

#include <connector/sources/TableChange.hpp>

#include <string>

namespace connector::sources::detail {

/// @param bytes  of a property file
/// @return the options that PropertyFileSource finds in it
Table readProperties(const std::string& bytes);

} // namespace connector::sources::detail
