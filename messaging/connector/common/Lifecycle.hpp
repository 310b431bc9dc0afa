/// Starting and stopping.
#pragma once

#include <connector/platform/Export.hpp>

#include <atomic>

namespace connector::common {

/// The root of everything that runs for a while. All operations may be called from any thread; the
/// hooks run on the thread that starts or stops. The order of the virtual operations is part of the
/// binary interface.
class CONNECTOR_PLATFORM_EXPORT Lifecycle {
public:
    Lifecycle();
    virtual ~Lifecycle();

    Lifecycle(const Lifecycle&) = delete;
    Lifecycle& operator=(const Lifecycle&) = delete;

    /// Calls onStart; when that returns, isRunning is true.
    void start();

    /// Calls onStop; when that returns, isRunning is false.
    void stop();

    bool isRunning() const { return running; }

protected:
    virtual void onStart();
    virtual void onStop();

private:
    std::atomic<bool> running{false};
};

} // namespace connector::common
