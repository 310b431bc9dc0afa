#include <connector/service/http/EventClient.hpp>

#include <cerrno>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace connector::service {

namespace {

bool isTransient(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

/// Lets the system hold back little for a slow reader: what lies in its buffers is a backlog, too.
/// Where it does not obey, readers get more old values, which is no failure.
void keepBuffersSmall(int descriptor) {
    const int bufferSize = 16 * 1024;
    ::setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &bufferSize, sizeof bufferSize);
    const int unsent = 1; // writable only when all that was written is on its way
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NOTSENT_LOWAT, &unsent, sizeof unsent);
}

} // namespace

EventClient::EventClient(const Poco::Net::StreamSocket& newSocket,
                         std::shared_ptr<EventStream> newStream, std::string newText,
                         Clock::time_point newNextComment)
    : socket(newSocket), stream(std::move(newStream)), text(std::move(newText)),
      commentTime(newNextComment) {
    keepBuffersSmall(descriptor());
}

EventClient::~EventClient() {
    stream->cancel();
    ::shutdown(descriptor(), SHUT_WR);
}

void EventClient::read() {
    char forgotten[4096];
    const ssize_t count = ::recv(descriptor(), forgotten, sizeof forgotten, MSG_DONTWAIT);
    if (count == 0 || (count < 0 && !isTransient(errno)))
        gone = true;
}

void EventClient::write(const Secrets& secrets, Clock::time_point now,
                        Clock::duration commentInterval) {
    const bool hadEnded = stream->hasEnded(); // asked first: a last value may come before the end
    send();
    fetchEvent(secrets);
    commentIfDue(now, commentInterval);
    send();
    if (hasText())
        return;
    gone = gone || hadEnded;
    if (isEvent) {
        isEvent = false;
        stream->requestNext(); // what comes of it wakes the writer
    }
}

void EventClient::fetchEvent(const Secrets& secrets) {
    if (hasText() || isEvent)
        return;
    if (const std::optional<Option> option = stream->take()) {
        text = eventOf(secrets.shown(*option));
        written = 0;
        isEvent = true;
    }
}

/// A client that is late with what it has needs no comment on top.
void EventClient::commentIfDue(Clock::time_point now, Clock::duration interval) {
    if (now < commentTime)
        return;
    commentTime = now + interval;
    if (!hasText()) {
        text = ":\n\n";
        written = 0;
    }
}

void EventClient::send() {
    while (hasText()) {
        const ssize_t count = ::send(descriptor(), text.data() + written, text.size() - written,
                                     MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count >= 0) {
            written += static_cast<std::size_t>(count);
        } else {
            gone = gone || !isTransient(errno);
            return;
        }
    }
}

} // namespace connector::service
