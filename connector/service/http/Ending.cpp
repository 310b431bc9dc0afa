#include <connector/service/http/Ending.hpp>

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace connector::service {

Ending::Ending() : readable(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (readable < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

Ending::~Ending() {
    ::close(readable);
}

void Ending::announce(Clock::time_point newDeadline) {
    latest = newDeadline;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(readable, &one, sizeof one);
}

} // namespace connector::service
