#include <connector/configuration/watching/NotificationPass.hpp>

#include <algorithm>
#include <utility>

namespace connector::configuration::detail {

NotificationPass::NotificationPass(OptionStreams& newStreams, const std::string& key)
    : streams(newStreams), end(streams.streams.empty() ? 0 : streams.streams.rbegin()->first + 1),
      served(streams.publishersOf(key)) {
    streams.passes.push_back(this);
}

NotificationPass::~NotificationPass() {
    // The destructors of publishers can call anything, so this pass must already be off the list.
    streams.passes.erase(std::find(streams.passes.begin(), streams.passes.end(), this));
    while (!removed.empty())
        streams.release(removed.extract(removed.begin()));
}

} // namespace connector::configuration::detail
