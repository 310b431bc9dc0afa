/// The live streams of a configuration, by id and by key.
#pragma once

#include <connector/async/CachedValuePublisher.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace connector::configuration::detail {

using OptionPublisher = reactive_streams::CachedValuePublisher<OptionValue, std::function<void()>>;

/// Keeps a publisher alive while its stream is listed. A change of a key costs that key's own
/// watchers, however many other streams there are. Has no lock: the configuration's mutex guards it.
class OptionStreams {
public:
    using Publisher = std::shared_ptr<OptionPublisher>;

    OptionStreams() = default;
    /// Lets the publishers go in the order in which their streams were added.
    ~OptionStreams();
    OptionStreams(const OptionStreams&) = delete;
    OptionStreams& operator=(const OptionStreams&) = delete;

    /// @param id  greater than that of every stream added before
    void add(std::uint64_t id, const std::string& key, Publisher publisher);

    /// @return the publisher of the stream, for the caller to let go of when no lock is held: its
    ///         destructor calls the subscriber; null for an unknown id
    Publisher remove(std::uint64_t id);

    /// @return the publishers of the key's streams, in the order in which those were added
    std::vector<Publisher> publishersOf(const std::string& key) const;

private:
    struct Stream {
        std::string key;
        Publisher publisher;
    };
    struct Watcher {
        std::uint64_t id;
        Publisher publisher;
    };

    std::map<std::uint64_t, Stream> streams;
    std::unordered_map<std::string, std::vector<Watcher>>
        watchersByKey; // ids ascend; no empty ones
};

} // namespace connector::configuration::detail
