#include <connector/configuration/watching/OptionStreams.hpp>

#include <connector/configuration/watching/NotificationPass.hpp>

#include <algorithm>
#include <utility>

namespace connector::configuration::detail {

OptionStreams::~OptionStreams() {
    watchersByKey.clear(); // they refer to the streams that are destroyed next
    while (!streams.empty())
        streams.erase(streams.begin());
}

void OptionStreams::add(std::uint64_t id, const std::string& key, Publisher publisher) {
    OptionPublisher* const watcher = publisher.get();
    const auto stream = streams.emplace_hint(streams.end(), id, Stream{key, std::move(publisher)});
    try {
        watchersByKey[key].all.push_back({id, watcher});
    } catch (...) {
        streams.erase(stream);
        throw;
    }
}

OptionStreams::Publisher OptionStreams::remove(std::uint64_t id) {
    Streams::node_type stream = streams.extract(id);
    if (stream.empty())
        return nullptr;
    removeWatcher(stream.mapped().key, id);
    return release(std::move(stream));
}

/// Hands a removed stream to a pass that keeps it, if there is one: a node moves without
/// allocating.
/// @return else its publisher
OptionStreams::Publisher OptionStreams::release(Streams::node_type stream) {
    const auto pass =
        std::find_if(passes.begin(), passes.end(),
                     [&stream](const NotificationPass* pass) { return pass->keeps(stream.key()); });
    if (pass == passes.end())
        return std::move(stream.mapped().publisher);
    (*pass)->removed.insert(std::move(stream));
    return nullptr;
}

/// Only marks the watcher, and erases the marked ones when they are more than half. Closing the gap
/// each time would make removing all of them from the oldest to the newest quadratic.
void OptionStreams::removeWatcher(const std::string& key, std::uint64_t id) {
    const auto ofKey = watchersByKey.find(key);
    auto& [all, removed] = ofKey->second;
    std::lower_bound(all.begin(), all.end(), id, [](const Watcher& watcher, std::uint64_t id) {
        return watcher.id < id;
    })->publisher = nullptr;
    if (++removed <= all.size() / 2)
        return;
    all.erase(std::remove_if(all.begin(), all.end(),
                             [](const Watcher& watcher) { return watcher.publisher == nullptr; }),
              all.end());
    removed = 0;
    if (all.empty())
        watchersByKey.erase(ofKey);
}

} // namespace connector::configuration::detail
