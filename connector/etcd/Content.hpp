/// What the engine has below a prefix.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace connector::etcd {

/// A key and its value.
struct Entry {
    std::optional<configuration::OptionValue> value; ///< nothing: it cannot be read
    std::int64_t revision = 0;                       ///< at which the key was changed last
};

/// All options at one revision.
struct Content {
    std::int64_t revision = 0;
    std::uint64_t clusterId = 0;
    std::map<std::string, Entry> entries; ///< by the keys without the prefix
};

} // namespace connector::etcd
