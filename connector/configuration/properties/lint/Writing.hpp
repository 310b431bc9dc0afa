/// Writes properties so that the library and java.util.Properties read them alike.
#pragma once

#include <connector/configuration/properties/lint/LibraryReader.hpp>

#include <string>
#include <string_view>

namespace connector::configuration::properties::detail {

/// @param key, value  as they are stored
/// @return a line without a line break. Bytes that are not UTF-8 stay as they are.
std::string written(std::string_view key, std::string_view value);

/// Changes no more of a property than necessary: its separator, escapes that both read alike and
/// line breaks in a continued value stay.
/// @param text  the file
/// @param property  one that is stored
/// @return its lines, without the last line break
std::string rewritten(std::string_view text, const LibraryProperty& property);

} // namespace connector::configuration::properties::detail
