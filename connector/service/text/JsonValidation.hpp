/// Validation of JSON texts whose nesting is too deep for Poco's recursive parser.
#pragma once

#include <cstddef>
#include <string_view>

namespace connector::service {

/// @return whether objects and arrays are nested in more than `depth` levels
bool isNestedDeeper(std::string_view text, std::size_t depth);

/// Takes time and memory proportional to the length of the text. Does not recurse.
/// @throws Poco::Exception if the text is not JSON
void validateJson(std::string_view text);

} // namespace connector::service
