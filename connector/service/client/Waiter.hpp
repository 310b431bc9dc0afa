/// Waits for asynchronous operations, from a function that blocks.
#pragma once

#include <boost/asio/io_context.hpp>

#include <atomic>
#include <chrono>

namespace connector::service {

/// All functions except stop are called by one thread.
class Waiter {
public:
    using Duration = std::chrono::milliseconds;

    enum class Result { Done, TimedOut, Stopped };

    boost::asio::io_context& context() { return io; }

    /// Runs the handlers of the operation in progress.
    /// @param isDone  becomes true when the last of them is called
    Result wait(const bool& isDone, Duration timeout);

    /// The same without an end. The operation must have been cancelled.
    void drain(const bool& isDone);

    /// Makes this and all later waits return Stopped. May be called from any thread.
    void stop() noexcept;

    bool isStopped() const noexcept { return stopped; }

private:
    boost::asio::io_context io{1};
    std::atomic<bool> stopped{false};
};

} // namespace connector::service
