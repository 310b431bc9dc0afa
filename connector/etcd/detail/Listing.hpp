/// Reads all keys of a prefix at one revision, in pages.
#pragma once

#include <connector/etcd/detail/Update.hpp>

#include <etcdserverpb/rpc.pb.h>

#include <cstdint>
#include <set>
#include <string>

namespace connector::etcd::detail {

/// Says what to ask and takes the answers. Used by the network thread only; makes no call itself.
class Listing {
public:
    explicit Listing(const std::string& newPrefix);

    /// @return the request for the next page. The first page decides the revision of all.
    etcdserverpb::RangeRequest next() const;

    /// @return whether this was the last page
    /// @throws std::runtime_error when the answer is nonsense
    bool take(const etcdserverpb::RangeResponse& page);

    /// @return the keys that no option can have
    std::uint64_t ignored() const { return ignoredKeys; }

    /// Once, after the last page.
    List result();

private:
    void takeEntry(const etcdserverpb::KeyValue& entry);
    void adaptPageSize(const etcdserverpb::RangeResponse& page);

    const std::string prefix;
    const std::string end;
    std::string from;
    std::int64_t pageSize;
    std::int64_t revision = 0;
    std::uint64_t clusterId = 0;
    std::uint64_t ignoredKeys = 0;
    sources::Table table;
    std::set<std::string> unreadable;
    Witness witness;
};

} // namespace connector::etcd::detail
