/// The tables of a source, one after the other.
#pragma once

#include <connector/sources/TableChange.hpp>

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace connector::etcd::detail {

/// The newest value of each key that has changed; nothing: the key was erased
using KeyValues = std::unordered_map<std::string, std::optional<configuration::OptionValue>>;

/// @return the keys whose values differ after the changes, in ascending order. A NaN differs
std::vector<std::string> differingKeys(const sources::Table& table, const KeyValues& changes);

void applyTo(sources::Table& table, const KeyValues& changes);

/// Makes each table of the one before. Tables are immutable, so the simple way is a copy, which
/// takes 1 ms for 10,000 keys. Instead, the table before the present one is kept once its last
/// reader has released it, and gets the changes that it lacks. If a reader still holds it, the
/// present one is copied.
///
/// For one thread; the tables may be released on any thread, also after this object is gone.
class Tables {
public:
    using Snapshot = std::shared_ptr<const sources::Table>;

    Tables();
    ~Tables();
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;

    /// @param present  the result of the last call, or a table from elsewhere
    Snapshot next(const Snapshot& present, KeyValues changes);

    /// Frees the table that is kept.
    void trim();

private:
    class Shelf;

    const std::shared_ptr<Shelf> shelf;
    const sources::Table* latest = nullptr; // the result of the last call
    KeyValues latestChanges;                // that led to it
};

} // namespace connector::etcd::detail
