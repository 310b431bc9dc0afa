/// The table behind the sources that hold their options in memory.
#pragma once

#include <connector/configuration/OptionValue.hpp>
#include <connector/configuration/detail/Errors.hpp>

#include <set>
#include <stdexcept>
#include <string>
#include <unordered_map>

namespace connector::configuration::detail {

using OptionMap = std::unordered_map<std::string, OptionValue>;

/// The text is fixed here, because callers may compare it and standard libraries differ in theirs.
/// @return the value of the key
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
