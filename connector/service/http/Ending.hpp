/// How a server tells everybody who waits for a client that it ends.
#pragma once

#include <atomic>
#include <chrono>

namespace connector::service {

using Clock = std::chrono::steady_clock;

/// May be used from any thread.
class Ending {
public:
    Ending();
    ~Ending();
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;

    /// From now on nobody waits for a client any longer than until then.
    void announce(Clock::time_point newDeadline);

    /// When the end was announced: the time when all waiting ends; a time that never comes before.
    Clock::time_point deadline() const { return latest.load(); }

    bool isAnnounced() const { return deadline() != Clock::time_point::max(); }

    /// Becomes readable when the end is announced, and stays so.
    int descriptor() const { return readable; }

private:
    std::atomic<Clock::time_point> latest{Clock::time_point::max()};
    int readable = -1;
};

} // namespace connector::service
