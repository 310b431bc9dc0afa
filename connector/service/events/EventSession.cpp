#include <connector/service/events/EventSession.hpp>

#include <connector/service/events/EventHub.hpp>

#include <algorithm>
#include <utility>

namespace connector::service {

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
    return std::any_of(
        watched.prefixes.begin(), watched.prefixes.end(),
        [&key](const std::string& prefix) { return key.compare(0, prefix.size(), prefix) == 0; });
}

} // namespace connector::service
