/// What the network thread reports about the keys.
#pragma once

#include <connector/etcd/detail/Known.hpp>
#include <connector/sources/TableChange.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace connector::etcd::detail {

/// A change of one option.
struct KeyChange {
    enum class Kind : std::uint8_t { Put, Erased, Unreadable };

    std::string key;
    Kind kind = Kind::Put;
    std::optional<configuration::OptionValue> value; ///< of Put
};

/// All changes of one or more whole revisions, in the order of the engine.
struct Changes {
    std::vector<KeyChange> keys;
    Known known; ///< including these changes
};

/// All options at one revision.
struct List {
    sources::Table table; ///< those that can be read
    Known known;
};

} // namespace connector::etcd::detail
