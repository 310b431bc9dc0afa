/// A file descriptor by which one thread wakes up another that blocks in poll().
#pragma once

namespace connector::service {

/// May be used from any thread.
class WakeDescriptor {
public:
    /// @throws std::system_error "eventfd"
    WakeDescriptor();
    ~WakeDescriptor();
    WakeDescriptor(const WakeDescriptor&) = delete;
    WakeDescriptor& operator=(const WakeDescriptor&) = delete;

    /// Makes the descriptor readable.
    void signal() noexcept;

    /// Makes it unreadable again.
    void reset() noexcept;

    int descriptor() const { return event; }

private:
    const int event;
};

} // namespace connector::service
