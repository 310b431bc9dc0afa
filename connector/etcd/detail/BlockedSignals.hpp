/// Threads that handle no signals.
#pragma once

#include <csignal>

namespace connector::etcd::detail {

/// Threads that are started while this object exists inherit its mask, so that only the
/// application's threads handle signals.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t before{};
};

} // namespace connector::etcd::detail
