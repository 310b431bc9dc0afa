#include "Proxy.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <deque>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace test {

namespace {

using Clock = std::chrono::steady_clock;

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int makeSocket() {
    return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

/// One direction.
struct Lane {
    int from;
    int to;
    std::deque<std::pair<Clock::time_point, std::string>> waiting;

    /// @return the bytes that came; -1: the end
    std::int64_t take(Clock::time_point when) {
        std::array<char, 65536> part;
        const ssize_t count = ::recv(from, part.data(), part.size(), MSG_DONTWAIT);
        if (count > 0)
            waiting.emplace_back(when, std::string(part.data(), static_cast<std::size_t>(count)));
        return count > 0 ? count : count < 0 && errno == EAGAIN ? 0 : -1;
    }

    /// @return whether the other side is there
    bool give() {
        while (!waiting.empty() && waiting.front().first <= Clock::now()) {
            std::string& bytes = waiting.front().second;
            const ssize_t count =
                ::send(to, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
            if (count < 0)
                return errno == EAGAIN;
            bytes.erase(0, static_cast<std::size_t>(count));
            if (bytes.empty())
                waiting.pop_front();
        }
        return true;
    }
};

} // namespace

/// A connection and the one that it is forwarded to.
class Proxy::Link {
public:
    Link(int newClient, int port) : client(newClient), server(makeSocket()) {
        const sockaddr_in address = loopback(port);
        isOpen =
            ::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        const int on = 1;
        for (const int file : {client, server})
            ::setsockopt(file, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    ~Link() {
        ::close(client);
        ::close(server);
    }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    const int client;
    const int server;
    bool isOpen = false;
    Lane up{client, server, {}};
    Lane down{server, client, {}};
};

Proxy::Proxy(int newTarget)
    : target(newTarget), listener(makeSocket()), bell(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    sockaddr_in address = loopback(0);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (::bind(listener, generic, size) != 0 || ::listen(listener, 128) != 0 ||
        ::getsockname(listener, generic, &size) != 0)
        throw std::runtime_error("the proxy cannot listen");
    port = ntohs(address.sin_port);
    thread = std::thread([this] { run(); });
}

Proxy::~Proxy() {
    isOver = true;
    wake();
    thread.join();
    ::close(listener);
    ::close(bell);
}

void Proxy::wake() const {
    const std::uint64_t once = 1;
    [[maybe_unused]] const ssize_t written = ::write(bell, &once, sizeof once);
}

void Proxy::pass() {
    bytesUntilCut = -1;
    delayMilliseconds = 0;
    mode = Mode::Pass;
    wake();
}

void Proxy::refuse() {
    mode = Mode::Refuse;
    wake();
}

void Proxy::drop() {
    mode = Mode::Drop;
    wake();
}

void Proxy::delay(std::chrono::milliseconds time) {
    delayMilliseconds = time.count();
    wake();
}

void Proxy::cutAfter(std::int64_t bytes) {
    bytesUntilCut = bytes;
    wake();
}

void Proxy::run() {
    while (!isOver) {
        std::vector<pollfd> files = {{bell, POLLIN, 0}, {listener, POLLIN, 0}};
        bool isWaiting = false;
        for (const Link& link : links) {
            if (mode != Mode::Drop) {
                files.push_back({link.client, POLLIN, 0});
                files.push_back({link.server, POLLIN, 0});
            }
            isWaiting = isWaiting || !link.up.waiting.empty() || !link.down.waiting.empty();
        }
        ::poll(files.data(), files.size(), isWaiting && mode == Mode::Pass ? 1 : -1);
        std::uint64_t ignored = 0;
        [[maybe_unused]] const ssize_t count = ::read(bell, &ignored, sizeof ignored);
        if (files[1].revents != 0)
            accept();
        forward();
    }
}

void Proxy::accept() {
    const int client = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0)
        return;
    if (mode == Mode::Refuse)
        ::close(client);
    else
        links.emplace_back(client, target);
}

void Proxy::forward() {
    if (mode == Mode::Drop)
        return;
    if (mode == Mode::Refuse)
        links.clear();
    const auto when = Clock::now() + std::chrono::milliseconds(delayMilliseconds);
    for (Link& link : links) {
        const std::int64_t received = link.down.take(when);
        bytesReceived += received > 0 ? received : 0;
        link.isOpen = link.isOpen && received >= 0 && link.up.take(when) >= 0;
        if (bytesUntilCut >= 0 && received > bytesUntilCut) {
            link.down.waiting.back().second.resize(static_cast<std::size_t>(bytesUntilCut));
            link.down.give();
            link.isOpen = false;
            bytesUntilCut = -1;
        } else if (bytesUntilCut >= 0 && received > 0) {
            bytesUntilCut -= received;
        }
        link.isOpen = link.isOpen && link.up.give() && link.down.give();
    }
    links.remove_if([](const Link& link) { return !link.isOpen; });
}

} // namespace test
