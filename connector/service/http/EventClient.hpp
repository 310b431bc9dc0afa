/// One client that watches an option.
#pragma once

#include <connector/service/http/Ending.hpp>
#include <connector/service/http/EventStream.hpp>

#include <Poco/Net/StreamSocket.h>

#include <cstddef>
#include <memory>
#include <string>

namespace connector::service {

/// Never waits. For one thread.
class EventClient {
public:
    /// @param newText  what is written first
    EventClient(const Poco::Net::StreamSocket& newSocket, std::shared_ptr<EventStream> newStream,
                std::string newText, Clock::time_point newNextComment);
    ~EventClient(); ///< cancels the stream and closes the connection
    EventClient(const EventClient&) = delete;
    EventClient& operator=(const EventClient&) = delete;

    int descriptor() const { return socket.impl()->sockfd(); }
    Clock::time_point nextComment() const { return commentTime; }

    /// @return whether there is something to write that the client did not take yet
    bool hasText() const { return written < text.size(); }

    /// Forgets what the client sends; when it hangs up, it has gone.
    void read();

    /// Writes a value or a comment, if there is one and the client takes it.
    void write(const Secrets& secrets, Clock::time_point now, Clock::duration commentInterval);

    void cancel() { stream->cancel(); }

    /// @return whether the client hung up, or its stream ended and was written to the end
    bool hasGone() const { return gone; }

private:
    void fetchEvent(const Secrets& secrets);
    void commentIfDue(Clock::time_point now, Clock::duration interval);
    void send();

    Poco::Net::StreamSocket socket;
    const std::shared_ptr<EventStream> stream;
    std::string text;
    std::size_t written = 0;
    Clock::time_point commentTime;
    bool isEvent = false; // the text holds a value, and the next one was not requested
    bool gone = false;
};

} // namespace connector::service
