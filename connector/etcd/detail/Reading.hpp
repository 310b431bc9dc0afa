/// Reads the keys and values of the engine's messages.
#pragma once

#include <connector/etcd/detail/Known.hpp>
#include <connector/etcd/detail/Update.hpp>

#include <etcdserverpb/rpc.pb.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace connector::etcd::detail {

/// A key of the engine, as an option.
struct ReadKey {
    bool isOutside = false; ///< it is not below the prefix: the engine answers nonsense
    bool isIgnored = false; ///< no option can have this key
    std::string local;
};

ReadKey readKey(const std::string& key, const std::string& prefix);

/// @return the witness of a key that has just been read
Witness witnessOf(const etcdserverpb::KeyValue& entry);

/// @return whether the engine's answer to a query for the witness's key shows that witness
bool shows(const etcdserverpb::RangeResponse& answer, const Witness& witness);

} // namespace connector::etcd::detail
