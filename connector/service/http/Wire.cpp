#include <connector/service/http/Wire.hpp>

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace connector::service {

namespace {

int millisecondsUntil(Clock::time_point end) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count() + 1;
    return static_cast<int>(std::clamp<long long>(left, 0, 60 * 60 * 1000));
}

bool isTransient(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

Wire::Wire(Poco::Net::StreamSocket newSocket, const Ending& newEnding, Clock::duration patience)
    : client(std::move(newSocket)), ending(newEnding), deadline(Clock::now() + patience) {
}

void Wire::waitFor(short event) {
    for (;;) {
        const bool isEnding = ending.isAnnounced();
        const Clock::time_point end = std::min(deadline, ending.deadline());
        if (Clock::now() >= end)
            throw ClientLate();
        // Once announced, the end would wake us up again and again.
        pollfd waiting[] = {{descriptor(), event, 0},
                            {isEnding ? -1 : ending.descriptor(), POLLIN, 0}};
        const int count = ::poll(waiting, 2, millisecondsUntil(end));
        if (count > 0 && waiting[0].revents != 0)
            return;
        if (count < 0 && errno != EINTR)
            throw ClientLost("Connection cannot be watched");
    }
}

bool Wire::receive(std::string& buffer) {
    char bytes[16384];
    for (;;) {
        waitFor(POLLIN);
        const ssize_t count = ::recv(descriptor(), bytes, sizeof bytes, MSG_DONTWAIT);
        if (count >= 0) {
            buffer.append(bytes, static_cast<std::size_t>(count));
            return count > 0;
        }
        if (!isTransient(errno))
            throw ClientLost("Connection lost");
    }
}

bool Wire::receiveFirst(std::string& buffer) {
    pollfd waiting[] = {{descriptor(), POLLIN, 0}, {ending.descriptor(), POLLIN, 0}};
    ::poll(waiting, 2, millisecondsUntil(deadline));
    if (waiting[0].revents == 0 && waiting[1].revents != 0)
        throw ClientLate();
    return receive(buffer);
}

void Wire::sendWithMore(std::string_view bytes) {
    send(bytes, MSG_MORE);
}

void Wire::send(std::string_view bytes, int flags) {
    while (!bytes.empty()) {
        const ssize_t count =
            ::send(descriptor(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL | flags);
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (isTransient(errno))
            waitFor(POLLOUT);
        else
            throw ClientLost("Connection lost");
    }
}

void Wire::hangUp(Clock::duration patience) noexcept {
    try {
        ::shutdown(descriptor(), SHUT_WR);
        deadline = Clock::now() + patience;
        for (std::string forgotten; receive(forgotten);)
            forgotten.clear();
    } catch (const std::exception&) {
        // The connection is over one way or the other.
    }
}

} // namespace connector::service
