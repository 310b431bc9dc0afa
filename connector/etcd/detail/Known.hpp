/// What a source knows of the engine's history.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>

namespace connector::etcd::detail {

/// A key that was changed recently. If the engine still has it in the same state at the same
/// revision, its history is the one that the source followed. A restored backup and a new cluster
/// with the same id are noticed by this, even if their revision has become greater.
struct Witness {
    std::string key;              ///< with the prefix; empty: there is none
    std::int64_t modRevision = 0; ///< when it was changed
    std::uint32_t valueSum = 0;   ///< the checksum of its value
    std::int64_t at = 0; ///< the last revision at which it was so; 0: the newest known revision
};

struct Known {
    std::int64_t revision = 0; ///< up to which every change is known; 0: nothing is known
    std::uint64_t clusterId = 0;
    Witness witness;
    std::shared_ptr<const std::set<std::string>> unreadable =
        std::make_shared<const std::set<std::string>>(); ///< option keys
};

} // namespace connector::etcd::detail
