/// The registry as a change would leave it.
#pragma once

#include <connector/configuration/Option.hpp>
#include <connector/configuration/planning/Change.hpp>
#include <connector/configuration/registry/ConfigurationSourceMap.hpp>

#include <set>
#include <string>
#include <vector>

namespace connector::configuration::detail {

/// The records share the sources with the registry, except for those that the change writes to:
/// their places are taken by tables with the new values.
struct Proposal {
    SourceRecords records;
    std::set<std::string> keys;      ///< that may have another effective value
    std::set<std::string> announced; ///< for which the watchers of the keys would be notified
    std::vector<Option> writes;      ///< the values that sources would get; sorted by key
};

/// Applies a change to a copy of the registry.
/// REQUIRES: the configuration's mutex is held
/// @param records  the registry
/// @param lookup   the scope of all queries to the sources, before and after the change
/// @throws std::runtime_error, std::invalid_argument, std::bad_typeid  what set, addSource and
///         addInMemorySource answer; "No source with that name: " + name
/// @throws what the sources throw
Proposal propose(SourceRecords records, planning::Change&& change, LookupScope& lookup);

} // namespace connector::configuration::detail
