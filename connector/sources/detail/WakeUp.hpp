/// Wakes a thread that waits for descriptors.
#pragma once

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace connector::sources::detail {

/// ring may be called from any thread; the descriptor stays readable afterwards.
class WakeUp {
public:
    /// @throws std::system_error
    WakeUp() : bell(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
        if (bell < 0)
            throw std::system_error(errno, std::generic_category(), "Files cannot be watched");
    }
    ~WakeUp() { ::close(bell); }
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    void ring() const {
        const std::uint64_t once = 1;
        // Fails only when the counter overflows 64 bits.
        [[maybe_unused]] const ssize_t written = ::write(bell, &once, sizeof once);
    }

    int descriptor() const { return bell; }

private:
    const int bell;
};

} // namespace connector::sources::detail
