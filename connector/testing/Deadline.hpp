/// Code that may wait for ever.
#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace connector::testing {

/// Runs an action on another thread.
/// @param action  owns everything that it uses: when it does not end, its thread is left behind
/// @return whether it has ended within the time
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
