/// The differences of two lists of options.
#pragma once

#include <connector/configuration/Option.hpp>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace connector_config {

using connector::configuration::Option;

enum class DifferenceKind : std::uint8_t {
    Added,
    Removed,
    Changed, ///< another value, or another type
    Moved,   ///< the same value, or masked values, from another source
};

/// An option that is not the same on both sides.
struct Difference {
    DifferenceKind kind;
    std::string key;
    std::optional<Option> before; ///< nothing if it is added
    std::optional<Option> after;  ///< nothing if it is removed
};

/// The options of one side.
struct ComparedOptions {
    std::vector<Option> options;  ///< sorted by key
    std::set<std::string> masked; ///< the keys of those whose values are not known
    bool hasSources = true;       ///< whether the options come from the sources of a configuration,
                                  ///< not from a single file
};

struct Differences {
    std::vector<Difference> differences; ///< sorted by key
    std::vector<std::string> masked;     ///< keys of options on both sides that cannot be compared
};

/// @return the names of sources are compared only if both sides have them
Differences differencesOf(const ComparedOptions& before, const ComparedOptions& after);

/// Adds the difference of one option, or its key if it is masked, or nothing.
/// @param before, after   at least one of them; nothing for a side without the option
/// @param isMasked        whether one of the values is not known
/// @param comparesSources whether the same value from another source is a difference
void addDifference(Differences& result, const std::optional<Option>& before,
                   const std::optional<Option>& after, bool isMasked, bool comparesSources);

} // namespace connector_config
