#include <connector/service/network/Signal.hpp>

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace connector::service {

Signal::Signal() : descriptor(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

Signal::~Signal() {
    ::close(descriptor);
}

void Signal::raise() const noexcept {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto size = ::write(descriptor, &one, sizeof one);
}

void Signal::clear() const noexcept {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto size = ::read(descriptor, &count, sizeof count);
}

} // namespace connector::service
