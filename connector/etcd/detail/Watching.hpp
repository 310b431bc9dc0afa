/// Interprets the messages of a watch.
#pragma once

#include <connector/etcd/detail/Update.hpp>

#include <etcdserverpb/rpc.pb.h>

#include <cstdint>
#include <string>
#include <vector>

namespace connector::etcd::detail {

/// Follows the revisions of one prefix. Used by the network thread only; makes no call itself.
class Watching {
public:
    enum class News : std::uint8_t {
        None,      ///< a part of a message, or a sign of life
        Began,     ///< the watch was created
        Changed,   ///< whole revisions have come, or the revision alone has advanced
        Compacted, ///< the next revision is not there any more
    };

    Watching(const std::string& newPrefix, Known newKnown);

    /// @return the request that begins the watch after the known revision
    etcdserverpb::WatchRequest begin() const;

    /// @throws std::runtime_error when the watch is refused, or the message is nonsense
    News take(const etcdserverpb::WatchResponse& message);

    /// @return the changes since the last call
    Changes takeChanges();

    /// @return what is known now
    const Known& known() const { return present; }

    /// @return keys that no option can have, since the last call
    std::uint64_t takeIgnored();

private:
    News takeEvents(const etcdserverpb::WatchResponse& message);
    void takeEvent(const etcdserverpb::Event& event);
    void noteUnreadable(const std::string& key, bool isUnreadable);
    void noteWitness(const etcdserverpb::Event& event);

    const std::string prefix;
    Known present;
    std::int64_t newest = 0; ///< of the events of a message whose fragments are still coming
    std::vector<KeyChange> changes;
    std::uint64_t ignored = 0;
};

} // namespace connector::etcd::detail
