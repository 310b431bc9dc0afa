/// Durations and byte sizes as a file has them, and back.
#pragma once

#include <connector/Export.hpp>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace connector::configuration::detail {

/// A duration in ticks of some period.
struct Ticks {
    bool isNegative;
    std::uint64_t count;
};

/// Reads "1h30m", "250ms", "-1.5s", "0".
/// @param numerator    of the period of a tick in seconds, as of a std::ratio
/// @param denominator  of it
/// @return nothing when the text is no duration, or no whole number of ticks
std::optional<Ticks> readTicks(std::string_view text, std::uintmax_t numerator,
                               std::uintmax_t denominator);

/// As above, rounded to the ticks of a duration of floating point.
std::optional<long double> readRoundedTicks(std::string_view text, std::uintmax_t numerator,
                                            std::uintmax_t denominator);

/// @return the shortest sum of whole units, from large to small: "1h30m", "-250ms", "0s"; nothing when
///         nanoseconds are too coarse for it, or too many
CONNECTOR_EXPORT std::optional<std::string> writeTicks(Ticks ticks, std::uintmax_t numerator,
                                                       std::uintmax_t denominator);

/// @param seconds  finite
/// @return seconds as a decimal number: "0.25s"
CONNECTOR_EXPORT std::string writeSeconds(double seconds);

/// Reads "512", "64KiB", "1.5MB".
/// @return nothing when the text is no size, or no whole number of bytes of 64 bits
std::optional<std::uint64_t> readBytes(std::string_view text);

/// @return the largest power of 1024 or 1000 that goes without a fraction: "64KiB", "1500kB", "7B"
CONNECTOR_EXPORT std::string writeBytes(std::uint64_t bytes);

/// Regular expressions of the JSON Schema for what readTicks and readBytes read.
CONNECTOR_EXPORT std::string durationPattern();
CONNECTOR_EXPORT std::string byteSizePattern();

} // namespace connector::configuration::detail
