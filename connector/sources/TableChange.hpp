/// The differences between a table and the previous one.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <string>
#include <unordered_map>
#include <vector>

namespace connector::sources {

using Table = std::unordered_map<std::string, configuration::OptionValue>;

/// Each list is in ascending order of bytes. No key is in two of them.
struct TableChange {
    std::vector<std::string> added;
    std::vector<std::string> changed;
    std::vector<std::string> removed;

    /// @return whether there is no difference
    bool empty() const { return added.empty() && changed.empty() && removed.empty(); }
};

} // namespace connector::sources
