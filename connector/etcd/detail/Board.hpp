/// The status of a source, as both of its threads report it.
#pragma once

#include <connector/etcd/Status.hpp>
#include <connector/etcd/detail/Known.hpp>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace connector::etcd::detail {

/// All functions may be called from any thread. The mutex is never held during a call out, and only
/// for the time of a copy.
///
/// The network thread says at once when a session broke. The telling thread says when the table has
/// all that a session began with; if that session broke meanwhile, it is not current any more.
class Board {
public:
    Board();

    Status status() const;

    /// @return a number that changes with the state, the failure and the unreadable keys
    std::uint64_t version() const;

    // By the network thread
    void countList();
    void countWatch();
    void countChanges(std::uint64_t changes, std::uint64_t ignored);
    /// The source is stale from now on.
    void broke(std::uint64_t session, const std::string& failure);

    // By the telling thread
    void told(const Known& known);
    void caughtUp(std::uint64_t session);
    /// A failure that does not change the state.
    void failed(const std::string& failure);

    /// Ends all waiting.
    void stop();

    /// @return whether the source became current within the time
    bool waitForCurrent(std::chrono::milliseconds timeout) const;

    /// @return whether the table has reached the revision within the time
    bool waitForRevision(std::int64_t revision, std::chrono::milliseconds timeout) const;

private:
    void enter(State state);
    template <typename Condition>
    bool wait(std::chrono::milliseconds timeout, Condition condition) const;

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    Status current;
    std::uint64_t changesOfStatus = 0;
    std::uint64_t brokenSession = 0;
};

} // namespace connector::etcd::detail
