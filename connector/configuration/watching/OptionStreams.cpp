#include <connector/configuration/watching/OptionStreams.hpp>

#include <algorithm>
#include <utility>

namespace connector::configuration::detail {

OptionStreams::~OptionStreams() {
    watchersByKey.clear(); // they refer to what goes now
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
    const auto stream = streams.find(id);
    if (stream == streams.end())
        return nullptr;
    for (Pass* const pass : passes) {
        if (id < pass->end)
            pass->removed.emplace(id, stream->second.publisher);
    }
    removeWatcher(stream->second.key, id);
    Publisher publisher = std::move(stream->second.publisher);
    streams.erase(stream);
    return publisher;
}

/// Only marks the watcher, and clears up when half of them are marked: to close the gap each time would
/// make it quadratic to remove all from the oldest to the newest.
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

OptionStreams::Pass::Pass(OptionStreams& newStreams, const std::string& key)
    : streams(newStreams), end(streams.streams.empty() ? 0 : streams.streams.rbegin()->first + 1),
      served(streams.publishersOf(key)) {
    streams.passes.push_back(this);
}

OptionStreams::Pass::~Pass() {
    // What goes now can call anything, so it must not find this pass any more.
    streams.passes.erase(std::find(streams.passes.begin(), streams.passes.end(), this));
    while (!removed.empty())
        removed.erase(removed.begin());
}

std::vector<OptionPublisher*> OptionStreams::publishersOf(const std::string& key) const {
    std::vector<OptionPublisher*> publishers;
    const auto ofKey = watchersByKey.find(key);
    if (ofKey == watchersByKey.end())
        return publishers;
    const auto& [all, removed] = ofKey->second;
    publishers.reserve(all.size() - removed);
    for (const Watcher& watcher : all) {
        if (watcher.publisher != nullptr)
            publishers.push_back(watcher.publisher);
    }
    return publishers;
}

} // namespace connector::configuration::detail
