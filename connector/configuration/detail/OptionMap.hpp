/// What the sources over a hash map have in common.
#pragma once

#include <connector/configuration/OptionValue.hpp>
#include <connector/configuration/detail/Errors.hpp>

#include <set>
#include <stdexcept>
#include <string>
#include <unordered_map>

namespace connector::configuration::detail {

using OptionMap = std::unordered_map<std::string, OptionValue>;

/// @return the value of a key that may be missing. The text is our own, because callers may compare
///         it and standard libraries differ in what their at says.
/// @throws std::out_of_range "unordered_map::at: key not found"
inline const OptionValue& at(const OptionMap& table, const std::string& key) {
    const auto entry = table.find(key);
    if (entry == table.end())
        throw std::out_of_range(errors::keyNotInSource);
    return entry->second;
}

/// @return the keys as a set
std::set<std::string> keysOf(const OptionMap& table);

} // namespace connector::configuration::detail
