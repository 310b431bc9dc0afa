/// The live streams of a configuration, by id and by key.
#pragma once

#include <connector/async/CachedValuePublisher.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace connector::configuration::detail {

using OptionPublisher = reactive_streams::CachedValuePublisher<OptionValue, std::function<void()>>;

class NotificationPass;

/// Keeps a publisher alive while its stream is listed. A change of a key costs that key's own
/// watchers, however many other streams there are. Has no lock: the configuration's mutex guards
/// it.
class OptionStreams {
public:
    using Publisher = std::shared_ptr<OptionPublisher>;

    OptionStreams() = default;
    /// Releases the publishers in the order in which their streams were added.
    ~OptionStreams();
    OptionStreams(const OptionStreams&) = delete;
    OptionStreams& operator=(const OptionStreams&) = delete;

    /// Adds the stream or, when that fails for lack of memory, changes nothing.
    /// @param id  greater than that of every stream added before
    void add(std::uint64_t id, const std::string& key, Publisher publisher);

    /// @return whether there are no streams
    bool isEmpty() const { return streams.empty(); }

    bool hasWatchers(const std::string& key) const { return watchersByKey.count(key) != 0; }

    /// Removes a stream. Does not allocate: the end of a stream must not fail.
    /// @return the publisher, for the caller to release when no lock is held, since its destructor
    ///         calls the subscriber; null for an unknown id, and while a notification pass keeps
    ///         the publisher alive
    Publisher remove(std::uint64_t id);

private:
    friend class NotificationPass;

    struct Stream {
        std::string key;
        Publisher publisher;
    };
    using Streams = std::map<std::uint64_t, Stream>; // by id, which is the order of their addition
    struct Watcher {
        std::uint64_t id;
        OptionPublisher* publisher; // that of the stream with the id; null once it is removed
    };
    struct Watchers {
        std::vector<Watcher> all; // ids ascend
        std::size_t removed = 0;  // of all; never more than half
    };

    void removeWatcher(const std::string& key, std::uint64_t id);
    Publisher release(Streams::node_type stream);

    Streams streams;
    std::vector<NotificationPass*> passes;                   // those that run, on any thread
    std::unordered_map<std::string, Watchers> watchersByKey; // no empty ones
};

} // namespace connector::configuration::detail
