/// A source over a table that is replaced as a whole: the base of every source that learns of its
/// options from elsewhere.
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
/// while a configuration asks the source. None of its locks is held while the watcher runs, and
/// none is taken while another one is held, except `replacing` before the others.
///
/// Within one lookup of a configuration all answers come from one table, whatever is replaced in
/// between; docs/writing-a-source.md tells how. A derived class fills the table, and usually adds
/// nothing else: has, get and keys cannot be overridden.
///
/// setWatcher replaces the watcher, so a source that is registered in two configurations tells only
/// the one in which it was registered last. Both read its values.
class CONNECTOR_SOURCES_EXPORT TableSource : public configuration::detail::SnapshotSource {
public:
    explicit TableSource(Table initial = {});
    ~TableSource() override;

    /// Makes a table the one that the source answers from, at once: a lookup that begins after it,
    /// on any thread, sees the new table. Then calls the watcher once for each key that was added,
    /// changed or removed, in ascending order, on this thread. Values are compared with ==, so a
    /// NaN counts as changed. Several threads may replace at the same time; each tells what its own
    /// table changed.
    /// @return how the new table differs from the one before
    /// @throws what the watcher throws, the first such exception, after all keys were told
    TableChange replace(Table table);

    /// @return the table of this moment; never null
    std::shared_ptr<const Table> table() const;

    /// @throws std::runtime_error "Source does not support writing", always
    configuration::OptionValue set(const std::string& key,
                                   configuration::OptionValue value) override;

    /// Replaces the watcher; an empty one silences the source at once: it is called for no further
    /// key, even in the middle of a replace. A call that runs on another thread meanwhile is not
    /// waited for.
    void setWatcher(Watcher newWatcher) override;

protected:
    /// A table that took the place of another one.
    struct Exchange {
        TableChange change;
        std::shared_ptr<const Table>
            previous; ///< kept until all is told, so that no lookup is left
                      ///< with the work of destroying it
    };

    /// The first half of replace: makes the table the newest and tells nobody. Whoever calls it
    /// passes the change to tell when it holds no lock of its own.
    Exchange exchangeTable(Table table);

    /// The second half of replace: calls the watcher for each key.
    /// @throws what the watcher throws, the first such exception, after all keys were told
    void tell(const TableChange& change);

private:
    std::shared_ptr<const Watcher> currentWatcher() const;

    std::mutex replacing;                   // serialises exchangeTable
    mutable std::mutex watcherMutex;        // guards `watcher`
    std::shared_ptr<const Watcher> watcher; // null or not empty
};

} // namespace connector::sources
