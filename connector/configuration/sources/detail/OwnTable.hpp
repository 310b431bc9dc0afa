/// The tables of the library's own sources.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>

namespace connector::configuration {

class ConfigurationSource;

namespace detail {

class LookupScope;
class SnapshotSource;

/// Gives a lookup the table of one of the library's own sources, so that it need not call the
/// source. The configuration's mutex guards it.
///
/// The table of a SnapshotSource can be exchanged at any time. The current one is held here, and
/// updated at most once in a lookup, so one table answers all queries of the lookup. If the table
/// is unchanged, the lookup costs one load more than with a table that cannot be exchanged.
class OwnTable {
public:
    using Table = std::unordered_map<std::string, OptionValue>;

    /// Finds the table of an InMemorySource or a PropertyFileSource, whose has and get only read
    /// that table, or of a SnapshotSource, which cannot override them. Every other class may answer
    /// by other means, including classes derived from the first two.
    /// @param source  outlives this object
    explicit OwnTable(const ConfigurationSource& source);

    /// @return whether the table of the source is known
    bool isKnown() const { return table != nullptr; }

    /// @return the table that answers this lookup, valid until it ends or the lock is released;
    ///         null when the source must be queried
    const Table* in(LookupScope& lookup) { return exchangeable ? exchangeableIn(lookup) : table; }

    /// @return the table of the last lookup, to be kept alive, if it can be exchanged; otherwise
    ///         null
    const std::shared_ptr<const Table>& snapshot() const { return held; }

    /// @return whether the source now has another table than the one held here
    bool isExchanged() const;

    /// Releases a table that has been exchanged, unless a lookup of this thread uses it.
    void refresh();

    /// @return the keys of the table held here. REQUIRES: isKnown()
    std::set<std::string> keys() const;

private:
    const Table* exchangeableIn(LookupScope& lookup);
    void takeNewest();

    const SnapshotSource* exchangeable = nullptr; // the source, where its table can be exchanged
    std::shared_ptr<const Table> held;            // then the same as `table`
    const Table* table = nullptr;
    std::uint64_t lastLookup = 0; // the one that took the newest table
};

} // namespace detail
} // namespace connector::configuration
