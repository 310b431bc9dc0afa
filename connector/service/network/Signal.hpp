/// Tells one thread from any other that there is something to do, without memory.
#pragma once

namespace connector::service {

/// An eventfd. Several signals before the thread runs are one.
class Signal {
public:
    /// @throws std::system_error  no descriptor is left
    Signal();
    ~Signal();
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    /// May be called from any thread, with any lock held.
    void raise() const noexcept;

    /// Takes back all signals before this call.
    void clear() const noexcept;

    /// @return the descriptor, which is readable while a signal is raised
    int get() const { return descriptor; }

private:
    const int descriptor;
};

} // namespace connector::service
