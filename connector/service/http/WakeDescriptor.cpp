#include <connector/service/http/WakeDescriptor.hpp>

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace connector::service {

WakeDescriptor::WakeDescriptor() : event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (event < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

WakeDescriptor::~WakeDescriptor() {
    ::close(event);
}

void WakeDescriptor::signal() noexcept {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(event, &one, sizeof one);
}

void WakeDescriptor::reset() noexcept {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t size = ::read(event, &count, sizeof count);
}

} // namespace connector::service
