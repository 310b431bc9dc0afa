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
        const Duration highest = previous < maximum / 3 ? 3 * previous : maximum;
        const Duration lowest = std::min(minimum, highest);
        std::uniform_int_distribution<Duration::rep> range(lowest.count(), highest.count());
        previous = Duration(range(random));
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
