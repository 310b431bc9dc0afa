#include "commands/HangupThread.hpp"

#include <csignal>

#include <pthread.h>

namespace connector_config {

namespace {

sigset_t onlyHangup() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGHUP);
    return signals;
}

/// During its lifetime, the calling thread blocks all signals. A new thread inherits that.
class AllSignalsBlocked {
public:
    AllSignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;

private:
    sigset_t before{};
};

} // namespace

void blockHangup() {
    const sigset_t hangup = onlyHangup();
    pthread_sigmask(SIG_BLOCK, &hangup, nullptr);
}

HangupThread::HangupThread(std::function<void()> newOnHangup) : onHangup(std::move(newOnHangup)) {
    const AllSignalsBlocked blocked;
    thread = std::thread([this] { run(); });
}

HangupThread::~HangupThread() {
    isStopped.store(true);
    pthread_kill(thread.native_handle(), SIGHUP); // ends the wait
    thread.join();
}

void HangupThread::callFunction() const noexcept {
    try {
        onHangup();
    } catch (...) { // no caller could handle it
    }
}

void HangupThread::run() const {
    const sigset_t hangup = onlyHangup();
    while (!isStopped.load()) {
        int received = 0;
        if (sigwait(&hangup, &received) == 0 && !isStopped.load())
            callFunction();
    }
}

} // namespace connector_config
