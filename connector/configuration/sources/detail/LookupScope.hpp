/// One lookup, in which every source has one table.
#pragma once

#include <connector/configuration/sources/detail/SnapshotSource.hpp>

#include <cstdint>
#include <utility>
#include <vector>

namespace connector::configuration::detail {

/// Created on the stack by callers that make several queries whose answers must agree. Once it is
/// entered, every SnapshotSource that is queried on this thread answers from the table that it had
/// at its first query, until the scope ends, even when the query comes through the application's
/// sources or through other configurations. A scope inside an entered one joins it. A thread keeps
/// only a pointer to the scope and a number.
class LookupScope {
public:
    LookupScope() = default;
    ~LookupScope();
    LookupScope(const LookupScope&) = delete;
    LookupScope& operator=(const LookupScope&) = delete;

    /// Begins the lookup, or joins the current one. Must be called before the first query to a
    /// source whose answer could change; it may be called more than once.
    /// @return the number of the lookup: unique among all lookups on all threads; not 0
    std::uint64_t enter() { return number != 0 ? number : enterNow(); }

    /// @return the scope that this thread has entered; null outside of lookups
    static LookupScope* current();

    /// @return the table from which the source answers until the scope ends
    const SnapshotSource::Snapshot& tableOf(const SnapshotSource& source);

private:
    using Kept = std::pair<const SnapshotSource*, SnapshotSource::Snapshot>;

    std::uint64_t enterNow();

    std::uint64_t number = 0; // 0: not entered
    bool isOutermost = false;
    std::vector<Kept> kept; // few: those that were queried through has, get or keys
};

} // namespace connector::configuration::detail
