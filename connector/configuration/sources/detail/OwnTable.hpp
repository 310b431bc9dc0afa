/// The tables behind the library's own sources.
#pragma once

#include <connector/configuration/detail/OptionMap.hpp>
#include <connector/configuration/sources/ConfigurationSource.hpp>

namespace connector::configuration::detail {

/// Gives access to the tables of the library's own sources. A friend of theirs.
class OwnTable {
public:
    /// @return the table of an InMemorySource or a PropertyFileSource, whose has and get only read
    ///         it; null for every other class, derived ones included, since they may override has
    ///         and get. The address stays the same for as long as the source lives.
    static const OptionMap* of(const ConfigurationSource& source);
};

} // namespace connector::configuration::detail
