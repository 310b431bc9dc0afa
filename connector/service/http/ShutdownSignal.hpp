/// Tells the threads of the server that it shuts down.
#pragma once

#include <connector/service/http/Clock.hpp>
#include <connector/service/http/WakeDescriptor.hpp>

#include <atomic>

namespace connector::service {

/// May be used from any thread.
class ShutdownSignal {
public:
    /// Limits all waiting for clients, including waiting that has begun.
    void raise(Clock::time_point newDeadline) {
        latest = newDeadline;
        wake.signal();
    }

    bool isRaised() const { return deadline() != Clock::time_point::max(); }

    /// @return when all waiting for clients ends; the latest possible time until the signal is
    ///         raised
    Clock::time_point deadline() const { return latest.load(); }

    /// @return a file descriptor that becomes readable when the signal is raised, and stays
    ///         readable
    int descriptor() const { return wake.descriptor(); }

private:
    std::atomic<Clock::time_point> latest{Clock::time_point::max()};
    WakeDescriptor wake;
};

} // namespace connector::service
