#include "network/SystemdNotifier.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

namespace connector_config {

namespace {

/// In the clock that systemd compares it with.
std::string monotonicMicroseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const auto seconds = static_cast<std::int64_t>(now.tv_sec);
    return std::to_string(seconds * 1000000 + now.tv_nsec / 1000);
}

} // namespace

SystemdNotifier::SystemdNotifier() {
    const char* const path = std::getenv("NOTIFY_SOCKET");
    sockaddr_un address{};
    if (path == nullptr || (path[0] != '/' && path[0] != '@') ||
        std::strlen(path) >= sizeof address.sun_path)
        return;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path, std::strlen(path));
    if (path[0] == '@') // an abstract name begins with a NUL
        address.sun_path[0] = '\0';
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + std::strlen(path));
    socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), length) != 0 &&
        socket >= 0) {
        ::close(socket);
        socket = -1;
    }
}

SystemdNotifier::~SystemdNotifier() {
    if (socket >= 0)
        ::close(socket);
}

void SystemdNotifier::ready() const {
    send("READY=1");
}

void SystemdNotifier::reloading() const {
    send(("RELOADING=1\nMONOTONIC_USEC=" + monotonicMicroseconds()).c_str());
}

void SystemdNotifier::stopping() const {
    send("STOPPING=1");
}

void SystemdNotifier::send(const char* message) const {
    if (socket >= 0)
        ::send(socket, message, std::strlen(message), MSG_NOSIGNAL);
}

} // namespace connector_config
