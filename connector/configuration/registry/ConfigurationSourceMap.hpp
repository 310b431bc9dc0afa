/// A registered source.
#pragma once

#include <connector/configuration/sources/ConfigurationSource.hpp>
#include <connector/configuration/sources/detail/OwnTable.hpp>

#include <memory>
#include <string>
#include <vector>

namespace connector::configuration::detail {

/// One record of the registry. The configuration's mutex guards it.
struct ConfigurationSourceMap {
    /// @param newSource  not null
    ConfigurationSourceMap(const std::string& newName, const std::string& newGroup, int newOrder,
                           bool newReadOnly, std::shared_ptr<ConfigurationSource> newSource);

    /// @return whether the source is queried for the key at all: the key begins with the group
    bool serves(const std::string& key) const {
        return group.empty() || key.compare(0, group.size(), group) == 0;
    }

    /// @return the key as the source knows it. REQUIRES: serves(key)
    std::string localKey(const std::string& key) const { return key.substr(group.size()); }

    std::string name;  ///< unique in the registry
    std::string group; ///< normalised: empty, or ending in "."
    int order;         ///< smaller is consulted first
    bool readOnly;     ///< set never writes here
    std::shared_ptr<ConfigurationSource> source;
    OwnTable table; ///< the table of `source`, if that is one of the library's own classes
};

/// The registry, in the order in which its sources are consulted.
using SourceRecords = std::vector<ConfigurationSourceMap>;

} // namespace connector::configuration::detail
