/// How long to wait before the next attempt to connect.
#pragma once

#include <algorithm>
#include <chrono>
#include <random>

namespace connector::service {

/// Random, so that clients that have lost a service do not come back all at once, and growing.
class RetryDelay {
public:
    using Duration = std::chrono::milliseconds;

    RetryDelay(Duration newMinimum, Duration newMaximum)
        : minimum(newMinimum), maximum(newMaximum), previous(newMinimum) {}

    /// @return between the minimum and three times the result before, at most the maximum
    Duration next() {
        std::uniform_int_distribution<Duration::rep> range(minimum.count(), 3 * previous.count());
        previous = std::min(Duration(range(random)), maximum);
        return previous;
    }

    /// Begins with the minimum again.
    void reset() { previous = minimum; }

private:
    const Duration minimum;
    const Duration maximum;
    Duration previous;
    std::minstd_rand random{std::random_device{}()};
};

} // namespace connector::service
