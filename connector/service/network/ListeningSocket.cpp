#include <connector/service/network/ListeningSocket.hpp>

#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace connector::service {

namespace {

constexpr int backlog = 1024;

std::string nameOf(const ListenAddress& address) {
    if (address.isUnix())
        return "unix:" + address.path;
    const bool isIpv6 = address.host.find(':') != address.host.npos;
    return (isIpv6 ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

[[noreturn]] void fail(const ListenAddress& address, const std::string& reason) {
    throw std::runtime_error("Cannot listen on " + nameOf(address) + ": " + reason);
}

void check(const ListenAddress& address, int result) {
    if (result < 0)
        fail(address, std::generic_category().message(errno));
}

ListeningSocket makeSocket(const ListenAddress& address, int family) {
    const int descriptor = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    check(address, descriptor);
    return {descriptor, family};
}

using AddressList = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

AddressList resolve(const ListenAddress& address) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo* list = nullptr;
    const int error =
        ::getaddrinfo(address.host.c_str(), std::to_string(address.port).c_str(), &hints, &list);
    if (error != 0)
        fail(address, ::gai_strerror(error));
    return {list, &::freeaddrinfo};
}

/// @return "HOST:PORT" in numbers
std::string boundName(int descriptor) {
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&bound), &length);
    char host[INET6_ADDRSTRLEN] = "";
    const bool isIpv6 = bound.ss_family == AF_INET6;
    if (isIpv6)
        ::inet_ntop(AF_INET6, &reinterpret_cast<sockaddr_in6&>(bound).sin6_addr, host, sizeof host);
    else
        ::inet_ntop(AF_INET, &reinterpret_cast<sockaddr_in&>(bound).sin_addr, host, sizeof host);
    const std::string name = isIpv6 ? "[" + std::string(host) + "]" : host;
    return name + ":" + std::to_string(portOf(bound));
}

ListeningSocket listenOnTcp(const ListenAddress& address) {
    const AddressList list = resolve(address);
    ListeningSocket socket = makeSocket(address, list->ai_family);
    const int on = 1;
    const int off = 0;
    // Without SO_REUSEPORT, which would let other processes listen on the same port.
    ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (list->ai_family == AF_INET6) // "::" stands for all addresses, those of IPv4 included
        ::setsockopt(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
    check(address, ::bind(socket.get(), list->ai_addr, list->ai_addrlen));
    check(address, ::listen(socket.get(), backlog));
    socket.name = boundName(socket.get());
    return socket;
}

sockaddr_un unixAddress(const ListenAddress& address) {
    sockaddr_un result{};
    result.sun_family = AF_UNIX;
    if (address.path.size() >= sizeof result.sun_path)
        fail(address, "The path is too long");
    std::memcpy(result.sun_path, address.path.c_str(), address.path.size());
    return result;
}

/// @return whether a process has the socket, of whatever type
bool isLive(const ListenAddress& address, const sockaddr_un& path) {
    const ListeningSocket probe = makeSocket(address, AF_UNIX);
    const auto* const target = reinterpret_cast<const sockaddr*>(&path);
    return ::connect(probe.get(), target, sizeof path) == 0 ||
           (errno != ECONNREFUSED && errno != ENOENT);
}

FileIdentity identityOf(const char* path) noexcept {
    struct stat status {};
    if (::lstat(path, &status) != 0)
        return {};
    return {status.st_dev, status.st_ino};
}

/// Removes the socket of a server that is gone. Other files stay.
void removeStale(const ListenAddress& address, const sockaddr_un& path) {
    struct stat status {};
    if (::lstat(path.sun_path, &status) != 0)
        return;
    if (!S_ISSOCK(status.st_mode))
        fail(address, "There is another file of that name");
    if (isLive(address, path))
        fail(address, std::generic_category().message(EADDRINUSE));
    ::unlink(path.sun_path);
}

ListeningSocket listenOnUnix(const ListenAddress& address) {
    const sockaddr_un path = unixAddress(address);
    removeStale(address, path);
    ListeningSocket socket = makeSocket(address, AF_UNIX);
    ::fchmod(socket.get(), 0600); // Linux gives the file this mode, so it never has another one
    check(address, ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&path), sizeof path));
    ::chmod(path.sun_path, 0600);
    socket.file = identityOf(path.sun_path);
    check(address, ::listen(socket.get(), backlog));
    socket.name = address.path;
    return socket;
}

} // namespace

ListeningSocket::~ListeningSocket() {
    if (descriptor >= 0)
        ::close(descriptor);
}

ListeningSocket::ListeningSocket(ListeningSocket&& other) noexcept
    : family(other.family), name(std::move(other.name)), file(other.file),
      descriptor(std::exchange(other.descriptor, -1)) {
}

int ListeningSocket::release() {
    return std::exchange(descriptor, -1);
}

void removeFile(const std::string& path, const FileIdentity& identity) noexcept {
    const FileIdentity now = identityOf(path.c_str());
    if (now.device == identity.device && now.number == identity.number)
        ::unlink(path.c_str());
}

ListeningSocket listenOn(const ListenAddress& address) {
    return address.isUnix() ? listenOnUnix(address) : listenOnTcp(address);
}

std::uint16_t portOf(const sockaddr_storage& address) {
    return ntohs(address.ss_family == AF_INET6
                     ? reinterpret_cast<const sockaddr_in6&>(address).sin6_port
                     : reinterpret_cast<const sockaddr_in&>(address).sin_port);
}

} // namespace connector::service
