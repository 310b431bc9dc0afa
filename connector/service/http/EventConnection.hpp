/// The connection of one client that watches an option.
#pragma once

#include <connector/service/http/Clock.hpp>
#include <connector/service/http/EventStream.hpp>

#include <Poco/Net/StreamSocket.h>

#include <cstddef>
#include <memory>
#include <string>

namespace connector::service {

/// Never blocks. Not thread-safe.
class EventConnection {
public:
    /// @param newUnsent  bytes to send before the first event
    EventConnection(const Poco::Net::StreamSocket& newSocket,
                    std::shared_ptr<EventStream> newStream, std::string newUnsent,
                    Clock::time_point newNextComment);
    ~EventConnection(); ///< cancels the stream and closes the connection
    EventConnection(const EventConnection&) = delete;
    EventConnection& operator=(const EventConnection&) = delete;

    int descriptor() const { return socket.impl()->sockfd(); }
    Clock::time_point nextComment() const { return commentTime; }

    /// @return whether there are bytes that the client has not accepted yet
    bool hasUnsent() const { return sent < unsent.size(); }

    /// Discards what the client sends, and detects that it has closed the connection.
    void discardInput();

    /// Sends as much as the client accepts: the unsent bytes, then a value or a comment if one is
    /// due.
    /// @param secrets  keys whose values are masked
    void write(const Secrets& secrets, Clock::time_point now, Clock::duration commentInterval);

    void cancel() { stream->cancel(); }

    /// @return whether the client has closed the connection, or the stream has ended and all of it
    ///         has been sent
    bool isClosed() const { return closed; }

private:
    void fetchEvent(const Secrets& secrets);
    void commentIfDue(Clock::time_point now, Clock::duration interval);
    void send();

    Poco::Net::StreamSocket socket;
    const std::shared_ptr<EventStream> stream;
    std::string unsent;
    std::size_t sent = 0; // bytes of `unsent` that the client has accepted
    Clock::time_point commentTime;
    bool isSendingEvent = false; // `unsent` is a value, and the next one has not been requested yet
    bool closed = false;
};

} // namespace connector::service
