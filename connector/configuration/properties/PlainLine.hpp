/// Takes a whole line out of memory at once.
#pragma once

#include <cstddef>
#include <string_view>

namespace connector::configuration::detail {

/// A property that stands in memory as it is to be stored.
struct PlainLine {
    std::string_view key;
    std::string_view value;
    std::size_t length = 0; ///< with its line break; 0 when there is no such line
};

/// Reads the property at the start of `text`, which begins in the first column and may be cut off
/// anywhere, exactly as the state machine reads it. Finds one only where that takes no more than a
/// few looks: on a short line of its own, without backslash. Nearly every line of nearly every file
/// is one, and a file of a thousand loads in two thirds of the time that the states alone take.
PlainLine plainLine(std::string_view text);

} // namespace connector::configuration::detail
