/// Waits for SIGHUP.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace connector_config {

/// Blocks SIGHUP in the calling thread and in the threads that it starts afterwards, so that the
/// signal does not end the program. Must be called before the process creates another thread.
void blockHangup();

/// Calls a function for SIGHUP. Signals that arrive during a call cause one more call, as does a
/// signal that arrived earlier, after blockHangup.
class HangupThread {
public:
    /// @param newOnHangup  called on a thread of this object, which blocks all signals; its
    ///                     exceptions are ignored
    /// @throws std::system_error if there are too many threads
    explicit HangupThread(std::function<void()> newOnHangup);

    /// Waits for a running call.
    ~HangupThread();
    HangupThread(const HangupThread&) = delete;
    HangupThread& operator=(const HangupThread&) = delete;

private:
    void run() const;
    void callFunction() const noexcept;

    const std::function<void()> onHangup;
    std::atomic<bool> isStopped{false};
    std::thread thread;
};

} // namespace connector_config
