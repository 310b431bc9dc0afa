/// The tables behind the library's own sources.
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

/// Sees through a source of the library's own, so that a lookup need not call it. The
/// configuration's mutex guards it.
///
/// The table of a SnapshotSource can be exchanged at any time. The one of now is held here, and
/// taken anew at most once in a lookup: so all of the lookup's questions are answered from one
/// table, and a lookup that finds it unchanged costs one load more than one in a table that stays.
class OwnTable {
public:
    using Table = std::unordered_map<std::string, OptionValue>;

    /// Finds the table of an InMemorySource or a PropertyFileSource, whose has and get do nothing
    /// but look there, or of a SnapshotSource, which cannot override them. Every other class may
    /// answer for itself, those derived from the first two included.
    /// @param source  outlives this object
    explicit OwnTable(const ConfigurationSource& source);

    /// @return whether the table of the source is known
    bool isKnown() const { return table != nullptr; }

    /// @return the table that answers this lookup, valid until it ends or the lock is released;
    ///         null when the source must be asked
    const Table* in(LookupScope& lookup) { return exchangeable ? exchangeableIn(lookup) : table; }

    /// @return the table of the last lookup, to be kept, where it can be exchanged; otherwise null
    const std::shared_ptr<const Table>& snapshot() const { return held; }

    /// @return whether the source has another table by now than the one held here
    bool isExchanged() const;

    /// Releases a table that has been exchanged, unless a lookup of this thread uses it.
    void refresh();

    /// @return the keys of the table held here. REQUIRES: isKnown()
    std::set<std::string> keys() const;

private:
    const Table* exchangeableIn(LookupScope& lookup);
    void takeNewest();

    const SnapshotSource* exchangeable = nullptr; // the source, where its table can be exchanged
    std::shared_ptr<const Table> held;            // the same as `table` then
    const Table* table = nullptr;
    std::uint64_t lastLookup = 0; // that took the newest table
};

} // namespace detail
} // namespace connector::configuration
