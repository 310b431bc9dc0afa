/// A client's socket with one time limit for everything that the client does. A client that sends a
/// byte now and then times out like one that sends nothing.
#pragma once

#include <connector/service/http/ShutdownSignal.hpp>

#include <Poco/Net/StreamSocket.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace connector::service {

/// @return whether a call on a non-blocking socket failed only because it would have blocked
bool isTransient(int error);

/// The client has closed the connection, or the connection has failed.
class ConnectionLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The client did not send or receive in time, or the server is shutting down.
class ClientTimeout : public ConnectionLost {
public:
    ClientTimeout() : ConnectionLost("Request did not arrive in time") {}
};

/// Not thread-safe.
class TimedSocket {
public:
    /// @param newShutdown  shortens the timeout when it is raised; must outlive this object
    TimedSocket(Poco::Net::StreamSocket newSocket, const ShutdownSignal& newShutdown,
                Clock::duration timeout);

    /// Waits for bytes and appends them to the buffer.
    /// @return false if the client has shut down its side of the connection
    /// @throws ClientTimeout, ConnectionLost
    bool receive(std::string& buffer);

    /// The same for the first bytes of a client. Does not wait any longer once the server shuts
    /// down.
    bool receiveFirst(std::string& buffer);

    /// Even if no time is left, sends what the client accepts without waiting.
    /// @throws ClientTimeout, ConnectionLost
    void send(std::string_view bytes) { send(bytes, 0); }

    /// The same, but the system may hold the bytes back until the next call of send, to combine
    /// them.
    void sendPart(std::string_view bytes);

    /// Shuts down our side of the connection, then discards what the client sends until it closes
    /// the connection. Closing the socket at once would reset the connection if the client was
    /// still sending, and the client could lose the response.
    void closeGracefully(Clock::duration timeout) noexcept;

    /// Replaces the current time limit.
    void restartTimeout(Clock::duration timeout) { deadline = Clock::now() + timeout; }

private:
    void waitUntilReady(short event);
    void send(std::string_view bytes, int flags);
    int descriptor() const { return socket.impl()->sockfd(); }

    Poco::Net::StreamSocket socket;
    const ShutdownSignal& shutdown;
    Clock::time_point deadline;
};

} // namespace connector::service
