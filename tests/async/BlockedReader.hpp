/// A thread that is blocked in get.
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

/// Waits for another thread. Ends the program after a minute: a thread that was not woken is an
/// error, and cannot be joined.
template <typename T>
T within(std::future<T> result) {
    if (result.wait_for(std::chrono::minutes(1)) != std::future_status::ready) {
        std::fputs("a thread was not woken\n", stderr);
        std::abort();
    }
    return result.get();
}

/// Runs `action` on another thread and waits until it has returned.
template <typename Action>
auto onAnotherThread(Action action) {
    return within(std::async(std::launch::async, std::move(action)));
}

/// After the construction its thread waits in get.
class BlockedReader {
public:
    explicit BlockedReader(const std::shared_ptr<State>& state)
        : result(std::async(std::launch::async, [state] { return read(*state); })) {
        while (!isWaitedFor(*state))
            std::this_thread::yield();
    }

    /// Waits until get has returned or thrown.
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
