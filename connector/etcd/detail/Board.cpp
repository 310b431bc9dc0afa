#include <connector/etcd/detail/Board.hpp>

#include <algorithm>

namespace connector::etcd::detail {

using Lock = std::lock_guard<std::mutex>;

Board::Board() {
    current.since = std::chrono::system_clock::now();
}

Status Board::status() const {
    const Lock lock(mutex);
    return current;
}

std::uint64_t Board::version() const {
    const Lock lock(mutex);
    return changesOfStatus;
}

void Board::countList() {
    const Lock lock(mutex);
    ++current.lists;
}

void Board::countWatch() {
    const Lock lock(mutex);
    ++current.watches;
}

void Board::countChanges(std::uint64_t changes, std::uint64_t ignored) {
    const Lock lock(mutex);
    current.changes += changes;
    current.ignoredKeys += ignored;
}

void Board::broke(std::uint64_t session, const std::string& failure) {
    const Lock lock(mutex);
    brokenSession = std::max(brokenSession, session);
    if (current.failure != failure)
        ++changesOfStatus;
    current.failure = failure;
    enter(State::Stale);
}

void Board::told(const Known& known) {
    const Lock lock(mutex);
    current.revision = known.revision;
    current.clusterId = known.clusterId;
    if (!std::equal(current.unreadable.begin(), current.unreadable.end(), known.unreadable->begin(),
                    known.unreadable->end())) {
        current.unreadable.assign(known.unreadable->begin(), known.unreadable->end());
        ++changesOfStatus;
    }
    changed.notify_all();
}

void Board::caughtUp(std::uint64_t session) {
    const Lock lock(mutex);
    if (session > brokenSession)
        enter(State::Current);
}

void Board::failed(const std::string& failure) {
    const Lock lock(mutex);
    current.failure = failure;
    ++changesOfStatus;
}

void Board::stop() {
    const Lock lock(mutex);
    enter(State::Stopped);
}

/// REQUIRES: lock held
void Board::enter(State state) {
    if (current.state == state || current.state == State::Stopped)
        return;
    current.state = state;
    current.since = std::chrono::system_clock::now();
    ++changesOfStatus;
    changed.notify_all();
}

template <typename Condition>
bool Board::wait(std::chrono::milliseconds timeout, Condition condition) const {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, timeout, [&] { return condition() || current.state == State::Stopped; });
    return condition();
}

bool Board::waitForCurrent(std::chrono::milliseconds timeout) const {
    return wait(timeout, [this] { return current.state == State::Current; });
}

bool Board::waitForRevision(std::int64_t revision, std::chrono::milliseconds timeout) const {
    return wait(timeout, [&] { return current.revision >= revision; });
}

} // namespace connector::etcd::detail
