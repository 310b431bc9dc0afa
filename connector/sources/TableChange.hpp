/// How one table differs from the one before.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <string>
#include <unordered_map>
#include <vector>

namespace connector::sources {

using Table = std::unordered_map<std::string, configuration::OptionValue>;

/// Each list is in ascending order of bytes. No key stands in two of them.
struct TableChange {
    std::vector<std::string> added;
    std::vector<std::string> changed;
    std::vector<std::string> removed;

    /// @return whether nothing differs
    bool empty() const { return added.empty() && changed.empty() && removed.empty(); }
};

} // namespace connector::sources
