/// Says in words what the two readers make of a part of a file.
#pragma once

#include <connector/configuration/properties/lint/Comparison.hpp>

#include <functional>
#include <string>
#include <string_view>

namespace connector::configuration::properties::detail {

/// @return the text on one line: what is no UTF-8 and what is a control character as <0xHH> or
///         <U+HHHH>, and at most about the first sixty bytes
/// @param hasHalf  whether what looks like a half of a surrogate pair is one
std::string shown(std::string_view text, bool hasHalf = false);

/// What stands for a secret value.
inline constexpr const char* hiddenValue = "******";

/// @param segment  one that differs
/// @param isSecret  whether a key is secret; if one of the segment is, no value of it is shown
/// @return what the library reads, what java.util.Properties reads, and how to write it so that
///         both agree
std::string describe(const Comparison& files, const Segment& segment,
                     const std::function<bool(std::string_view)>& isSecret);

} // namespace connector::configuration::properties::detail
