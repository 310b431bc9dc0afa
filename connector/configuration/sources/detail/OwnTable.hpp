/// The tables behind the library's own sources.
#pragma once

#include <connector/configuration/detail/OptionMap.hpp>
#include <connector/configuration/sources/ConfigurationSource.hpp>

namespace connector::configuration::detail {

/// Sees through the library's own sources, which name it their friend.
class OwnTable {
public:
    /// @return the table of an InMemorySource or a PropertyFileSource, whose has and get do nothing but
    ///         look there; null for every other class, those derived from the two included: they may
    ///         answer for themselves. The table stays where it is for as long as the source lives.
    static const OptionMap* of(const ConfigurationSource& source);
};

} // namespace connector::configuration::detail
