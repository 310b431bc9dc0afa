/// Starting and stopping.
#pragma once

#include <connector/platform/Export.hpp>

#include <atomic>

namespace connector::common {

/// The base class of everything that can be started and stopped. All operations may be called from
/// any thread; the hooks run on the calling thread. The order of the virtual functions is part of
/// the binary interface.
class CONNECTOR_PLATFORM_EXPORT Lifecycle {
public:
    Lifecycle();
    virtual ~Lifecycle();

    Lifecycle(const Lifecycle&) = delete;
    Lifecycle& operator=(const Lifecycle&) = delete;

    /// Calls onStart, and makes isRunning true when that returns.
    void start();

    /// Calls onStop, and makes isRunning false when that returns.
    void stop();

    bool isRunning() const { return running; }

protected:
    virtual void onStart();
    virtual void onStop();

private:
    std::atomic<bool> running{false};
};

} // namespace connector::common
