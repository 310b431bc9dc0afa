/// Runs an action on the network thread after a signal of any thread.
#pragma once

#include <connector/service/network/Signal.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>

#include <functional>
#include <memory>

namespace connector::service {

/// Used by the network thread. Other threads share the signal only, which needs no io_context.
class Wake {
public:
    /// @param newAction  runs on the network thread, once for all signals before it
    /// @throws std::system_error  no descriptor is left
    Wake(boost::asio::io_context& io, std::shared_ptr<const Signal> newSignal,
         std::function<void()> newAction);

    /// Waits for signals. Called once, and again when a handler of the thread has thrown; then the
    /// action runs once more, since its run may be the one that failed.
    void start();

    void close() noexcept;

private:
    void wait();

    const std::shared_ptr<const Signal> signal;
    boost::asio::posix::stream_descriptor descriptor;
    const std::function<void()> action;
    bool isWaiting = false;
};

} // namespace connector::service
