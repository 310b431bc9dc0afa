/// What the network thread leaves for the telling thread.
#pragma once

#include <connector/etcd/detail/Tables.hpp>
#include <connector/etcd/detail/Update.hpp>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace connector::etcd::detail {

/// Everything that was left since the last visit. It always is the difference between two whole
/// revisions, so a transaction is taken out as a whole, however many revisions are in it.
struct Mail {
    std::optional<sources::Table> list; ///< replaces the table
    std::set<std::string> kept; ///< keys that are not in `list` and keep their value of the table
    KeyValues changes;          ///< after the list
    std::optional<Known> known; ///< after all of this; nothing: nothing is new
    std::uint64_t ready = 0;    ///< the last session that has caught up; 0: none
    std::vector<std::function<void()>> tasks; ///< run on the telling thread
    bool isLast = false;                      ///< the mailbox is closed

    void add(List&& newer);
    void add(Changes&& newer);

private:
    void keepLastGood(const std::string& key, sources::Table& table,
                      std::set<std::string>& keptNow) const;
};

/// Holds the newest change of each key, so its size is bounded by the number of keys, however slow
/// the reader is. All functions may be called from any thread; the mutex is never held during a
/// call out.
class Mailbox {
public:
    using Clock = std::chrono::steady_clock;

    void post(List&& list);
    void post(Changes&& changes);
    void post(std::function<void()> task);

    /// Everything that the session `number` began with was posted.
    void postReady(std::uint64_t number);

    /// Wakes the reader.
    void ring();

    /// Wakes the reader for the last time.
    void close();

    /// Waits until something is posted, the reader is woken, or the time has come.
    Mail take(std::optional<Clock::time_point> until);

private:
    template <typename Action>
    void change(Action action);

    std::mutex mutex;
    std::condition_variable rung;
    bool isRung = false;
    Mail mail;
};

} // namespace connector::etcd::detail
