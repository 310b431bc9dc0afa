#include <connector/service/network/Wake.hpp>

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>

namespace connector::service {

namespace {

int duplicate(int descriptor) {
    const int copy = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (copy < 0)
        throw std::system_error(errno, std::generic_category(), "dup");
    return copy;
}

} // namespace

Wake::Wake(boost::asio::io_context& io, std::shared_ptr<const Signal> newSignal,
           std::function<void()> newAction)
    : signal(std::move(newSignal)), descriptor(io, duplicate(signal->get())),
      action(std::move(newAction)) {
}

void Wake::start() {
    wait();
    signal->raise();
}

void Wake::wait() {
    if (isWaiting || !descriptor.is_open())
        return;
    descriptor.async_wait(descriptor.wait_read, [this](const boost::system::error_code& error) {
        isWaiting = false;
        if (error)
            return;
        signal->clear(); // before the action: a signal that comes meanwhile runs it once more
        wait();
        action();
    });
    isWaiting = true; // not before: the call above may have no memory
}

void Wake::close() noexcept {
    boost::system::error_code ignored;
    descriptor.close(ignored);
}

} // namespace connector::service
