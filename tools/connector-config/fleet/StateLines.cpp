#include "fleet/StateLines.hpp"

#include <array>
#include <ctime>
#include <utility>

namespace connector_config {

namespace {

/// In local time.
std::string timeOfDay(std::chrono::system_clock::time_point time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    std::array<char, 16> text{};
    std::strftime(text.data(), text.size(), "%H:%M:%S", &local);
    return text.data();
}

} // namespace

std::optional<std::string> StateLines::next(const connector::etcd::Status& status) {
    // The time tells a state from the same state after another one that was missed.
    const bool isSame = status.state == state && status.since == since;
    state = status.state;
    since = status.since;
    if (isSame)
        return std::nullopt;
    if (state == State::Stale)
        return name + ": stale since " + timeOfDay(since) + ": " + status.failure;
    if (state != State::Current || !std::exchange(wasCurrent, true))
        return std::nullopt;
    return name + ": current at revision " + std::to_string(status.revision);
}

} // namespace connector_config
