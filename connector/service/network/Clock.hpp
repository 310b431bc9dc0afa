/// The time of deadlines.
#pragma once

#include <chrono>

namespace connector::service {

using Clock = std::chrono::steady_clock;

constexpr Clock::time_point never = Clock::time_point::max();

} // namespace connector::service
