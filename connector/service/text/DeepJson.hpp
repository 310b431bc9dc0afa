/// JSON of any depth, for the parser, which recurses, must not be asked about that.
#pragma once

#include <cstddef>
#include <string_view>

namespace connector::service {

/// @return whether objects and arrays stand in one another deeper than that
bool isDeeper(std::string_view text, std::size_t depth);

/// Takes time and memory in proportion to the length of the text, and no stack.
/// @throws Poco::Exception if the text is no JSON
void requireJson(std::string_view text);

} // namespace connector::service
