#include <connector/service/events/EventSession.hpp>

#include <connector/service/events/EventHub.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace connector::service {

namespace {

bool beginsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

} // namespace

std::vector<std::string> outermost(std::vector<std::string> prefixes) {
    std::sort(prefixes.begin(), prefixes.end());
    std::vector<std::string> result;
    for (std::string& prefix : prefixes) { // it follows the one that it begins with
        if (result.empty() || !beginsWith(prefix, result.back()))
            result.push_back(std::move(prefix));
    }
    return result;
}

EventSession::EventSession(EventHub& newHub, WatchedKeys newWatched, std::uint64_t newSeen,
                           OnEvent newOnEvent)
    : hub(newHub), watched{std::move(newWatched.keys), outermost(std::move(newWatched.prefixes))},
      seen(newSeen), onEvent(std::move(newOnEvent)) {
}

EventSession::~EventSession() {
    hub.leave(*this);
}

std::optional<Event> EventSession::next() {
    if (!hasBegun || pending.empty())
        return std::nullopt;
    const auto first = pending.begin();
    Topic& topic = *first->second;
    Event event{"id: " + hub.idText(first->first) + '\n', topic.text};
    pending.erase(first);
    beingSent = &topic;
    ++topic.sending;
    if (--topic.owed == 0)
        topic.text.reset();
    return event;
}

void EventSession::sent() {
    if (Topic* const topic = std::exchange(beingSent, nullptr))
        hub.delivered(*topic);
}

bool EventSession::matchesPrefix(const std::string& key) const {
    const auto next = std::upper_bound(watched.prefixes.begin(), watched.prefixes.end(), key);
    return next != watched.prefixes.begin() && beginsWith(key, *std::prev(next));
}

} // namespace connector::service
