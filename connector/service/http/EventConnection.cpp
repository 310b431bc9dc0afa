#include <connector/service/http/EventConnection.hpp>

#include <connector/service/http/TimedSocket.hpp>

#include <cerrno>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace connector::service {

namespace {

/// Limits how much the system buffers for a slow reader, which receives everything in the buffers
/// before a newer value. If this fails, the reader gets more outdated values, which is not an
/// error.
void limitBuffers(int descriptor) {
    const int bufferSize = 16 * 1024;
    ::setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &bufferSize, sizeof bufferSize);
    const int maxUnsent = 1; // report as writable only when everything before has left the buffer
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NOTSENT_LOWAT, &maxUnsent, sizeof maxUnsent);
}

} // namespace

EventConnection::EventConnection(const Poco::Net::StreamSocket& newSocket,
                                 std::shared_ptr<EventStream> newStream, std::string newUnsent,
                                 Clock::time_point newNextComment)
    : socket(newSocket), stream(std::move(newStream)), unsent(std::move(newUnsent)),
      commentTime(newNextComment) {
    limitBuffers(descriptor());
}

EventConnection::~EventConnection() {
    stream->cancel();
    ::shutdown(descriptor(), SHUT_WR);
}

void EventConnection::discardInput() {
    char discarded[4096];
    const ssize_t count = ::recv(descriptor(), discarded, sizeof discarded, MSG_DONTWAIT);
    if (count == 0 || (count < 0 && !isTransient(errno)))
        closed = true;
}

void EventConnection::write(const Secrets& secrets, Clock::time_point now,
                            Clock::duration commentInterval) {
    // Read before the last value is fetched: a value that arrives in between must not be lost.
    const bool hadEnded = stream->hasEnded();
    send();
    fetchEvent(secrets);
    commentIfDue(now, commentInterval);
    send();
    if (hasUnsent())
        return;
    closed = closed || hadEnded;
    if (isSendingEvent) {
        isSendingEvent = false;
        stream->requestNext(); // a value that is available already wakes up the writer
    }
}

void EventConnection::fetchEvent(const Secrets& secrets) {
    if (hasUnsent() || isSendingEvent)
        return;
    if (const std::optional<Option> option = stream->take()) {
        unsent = formatEvent(secrets.masked(*option));
        sent = 0;
        isSendingEvent = true;
    }
}

/// Skips the comment if there are unsent bytes, which keep the connection alive as well.
void EventConnection::commentIfDue(Clock::time_point now, Clock::duration interval) {
    if (now < commentTime)
        return;
    commentTime = now + interval;
    if (!hasUnsent()) {
        unsent = ":\n\n";
        sent = 0;
    }
}

void EventConnection::send() {
    while (hasUnsent()) {
        const ssize_t count = ::send(descriptor(), unsent.data() + sent, unsent.size() - sent,
                                     MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count >= 0) {
            sent += static_cast<std::size_t>(count);
        } else {
            closed = closed || !isTransient(errno);
            return;
        }
    }
}

} // namespace connector::service
