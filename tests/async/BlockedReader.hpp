/// A thread that waits for a result.
#pragma once

#include "async/Internals.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace test {

/// Waits for another thread, but not for ever: a thread that nobody wakes fails the test.
template <typename T>
T within(std::future<T> result) {
    if (result.wait_for(std::chrono::minutes(1)) != std::future_status::ready) {
        std::fputs("a thread was not woken\n", stderr);
        std::abort(); // it could not be joined
    }
    return result.get();
}

/// Runs `action` on a thread of its own and waits for its end.
template <typename Action>
auto onAnotherThread(Action action) {
    return within(std::async(std::launch::async, std::move(action)));
}

/// Once constructed, its thread sleeps in get.
class BlockedReader {
public:
    explicit BlockedReader(const std::shared_ptr<State>& state)
        : result(std::async(std::launch::async, [state] { return read(*state); })) {
        while (!isWaitedFor(*state))
            std::this_thread::yield();
    }

    /// Waits until get is left.
    /// @return the value in digits, or the text of the exception
    std::string outcome() { return within(std::move(result)); }

private:
    static std::string read(State& state) {
        try {
            return std::to_string(state.get());
        } catch (const std::exception& thrown) {
            return thrown.what();
        }
    }

    std::future<std::string> result;
};

} // namespace test
