/// Time, as the sockets of the server measure it.
#pragma once

#include <algorithm>
#include <chrono>

namespace connector::service {

using Clock = std::chrono::steady_clock;

/// @return how long poll() may block, in milliseconds; at most an hour
inline int pollTimeout(Clock::time_point deadline) {
    constexpr long long hour = 60 * 60 * 1000;
    const auto remaining =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count() + 1;
    return static_cast<int>(std::clamp<long long>(remaining, 0, hour));
}

} // namespace connector::service
