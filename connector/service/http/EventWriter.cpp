#include <connector/service/http/EventWriter.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace connector::service {

using Lock = std::lock_guard<std::mutex>;

namespace {

int makeWakeDescriptor() {
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    return descriptor;
}

} // namespace

EventWriter::EventWriter(const Secrets& newSecrets, Clock::duration newCommentInterval,
                         std::size_t newMostStreams)
    : secrets(newSecrets), commentInterval(newCommentInterval), mostStreams(newMostStreams),
      wakeDescriptor(makeWakeDescriptor()), thread([this] { run(); }) {
}

EventWriter::~EventWriter() {
    finish(Clock::now());
    ::close(wakeDescriptor);
}

void EventWriter::wake() noexcept {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(wakeDescriptor, &one, sizeof one);
}

bool EventWriter::add(const Poco::Net::StreamSocket& socket,
                      const std::shared_ptr<EventStream>& stream, std::string beginning) {
    {
        const Lock lock(mutex);
        if (isFinishing || count >= mostStreams)
            return false;
        newcomers.emplace_back(socket, stream, std::move(beginning),
                               Clock::now() + commentInterval);
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
    while (!isOver()) {
        waitForAnything();
        takeNewcomers();
        for (EventClient& client : clients)
            serve(client);
        dropThoseWhoWent();
    }
    clients.clear();
}

void EventWriter::takeNewcomers() {
    bool finishing;
    {
        const Lock lock(mutex);
        clients.splice(clients.end(), newcomers);
        finishing = isFinishing;
        deadline = finishDeadline;
    }
    if (finishing && !cancelled) {
        for (EventClient& client : clients) // nobody comes after them
            client.cancel();
        cancelled = true;
    }
}

void EventWriter::waitForAnything() {
    std::vector<pollfd> waiting{{wakeDescriptor, POLLIN, 0}};
    for (const EventClient& client : clients) {
        const int events = client.hasText() ? POLLIN | POLLOUT : POLLIN;
        waiting.push_back({client.descriptor(), static_cast<short>(events), 0});
    }
    if (::poll(waiting.data(), waiting.size(), patience()) <= 0)
        return;
    std::uint64_t forgotten = 0;
    [[maybe_unused]] const ssize_t size = ::read(wakeDescriptor, &forgotten, sizeof forgotten);
    auto answer = waiting.begin();
    for (EventClient& client : clients) {
        if (((++answer)->revents & ~POLLOUT) != 0)
            client.read();
    }
}

/// @return how many milliseconds there is nothing to do unless something happens
int EventWriter::patience() const {
    Clock::time_point next = deadline;
    for (const EventClient& client : clients)
        next = std::min(next, client.nextComment());
    if (next == Clock::time_point::max())
        return -1;
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now()).count() + 1;
    return static_cast<int>(std::clamp<long long>(left, 0, 60 * 60 * 1000));
}

void EventWriter::serve(EventClient& client) {
    if (!client.hasGone())
        client.write(secrets, Clock::now(), commentInterval);
}

void EventWriter::dropThoseWhoWent() {
    const std::size_t before = clients.size();
    clients.remove_if([](const EventClient& client) { return client.hasGone(); });
    const Lock lock(mutex);
    count -= before - clients.size();
}

bool EventWriter::isOver() {
    return cancelled && (clients.empty() || Clock::now() >= deadline);
}

} // namespace connector::service
