/// A source over a table that is replaced as a whole: the base class of sources that hold their
/// options in memory.
#pragma once

#include <connector/configuration/sources/detail/SnapshotSource.hpp>
#include <connector/sources/Export.hpp>
#include <connector/sources/TableChange.hpp>

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace connector::sources {

/// Answers from an immutable table. Every operation may be called from any thread at any time, also
/// while a configuration queries the source. None of its locks is held while the watcher runs. No
/// lock is acquired while another one is held, except that `replacing` is acquired before the
/// others.
///
/// Within one lookup of a configuration all answers come from one table, even if the table is
/// replaced during the lookup; docs/writing-a-source.md explains how. A derived class fills the
/// table, and usually adds nothing else: has, get and keys cannot be overridden.
///
/// setWatcher replaces the watcher, so a source that is registered in two configurations notifies
/// only the one in which it was registered last. Both read its values.
class CONNECTOR_SOURCES_EXPORT TableSource : public configuration::detail::SnapshotSource {
public:
    explicit TableSource(Table initial = {});
    ~TableSource() override;

    /// Replaces the table at once: a lookup that begins afterwards, on any thread, uses the new
    /// table. Then calls the watcher once for each key that was added, changed or removed, in
    /// ascending order, on the calling thread. Values are compared with ==, so a NaN counts as
    /// changed. Several threads may call replace concurrently; each call reports the changes of its
    /// own table.
    /// @return the differences between the new table and the previous one
    /// @throws the first exception of the watcher, after the watcher was called for every key
    TableChange replace(Table table);

    /// @return the current table; never null
    std::shared_ptr<const Table> table() const;

    /// @throws std::runtime_error "Source does not support writing", always
    configuration::OptionValue set(const std::string& key,
                                   configuration::OptionValue value) override;

    /// Replaces the watcher. The old watcher is called for no further key, even in the middle of a
    /// replace; with an empty watcher, the source notifies no watcher. Does not wait for a call of
    /// the old watcher that is running on another thread.
    void setWatcher(Watcher newWatcher) override;

protected:
    /// The result of replacing the table.
    struct Exchange {
        TableChange change;
        std::shared_ptr<const Table>
            previous; ///< kept until the watcher was called for all keys, so
                      ///< that no lookup has to destroy it
    };

    /// The first half of replace: replaces the table and does not call the watcher. The caller
    /// passes the change to `tell` once it holds no lock of its own.
    Exchange exchangeTable(Table table);

    /// The second half of replace: calls the watcher for each key.
    /// @throws the first exception of the watcher, after the watcher was called for every key
    void tell(const TableChange& change);

private:
    std::shared_ptr<const Watcher> currentWatcher() const;

    std::mutex replacing;                   // serialises exchangeTable
    mutable std::mutex watcherMutex;        // guards `watcher`
    std::shared_ptr<const Watcher> watcher; // null or not empty
};

} // namespace connector::sources
