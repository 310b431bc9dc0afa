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
/// @param precision  how many binary digits the type of the duration has. A single number in the
///                   duration's own unit is rounded once, so that it reads back to what was
///                   written.
std::optional<long double> readRoundedTicks(std::string_view text, std::uintmax_t numerator,
                                            std::uintmax_t denominator, int precision);

/// @return a sum of whole units, from large to small: "1h30m", "-250ms", "0s"; nanoseconds have a
///         fraction where the period is finer. Nothing when no decimal fraction is exact.
CONNECTOR_EXPORT std::optional<std::string> writeTicks(Ticks ticks, std::uintmax_t numerator,
                                                       std::uintmax_t denominator);

/// @param count  finite
/// @return a decimal number of the unit that has this period, or else of seconds: "0.25s"
CONNECTOR_EXPORT std::string writeRoundedTicks(double count, std::uintmax_t numerator,
                                               std::uintmax_t denominator);

/// Reads "512", "64KiB", "1.5MB".
/// @return nothing when the text is no size, or no whole number of bytes of 64 bits
std::optional<std::uint64_t> readBytes(std::string_view text);

/// @return the largest power of 1024 or 1000 that goes without a fraction: "64KiB", "1500kB", "7B"
CONNECTOR_EXPORT std::string writeBytes(std::uint64_t bytes);

/// Regular expressions of the JSON Schema for what readTicks and readBytes read.
CONNECTOR_EXPORT std::string durationPattern();
CONNECTOR_EXPORT std::string byteSizePattern();

} // namespace connector::configuration::detail
