#include <connector/configuration/watching/NotificationPass.hpp>

#include <algorithm>
#include <utility>

namespace connector::configuration::detail {

NotificationPass::NotificationPass(OptionStreams& newStreams, const std::string& key)
    : streams(newStreams), end(streams.streams.empty() ? 0 : streams.streams.rbegin()->first + 1),
      served(publishersOf(key)) {
    streams.passes.push_back(this);
}

NotificationPass::~NotificationPass() {
    // The destructors of publishers can call anything, so this pass must already be off the list.
    streams.passes.erase(std::find(streams.passes.begin(), streams.passes.end(), this));
    while (!removed.empty())
        streams.release(removed.extract(removed.begin()));
}

NotificationPass::Publishers NotificationPass::publishersOf(const std::string& key) const {
    Publishers publishers;
    const auto ofKey = streams.watchersByKey.find(key);
    if (ofKey == streams.watchersByKey.end())
        return publishers;
    const auto& [all, removed] = ofKey->second;
    publishers.reserve(all.size() - removed);
    for (const OptionStreams::Watcher& watcher : all) {
        if (watcher.publisher != nullptr)
            publishers.push_back(watcher.publisher);
    }
    return publishers;
}

} // namespace connector::configuration::detail
