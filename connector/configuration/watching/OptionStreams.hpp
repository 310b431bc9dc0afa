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

    bool areThereAny(const std::string& key) const { return watchersByKey.count(key) != 0; }

    /// @return the publisher of the stream, for the caller to let go of when no lock is held: its
    ///         destructor calls the subscriber; null for an unknown id
    Publisher remove(std::uint64_t id);

    /// A pass over the streams of one key, in the order in which they were added. What it serves is
    /// settled when it begins. While it lives it keeps every publisher of that moment alive, those of
    /// other keys included, whoever ends their streams meanwhile; it does so without touching them,
    /// by holding only what is removed. To count a reference to each would make a change of an int
    /// with 1,000 watchers half as long again. It is made and destroyed under the lock.
    class Pass {
    public:
        Pass(OptionStreams& newStreams, const std::string& key);
        /// Lets the removed publishers go in the order in which their streams were added.
        ~Pass();
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

        const std::vector<OptionPublisher*>& publishers() const { return served; }

    private:
        friend class OptionStreams;

        OptionStreams& streams;
        const std::uint64_t end; // the ids of the streams that came before it are smaller
        const std::vector<OptionPublisher*> served;
        std::map<std::uint64_t, Publisher> removed;
    };

private:
    struct Stream {
        std::string key;
        Publisher publisher;
    };
    struct Watcher {
        std::uint64_t id;
        OptionPublisher* publisher; // that of the stream with the id; null once it is removed
    };
    struct Watchers {
        std::vector<Watcher> all; // ids ascend
        std::size_t removed = 0;  // of all; never more than half
    };

    std::vector<OptionPublisher*> publishersOf(const std::string& key) const;
    void removeWatcher(const std::string& key, std::uint64_t id);

    std::map<std::uint64_t, Stream> streams;
    std::vector<Pass*> passes;                               // those that run, on whatever thread
    std::unordered_map<std::string, Watchers> watchersByKey; // no empty ones
};

} // namespace connector::configuration::detail
