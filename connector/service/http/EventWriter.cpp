#include <connector/service/http/EventWriter.hpp>

#include <algorithm>
#include <vector>

#include <poll.h>

namespace connector::service {

using Lock = std::lock_guard<std::mutex>;

EventWriter::EventWriter(const Secrets& newSecrets, Clock::duration newCommentInterval,
                         std::size_t newMaxConnections)
    : secrets(newSecrets), commentInterval(newCommentInterval), maxConnections(newMaxConnections),
      thread([this] { run(); }) {
}

EventWriter::~EventWriter() {
    finish(Clock::now());
}

bool EventWriter::add(const Poco::Net::StreamSocket& socket,
                      const std::shared_ptr<EventStream>& stream, std::string head) {
    {
        const Lock lock(mutex);
        if (isFinishing || count >= maxConnections)
            return false;
        pending.emplace_back(socket, stream, std::move(head), Clock::now() + commentInterval);
        ++count;
    }
    wake();
    return true;
}

void EventWriter::finish(Clock::time_point newDeadline) {
    if (!thread.joinable())
        return;
    {
        const Lock lock(mutex);
        isFinishing = true;
        finishDeadline = newDeadline;
    }
    wake();
    thread.join();
}

void EventWriter::run() {
    while (!isFinished()) {
        waitForEvents();
        addPending();
        for (EventConnection& connection : connections) {
            if (!connection.isClosed())
                connection.write(secrets, Clock::now(), commentInterval);
        }
        removeClosed();
    }
    connections.clear();
}

void EventWriter::addPending() {
    bool finishing;
    {
        const Lock lock(mutex);
        connections.splice(connections.end(), pending);
        finishing = isFinishing;
        deadline = finishDeadline;
    }
    if (finishing && !cancelled) {
        for (EventConnection& connection : connections) // add() accepts no further ones
            connection.cancel();
        cancelled = true;
    }
}

void EventWriter::waitForEvents() {
    std::vector<pollfd> polled{{wakeDescriptor.descriptor(), POLLIN, 0}};
    for (const EventConnection& connection : connections) {
        const int events = connection.hasUnsent() ? POLLIN | POLLOUT : POLLIN;
        polled.push_back({connection.descriptor(), static_cast<short>(events), 0});
    }
    if (::poll(polled.data(), polled.size(), waitingTime()) <= 0)
        return;
    wakeDescriptor.reset();
    auto result = polled.begin();
    for (EventConnection& connection : connections) {
        if (((++result)->revents & ~POLLOUT) != 0)
            connection.discardInput();
    }
}

/// @return the milliseconds until a comment is due or the deadline is reached; -1 for no limit
int EventWriter::waitingTime() const {
    Clock::time_point next = deadline;
    for (const EventConnection& connection : connections)
        next = std::min(next, connection.nextComment());
    return next == Clock::time_point::max() ? -1 : pollTimeout(next);
}

void EventWriter::removeClosed() {
    const std::size_t before = connections.size();
    connections.remove_if([](const EventConnection& connection) { return connection.isClosed(); });
    const Lock lock(mutex);
    count -= before - connections.size();
}

bool EventWriter::isFinished() const {
    return cancelled && (connections.empty() || Clock::now() >= deadline);
}

} // namespace connector::service
