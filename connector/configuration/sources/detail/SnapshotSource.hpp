/// The interface of sources whose table is replaced as a whole.
#pragma once

#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>

namespace connector::configuration::detail {

/// A source that answers from an immutable table, which can be exchanged at any time, from any
/// thread.
///
/// A lookup of a configuration calls has and get one after the other, several times. One table must
/// answer all of these calls, even if the table is exchanged in between. So the first call of a
/// lookup keeps the current table in the lookup's LookupScope, and the later calls use it. Outside
/// of a lookup every call is answered from the newest table.
///
/// has, get and keys are final: the configuration may look into the table instead of calling them.
class CONNECTOR_EXPORT SnapshotSource : public ConfigurationSource {
public:
    using Table = std::unordered_map<std::string, OptionValue>;
    using Snapshot = std::shared_ptr<const Table>;

    ~SnapshotSource() override;
    SnapshotSource(const SnapshotSource&) = delete;
    SnapshotSource& operator=(const SnapshotSource&) = delete;

    /// May be called from any thread, as has and keys may.
    /// @return a copy of the value
    /// @throws std::out_of_range "unordered_map::at: key not found"
    OptionValue get(const std::string& key) final;
    bool has(const std::string& key) final;
    std::set<std::string> keys() final;

protected:
    explicit SnapshotSource(Table&& initial);

    /// @return the newest table; never null
    Snapshot newest() const;

    /// Makes a table the newest. Takes only the mutex below, for a moment.
    /// @return the previous table
    Snapshot exchange(Snapshot table);

private:
    friend class OwnTable;
    friend class LookupScope;

    Snapshot tableOfLookup() const;

    mutable std::mutex mutex;          // guards `table`; nothing is called while it is held
    Snapshot table;                    // never null
    std::atomic<const Table*> address; // of the newest; changes under the mutex
};

} // namespace connector::configuration::detail
