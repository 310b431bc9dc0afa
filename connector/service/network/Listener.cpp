#include <connector/service/network/Listener.hpp>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace connector::service {

namespace asio = boost::asio;

namespace {

constexpr std::chrono::milliseconds pauseWithoutDescriptors{100};
constexpr int sendBuffer = 256 * 1024; // of the system: a slow client costs no more

int openSpare() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

asio::ip::address addressOf(const sockaddr_storage& address) {
    if (address.ss_family == AF_INET) {
        const auto& in = reinterpret_cast<const sockaddr_in&>(address);
        return asio::ip::address_v4(ntohl(in.sin_addr.s_addr));
    }
    const auto& in = reinterpret_cast<const sockaddr_in6&>(address);
    asio::ip::address_v6::bytes_type bytes;
    std::memcpy(bytes.data(), &in.sin6_addr, bytes.size());
    return asio::ip::address_v6(bytes, in.sin6_scope_id);
}

/// Whether accept failed because of the client's connection, not of this process.
bool isOfClient(int error) {
    return error == ECONNABORTED || error == EINTR || error == EPROTO || error == EPERM ||
           error == ENETDOWN || error == EHOSTUNREACH || error == ENETUNREACH;
}

Peer peerOf(int descriptor, int family, const sockaddr_storage& remote, bool isTls) {
    Peer peer;
    if (family == AF_UNIX) {
        peer.isUnix = true;
        return peer;
    }
    sockaddr_storage local{};
    socklen_t length = sizeof local;
    ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&local), &length);
    peer.local = addressOf(local);
    peer.localPort = portOf(local);
    peer.remote = addressOf(remote);
    peer.isTls = isTls;
    const int on = 1; // otherwise pipelined responses wait for acknowledgements, 40 ms each
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return peer;
}

} // namespace

Listener::Listener(asio::io_context& newIo, const ListenAddress& address, bool newIsTls,
                   OnAccept newOnAccept)
    : io(newIo), isTls(newIsTls && !address.isUnix()), onAccept(std::move(newOnAccept)), socket(io),
      timer(io), spare(openSpare()) {
    ListeningSocket listening = listenOn(address);
    family = listening.family;
    text = (address.isUnix() ? "unix:" : isTls ? "https://" : "http://") + listening.name;
    path = address.path;
    file = listening.file;
    socket.assign(listening.release());
}

Listener::~Listener() {
    close();
    if (spare >= 0)
        ::close(spare);
}

void Listener::close() noexcept {
    if (!socket.is_open())
        return;
    if (!path.empty())
        removeFile(path, file); // before the socket ends: another server would take it for stale
    boost::system::error_code ignored;
    socket.close(ignored);
    try {
        timer.cancel();
    } catch (const boost::system::system_error&) { // cannot happen
    }
}

void Listener::start() {
    if (isWaiting || !socket.is_open())
        return;
    socket.async_wait(socket.wait_read, [this](const boost::system::error_code& error) {
        isWaiting = false;
        if (!error)
            acceptAll();
    });
    isWaiting = true; // not before: the call above may have no memory
}

/// Takes a limited number at a time, so that the clients that are there are served meanwhile.
void Listener::acceptAll() {
    constexpr int maxAtOnce = 64;
    for (int i = 0; i < maxAtOnce; ++i) {
        if (!acceptOne())
            break;
    }
    if (!isWaiting)
        start();
}

/// @return whether there may be more
bool Listener::acceptOne() {
    sockaddr_storage remote{};
    socklen_t length = sizeof remote;
    const int descriptor = ::accept4(socket.native_handle(), reinterpret_cast<sockaddr*>(&remote),
                                     &length, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (descriptor < 0) {
        if (isOfClient(errno))
            return true;
        if (errno != EAGAIN)
            reject();
        return false;
    }
    ::setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
    const Peer peer = peerOf(descriptor, family, remote, isTls);
    Socket client(io);
    boost::system::error_code error;
    client.assign(asio::generic::stream_protocol(family, 0), descriptor, error);
    if (error)
        ::close(descriptor);
    else
        onAccept(std::move(client), peer);
    return true;
}

/// Disconnects the next client with the descriptor that is kept for it. Without one, all wait.
void Listener::reject() noexcept {
    if (spare < 0)
        spare = openSpare();
    if (spare >= 0) {
        ::close(std::exchange(spare, -1));
        const int descriptor = ::accept4(socket.native_handle(), nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor >= 0)
            ::close(descriptor);
        spare = openSpare();
        return;
    }
    try {
        pause();
    } catch (const std::bad_alloc&) { // the server starts this listener again
    }
}

/// Waiting for the descriptor would not wait at all while clients are there.
void Listener::pause() {
    timer.expires_after(pauseWithoutDescriptors);
    timer.async_wait([this](const boost::system::error_code& error) {
        isWaiting = false;
        if (!error)
            start();
    });
    isWaiting = true;
}

} // namespace connector::service
