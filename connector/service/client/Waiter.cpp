#include <connector/service/client/Waiter.hpp>

namespace connector::service {

/// stop sets the flag and then stops the context. So the flag is read after the restart, which
/// would undo the other.
Waiter::Result Waiter::wait(const bool& isDone, Duration timeout) {
    io.restart();
    if (!stopped)
        io.run_for(timeout);
    if (stopped)
        return Result::Stopped;
    return isDone ? Result::Done : Result::TimedOut;
}

void Waiter::drain(const bool& isDone) {
    while (!isDone) { // stop may interrupt it
        io.restart();
        io.run();
    }
}

void Waiter::stop() noexcept {
    stopped = true;
    io.stop();
}

} // namespace connector::service
