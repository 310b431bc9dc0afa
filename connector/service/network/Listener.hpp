/// A socket that accepts connections.
#pragma once

#include <connector/service/HttpOptions.hpp>
#include <connector/service/network/ListeningSocket.hpp>
#include <connector/service/network/Peer.hpp>
#include <connector/service/network/Transport.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <memory>
#include <string>

namespace connector::service {

/// Used by the network thread. When the process has no descriptor left, a client is disconnected
/// at once: one descriptor is kept for that.
class Listener {
public:
    using OnAccept = std::function<void(Socket, Peer)>;

    /// Listens.
    /// @param isTls  whether the clients of a TCP address are expected to speak TLS
    /// @throws std::runtime_error "Cannot listen on " + address + ": " + reason
    Listener(boost::asio::io_context& newIo, const ListenAddress& address, bool isTls,
             OnAccept newOnAccept);

    /// Removes the file of a Unix socket.
    ~Listener();

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// Accepts clients from now on. Called once, and again when a handler of the thread has thrown.
    void start();

    /// Accepts no more clients.
    void close() noexcept;

    /// @return "http://HOST:PORT", "https://HOST:PORT" or "unix:PATH"
    const std::string& url() const { return text; }

private:
    void acceptAll();
    bool acceptOne();
    void reject() noexcept;
    void pause();

    boost::asio::io_context& io;
    const bool isTls;
    const OnAccept onAccept;
    std::string path; // of a Unix socket
    FileIdentity file;
    int family = 0;
    boost::asio::posix::stream_descriptor socket;
    boost::asio::steady_timer timer;
    int spare = -1;
    bool isWaiting = false;
    std::string text;
};

} // namespace connector::service
