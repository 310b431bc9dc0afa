/// The effects that a change of a configuration would have.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Option.hpp>

#include <optional>
#include <string>
#include <vector>

namespace connector::configuration::planning {

/// An option with another effective value, type or source than before.
struct OptionChange {
    std::string key;
    std::optional<Option> before; ///< nothing if no source has the key
    std::optional<Option> after;  ///< nothing if no source would have the key any more
    bool isAnnounced = false;     ///< whether watchers of the key would receive the new value
};

/// A value that a source would get, but that another source would hide.
struct HiddenWrite {
    Option option;      ///< the key with the group, the source that gets the value, and the value
    std::string behind; ///< the name of the source that would still supply the key
};

struct CONNECTOR_EXPORT Plan {
    std::vector<OptionChange> changes; ///< sorted by key
    std::vector<HiddenWrite> hidden;   ///< sorted by key

    /// @return the keys that no source would have any more, sorted. No watcher is notified of them.
    std::vector<std::string> goneKeys() const;
};

/// @return whether both values have the same type and are equal; a NaN equals any other NaN
CONNECTOR_EXPORT bool isSameValue(const OptionValue& left, const OptionValue& right);

} // namespace connector::configuration::planning
