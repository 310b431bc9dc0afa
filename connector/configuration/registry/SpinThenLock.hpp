/// How a lookup takes the configuration's mutex.
#pragma once

#include <chrono>
#include <mutex>
#include <thread>

namespace connector::configuration::detail {

/// The longest time for which spinUntilLocked spins. Putting a thread to sleep and waking it takes
/// about as long; a lookup holds the mutex for far less.
inline constexpr std::chrono::microseconds maxSpinTime{10};

/// Signals a spin loop to the processor. Takes from 5 to 50 nanoseconds.
inline void pauseProcessor() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

/// Tries to take the mutex for maxSpinTime. Pauses between two attempts, twice as long each time,
/// up to a number of pauses that is short compared to maxSpinTime on every processor.
/// @tparam Clock  monotonic, as std::chrono::steady_clock
/// @param pause   called for each pause
template <typename Clock, typename Lock, typename Pause>
void spinUntilLocked(Lock& lock, Pause pause) {
    constexpr int maxPauses = 16;
    const auto deadline = Clock::now() + maxSpinTime;
    for (int pauses = 1; !lock.try_lock() && Clock::now() < deadline;) {
        for (int i = 0; i < pauses; ++i)
            pause();
        if (pauses < maxPauses)
            pauses *= 2;
    }
}

/// @return whether another thread can run while this one spins
inline bool hasSeveralProcessors() {
    static const bool severalProcessors = std::thread::hardware_concurrency() != 1;
    return severalProcessors;
}

/// Takes the mutex. Spins for a moment before it sleeps: with two threads that look up keys all the
/// time, this cuts the time of a lookup by about a third.
inline std::unique_lock<std::recursive_mutex> spinThenLock(std::recursive_mutex& mutex) {
    std::unique_lock<std::recursive_mutex> lock(mutex, std::try_to_lock);
    if (!lock.owns_lock() && hasSeveralProcessors())
        spinUntilLocked<std::chrono::steady_clock>(lock, pauseProcessor);
    if (!lock.owns_lock())
        lock.lock();
    return lock;
}

} // namespace connector::configuration::detail
