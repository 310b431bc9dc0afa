/// Exact arithmetic with decimal numbers as text: digits, with an optional fraction.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace connector::configuration::detail {

__extension__ using Wide = unsigned __int128;

/// digits / 10^scale. Without trailing zeros after the point.
struct Decimal {
    Wide digits = 0;
    std::size_t scale = 0;
};

/// @param text  digits, or digits, a point and digits
/// @return nothing when the text is something else, or has more significant digits than 128 bits
///         hold
std::optional<Decimal> readDecimal(std::string_view text);

/// @return value * factor / divisor, when that is a whole number of 64 bits
/// @param divisor  not 0
std::optional<std::uint64_t> wholeQuotient(Decimal value, Wide factor, Wide divisor);

/// @return the length of the digits at the beginning of the text
std::size_t leadingDigits(std::string_view text);

/// @return the length of the number at the beginning: digits, with a fraction if there is one with
///         digits on both sides of its point; 0 if there is none
std::size_t leadingNumber(std::string_view text);

} // namespace connector::configuration::detail
