/// One operation of a transaction.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace connector::etcd {

struct Change {
    std::string key;                                 ///< without the prefix
    std::optional<configuration::OptionValue> value; ///< nothing: the key is erased
    /// The revision at which the key must have changed last; 0: the key must not exist; nothing:
    /// any.
    std::optional<std::int64_t> expectedRevision;
};

} // namespace connector::etcd
