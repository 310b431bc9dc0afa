/// Numbers from text: all of it, whatever the locale.
#pragma once

#include <cstdint>
#include <string_view>

namespace connector::configuration::detail {

/// Base 10 with an optional minus sign, or 0x with hexadecimal digits.
bool readSigned(std::string_view text, std::int64_t& place);
bool readUnsigned(std::string_view text, std::uint64_t& place);

/// As std::from_chars, without infinity and what is not a number.
bool readFloating(std::string_view text, double& place);
bool readFloating(std::string_view text, float& place);

} // namespace connector::configuration::detail
