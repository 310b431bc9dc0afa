/// One lookup, in which every source has one table.
#pragma once

#include <connector/configuration/sources/detail/SnapshotSource.hpp>

#include <cstdint>
#include <utility>
#include <vector>

namespace connector::configuration::detail {

/// Stands on the stack of whoever asks several questions whose answers must agree. Once it is
/// entered, every SnapshotSource that is asked on this thread answers from the table that it had
/// when it was asked first, until the scope ends, also when the question comes through sources of
/// the application's or through other configurations. A scope inside of an entered one joins it. A
/// thread keeps nothing but a pointer to the scope and a number.
class LookupScope {
public:
    LookupScope() = default;
    ~LookupScope();
    LookupScope(const LookupScope&) = delete;
    LookupScope& operator=(const LookupScope&) = delete;

    /// Begins the lookup, or joins the one that is going on. To be called before the first source
    /// is asked whose answer could change, once or more often.
    /// @return the number of the lookup: that of no other lookup on any thread; not 0
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
    std::vector<Kept> kept; // few: those that were asked through has, get or keys
};

} // namespace connector::configuration::detail
