/// The thread of a source that calls out.
#pragma once

#include <connector/configuration/sources/ConfigurationSource.hpp>
#include <connector/etcd/Status.hpp>
#include <connector/etcd/detail/Board.hpp>
#include <connector/etcd/detail/CacheFile.hpp>
#include <connector/etcd/detail/Mailbox.hpp>
#include <connector/etcd/detail/Publication.hpp>
#include <connector/etcd/detail/Slot.hpp>
#include <connector/etcd/detail/Tables.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>

namespace connector::etcd::detail {

/// Takes the mail, replaces the table, calls the watcher, runs tasks, reports the status and writes
/// the cache file. `run` is for one thread; everything else may be called from any thread.
class Teller {
public:
    /// @param newCache  nothing: there is no cache file
    /// @param newDelay  from a change to the cache file
    /// @param newKnown  of the cache file as it is
    Teller(std::optional<CacheFile> newCache, std::chrono::milliseconds newDelay, Known newKnown);

    /// Sets the source and its table. Called before run.
    void begin(std::shared_ptr<Publication> newPublication,
               std::shared_ptr<const sources::Table> table);

    /// Until the mailbox is closed.
    void run();

    Mailbox mailbox;
    Board board;
    Slot<const std::string&> watcher;
    Slot<const Status&> statusHandler;
    Slot<std::exception_ptr> errorHandler;

    /// Nothing of the application's is called any more.
    void silence();

    /// The next status is reported even if nothing has changed.
    void reportStatusAgain();

private:
    using Clock = Mailbox::Clock;

    void handle(Mail mail);
    void tell(Mail& mail);
    Replacement replaceTable(Mail& mail);
    Replacement replaceList(Mail& mail);
    void callWatcher(const Replacement& replacement);
    std::optional<Clock::time_point> due() const;
    void trimIfDue();
    void reportStatus();
    void writeCacheIfDue(bool isLast);
    template <typename Action>
    void guarded(Action action);

    const std::optional<CacheFile> cache;
    const std::chrono::milliseconds delay;
    std::int64_t revisionInFile;
    std::optional<Clock::time_point> cacheDue;
    std::shared_ptr<Publication> publication;
    std::shared_ptr<const sources::Table> present;
    Tables tables;
    std::optional<Clock::time_point> trimDue;
    Known known;
    std::atomic<bool> isReportWanted{false};
    std::uint64_t reportedVersion = 0;
};

} // namespace connector::etcd::detail
