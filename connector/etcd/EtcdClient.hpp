/// Reads and writes the keys below a prefix of etcd, without following them.
#pragma once

#include <connector/etcd/Change.hpp>
#include <connector/etcd/Conflict.hpp>
#include <connector/etcd/Content.hpp>
#include <connector/etcd/Export.hpp>
#include <connector/etcd/Options.hpp>
#include <connector/etcd/Unknown.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace connector::etcd {

/// What a transaction did.
struct Written {
    std::int64_t revision = 0;
    std::size_t erased = 0; ///< how many of the keys to erase existed
};

/// For programs that read or write once; an EtcdSource follows the engine. Every call waits: it
/// tries all endpoints until one answers, for options.writeTimeout at most, and then waits as long
/// for each answer. Only endpoints, prefix, user, TLS files and this time of the options are used:
/// there is neither a cache file nor a start-up rule.
///
/// Has no threads. Calls may come from any thread, one at a time. Nothing is called back.
class CONNECTOR_ETCD_EXPORT EtcdClient {
public:
    /// Does not connect.
    /// @throws std::invalid_argument when an endpoint cannot be read, there is none, or the prefix
    ///         is empty
    explicit EtcdClient(Options options);
    ~EtcdClient();
    EtcdClient(const EtcdClient&) = delete;
    EtcdClient& operator=(const EtcdClient&) = delete;

    /// @return all options at one revision; keys that no option can have are left out
    /// @throws std::runtime_error "ENDPOINT: CAUSE"
    Content read();

    /// Does all changes in one transaction, or none. Nothing is repeated.
    /// @param changes  1 to 128, of different keys
    /// @throws std::invalid_argument for changes that no transaction can have
    /// @throws Conflict when an expected revision is not true; nothing was written
    /// @throws Unknown "Unknown whether it was written: ENDPOINT: CAUSE"
    /// @throws std::runtime_error "Not written: ENDPOINT: CAUSE"
    Written apply(const std::vector<Change>& changes);

private:
    class Impl;

    const std::unique_ptr<Impl> impl;
};

} // namespace connector::etcd
