/// Converts keys and values to text that a POSIX shell can evaluate.
#pragma once

#include <string>

namespace connector_config {

/// @return the variable for a key: in upper case, with "_" for each byte that is neither an ASCII
///         letter, nor a digit, nor "_", and with "_" in front of a digit at the start; empty for
///         the empty key
std::string shellVariable(const std::string& key);

/// @param text  without NUL, which no shell can hold
/// @return the text in single quotes, which a shell evaluates to the same bytes
std::string shellQuoted(const std::string& text);

} // namespace connector_config
