/// The content of a registered source at one moment.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <map>
#include <string>

namespace connector::configuration {

struct SnapshotEntry {
    OptionValue value;
    bool isMasked = false; ///< the value is secret, and a mask stands in place of it
};

struct SourceSnapshot {
    std::string name;                             ///< under which the source is registered
    std::string group;                            ///< normalised: empty, or ending in "."
    int order;                                    ///< smaller is consulted first
    bool readOnly;                                ///< whether set skips the source
    std::map<std::string, SnapshotEntry> entries; ///< by the keys of the source: without its group
};

} // namespace connector::configuration
