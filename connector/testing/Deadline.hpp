/// Runs code that may block forever.
#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace connector::testing {

/// Runs an action on another thread.
/// @param action  owns everything that it uses: if it does not end, its thread is detached
/// @return whether it ended within the time
template <typename Action>
bool endsWithin(std::chrono::milliseconds time, Action action) {
    auto ended = std::make_shared<std::promise<void>>();
    std::future<void> future = ended->get_future();
    std::thread([ended, action = std::move(action)]() mutable {
        action();
        ended->set_value();
    }).detach();
    return future.wait_for(time) == std::future_status::ready;
}

} // namespace connector::testing
