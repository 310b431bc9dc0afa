/// Threads that start at the same time.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

namespace test {

/// Runs every action on a thread of its own, all at the same time, and waits until all have
/// returned.
inline void race(const std::vector<std::function<void()>>& actions) {
    std::atomic<std::size_t> waiting{actions.size()};
    std::vector<std::thread> threads;
    for (const auto& action : actions)
        threads.emplace_back([&] {
            --waiting;
            while (waiting != 0)
                std::this_thread::yield();
            action();
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace test
