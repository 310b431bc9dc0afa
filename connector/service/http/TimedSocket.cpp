#include <connector/service/http/TimedSocket.hpp>

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace connector::service {

bool isTransient(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

TimedSocket::TimedSocket(Poco::Net::StreamSocket newSocket, const ShutdownSignal& newShutdown,
                         Clock::duration timeout)
    : socket(std::move(newSocket)), shutdown(newShutdown), deadline(Clock::now() + timeout) {
}

void TimedSocket::waitUntilReady(short event) {
    for (;;) {
        const bool isShuttingDown = shutdown.isRaised();
        const Clock::time_point end = std::min(deadline, shutdown.deadline());
        if (Clock::now() >= end)
            throw ClientTimeout();
        // The signal's descriptor stays readable once raised, and polling it would not block.
        pollfd polled[] = {{descriptor(), event, 0},
                           {isShuttingDown ? -1 : shutdown.descriptor(), POLLIN, 0}};
        const int count = ::poll(polled, 2, pollTimeout(end));
        if (count > 0 && polled[0].revents != 0)
            return;
        if (count < 0 && errno != EINTR)
            throw ConnectionLost("Connection cannot be watched");
    }
}

bool TimedSocket::receive(std::string& buffer) {
    char bytes[16384];
    for (;;) {
        waitUntilReady(POLLIN);
        const ssize_t count = ::recv(descriptor(), bytes, sizeof bytes, MSG_DONTWAIT);
        if (count >= 0) {
            buffer.append(bytes, static_cast<std::size_t>(count));
            return count > 0;
        }
        if (!isTransient(errno))
            throw ConnectionLost("Connection lost");
    }
}

bool TimedSocket::receiveFirst(std::string& buffer) {
    pollfd polled[] = {{descriptor(), POLLIN, 0}, {shutdown.descriptor(), POLLIN, 0}};
    ::poll(polled, 2, pollTimeout(deadline));
    if (polled[0].revents == 0 && polled[1].revents != 0)
        throw ClientTimeout();
    return receive(buffer);
}

void TimedSocket::sendPart(std::string_view bytes) {
    send(bytes, MSG_MORE);
}

void TimedSocket::send(std::string_view bytes, int flags) {
    while (!bytes.empty()) {
        const ssize_t count =
            ::send(descriptor(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL | flags);
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (isTransient(errno))
            waitUntilReady(POLLOUT);
        else
            throw ConnectionLost("Connection lost");
    }
}

void TimedSocket::closeGracefully(Clock::duration timeout) noexcept {
    try {
        ::shutdown(descriptor(), SHUT_WR);
        restartTimeout(timeout);
        for (std::string discarded; receive(discarded);)
            discarded.clear();
    } catch (const std::exception&) {
        // Either way the connection ends here.
    }
}

} // namespace connector::service
