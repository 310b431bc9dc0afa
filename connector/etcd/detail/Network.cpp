#include <connector/etcd/detail/Network.hpp>

#include <algorithm>
#include <random>
#include <utility>

namespace connector::etcd::detail {

namespace {

/// A session that stays current for this long shows that the engine is well: pauses are short again
/// after it.
constexpr std::chrono::seconds steady{5};

/// The queue waits in steps, because it takes times of the system's clock, which may be set.
constexpr std::chrono::seconds longestWait{1};

} // namespace

Network::Network(const Settings& newSettings, Known newKnown, Mailbox& newMailbox, Board& newBoard)
    : settings(newSettings), mailbox(newMailbox), board(newBoard), known(std::move(newKnown)),
      backoff(settings.options.timing.firstPause, settings.options.timing.longestPause,
              std::random_device()()),
      wake(queue), writes(newMailbox, settings.options.prefix),
      nextEndpoint(std::random_device()() % settings.endpoints.size()), roundBegan(Clock::now()),
      connectAt(Clock::now()) {
}

/// A queue must be shut down and empty before it is destroyed.
Network::~Network() {
    shutDown();
}

void Network::run() {
    while (!isStopping) {
        onTime();
        waitForOneOperation();
    }
    shutDown();
}

void Network::submit(std::unique_ptr<Write> write) {
    writes.submit(std::move(write));
    wake.ring();
}

void Network::stop() {
    isStopping = true;
    wake.ring();
}

void Network::waitForOneOperation() {
    void* tag = nullptr;
    bool ok = false;
    const auto now = Clock::now();
    const auto wait =
        std::clamp<Clock::duration>(due() - now, Clock::duration::zero(), longestWait);
    const auto deadline = std::chrono::system_clock::now() +
                          std::chrono::duration_cast<std::chrono::system_clock::duration>(wait) +
                          std::chrono::microseconds(1);
    if (queue.AsyncNext(&tag, &ok, deadline) == grpc::CompletionQueue::GOT_EVENT)
        Operation::of(tag).completed(ok);
}

Network::Clock::time_point Network::due() const {
    return std::min(writes.due(), session ? session->due() : connectAt);
}

void Network::onTime() {
    if (!session && Clock::now() >= connectAt)
        connect();
    if (const auto present = session)
        present->onTime();
    if (const auto present = session; present && writes.takeRefusal())
        present->renewToken();
    writes.expire("etcd does not answer");
    if (session && session->isUsable())
        writes.send(*session, queue, token);
}

void Network::connect() {
    ++sessions;
    SessionListener& listener = *this; // a private base
    session = std::make_shared<Session>(settings, settings.endpoints[nextEndpoint], queue, listener,
                                        token, known);
    const auto present = session; // it may fail at once
    present->start();
}

void Network::sessionListed(List list, std::uint64_t ignored) {
    known = list.known;
    board.countList();
    board.countChanges(0, ignored);
    mailbox.post(std::move(list));
}

void Network::sessionBeganToWatch() {
    board.countWatch();
}

void Network::sessionChanged(Changes changes, std::uint64_t ignored) {
    known = changes.known;
    board.countChanges(changes.keys.size(), ignored);
    mailbox.post(std::move(changes));
}

void Network::sessionIsCurrent() {
    currentSince = Clock::now();
    mailbox.postReady(sessions);
}

void Network::sessionFailed(const std::string& cause) {
    board.broke(sessions, cause);
    mailbox.ring();
    const bool wasCurrent = currentSince.has_value();
    if (wasCurrent && Clock::now() - *currentSince >= steady)
        backoff.reset();
    currentSince.reset();
    session.reset();
    nextEndpoint = (nextEndpoint + 1) % settings.endpoints.size();
    pauseAfter(wasCurrent);
}

/// There is a pause after each round over all endpoints, and after each session that was current.
void Network::pauseAfter(bool wasCurrent) {
    const Clock::time_point now = Clock::now();
    connectAt = now;
    if (!wasCurrent && ++failuresOfRound < settings.endpoints.size())
        return;
    const auto round = wasCurrent ? Clock::duration::zero() : now - roundBegan;
    connectAt = now + backoff.next(std::chrono::duration_cast<std::chrono::milliseconds>(round));
    failuresOfRound = 0;
    roundBegan = connectAt;
}

void Network::shutDown() {
    if (std::exchange(isShutDown, true))
        return;
    wake.close();
    writes.stop();
    session.reset(); // cancels its calls
    queue.Shutdown();
    void* tag = nullptr;
    bool ok = false;
    while (queue.Next(&tag, &ok))
        Operation::of(tag).completed(ok);
    writes.stop(); // what was refused meanwhile
}

} // namespace connector::etcd::detail
