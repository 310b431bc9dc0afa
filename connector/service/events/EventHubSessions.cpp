/// The clients that watch: how they come and go, and which keys are remembered for them.
#include <connector/service/events/EventHub.hpp>

#include <connector/service/text/Number.hpp>

#include <iterator>
#include <string_view>
#include <utility>

namespace connector::service {

namespace {

/// Keys without clients whose last event is remembered, for clients that come back.
constexpr std::size_t maxTopics = 65536;

} // namespace

std::unique_ptr<EventSession> EventHub::open(WatchedKeys watched, const std::string& lastEventId,
                                             EventSession::OnEvent onEvent) {
    forgetUnused();
    auto session = std::make_unique<EventSession>(*this, std::move(watched), seenBy(lastEventId),
                                                  std::move(onEvent));
    newSessions.insert(session.get());
    signal->raise();
    for (const std::string& key : session->watched.keys) {
        Topic& topic = topicOf(key);
        if (!topic.sessions.insert(session.get()).second)
            continue; // the client has named the key before
        ++topic.named;
        if (startWaiting(*session, topic))
            read(topic);
    }
    if (session->watched.prefixes.empty())
        return session;
    forEachBelow(session->watched.prefixes, [&](Topic& topic) {
        if (join(*session, topic))
            read(topic);
    });
    prefixSessions.insert(session.get());
    session->wantsPrefixes = true;
    return session;
}

Topic& EventHub::topicOf(const std::string& key) {
    Topic& topic = topics[key];
    if (topic.key.empty())
        topic.key = key;
    return topic;
}

/// @return whether the client has joined, and waits for the value
bool EventHub::join(EventSession& session, Topic& topic) {
    return topic.sessions.insert(&session).second && startWaiting(session, topic);
}

/// @return whether the client waits for the value; it does unless it knows it from before
bool EventHub::startWaiting(EventSession& session, Topic& topic) {
    const bool knowsIt = topic.changeId != 0 && topic.changeId <= session.seen && !topic.isStale;
    if (!knowsIt)
        topic.waiting.insert(&session);
    return !knowsIt;
}

void EventHub::leave(EventSession& session) noexcept {
    prefixSessions.erase(&session);
    newSessions.erase(&session);
    startingSessions.erase(&session);
    for (const auto& [id, topic] : session.pending) {
        if (--topic->owed == 0)
            topic->text.reset();
    }
    if (session.beingSent != nullptr)
        --session.beingSent->sending;
    for (const std::string& key : session.watched.keys) {
        const auto found = topics.find(key);
        if (found == topics.end() || found->second.sessions.count(&session) == 0)
            continue; // the client has named the key before, or there was no memory to join it
        --found->second.named;
        leave(session, found->second);
    }
    forEachBelow(session.watched.prefixes, [&](Topic& topic) { leave(session, topic); });
}

void EventHub::leave(EventSession& session, Topic& topic) noexcept {
    topic.sessions.erase(&session);
    topic.waiting.erase(&session);
    readAgainIfStale(topic); // it may have waited for this client
    forgetIfGone(topic);
}

/// The action may forget its topic.
template <typename Action>
void EventHub::forEachBelow(const std::vector<std::string>& prefixes, Action action) {
    for (const std::string& prefix : prefixes) {
        auto topic = topics.lower_bound(prefix);
        while (topic != topics.end() && topic->first.compare(0, prefix.size(), prefix) == 0)
            action((topic++)->second);
    }
}

/// Keys may come and go for as long as a client watches their prefix. One that comes back is new:
/// clients are not told of its removal, so they need not know that it is the same.
void EventHub::forgetIfGone(Topic& topic) noexcept {
    const bool isUsed = topic.named > 0 || topic.sending > 0 || topic.isWanted || topic.isStale;
    if (topic.isAbsent && !isUsed)
        topics.erase(topics.find(topic.key));
}

/// Forgets keys that nobody watches. A client that comes back to one is told its value again.
void EventHub::forgetUnused() {
    if (topics.size() <= maxTopics)
        return;
    for (auto topic = topics.begin(); topic != topics.end();) {
        const bool isUsed =
            !topic->second.sessions.empty() || topic->second.sending > 0 || topic->second.isWanted;
        topic = isUsed ? std::next(topic) : topics.erase(topic);
    }
}

std::uint64_t EventHub::seenBy(const std::string& lastEventId) const {
    if (lastEventId.compare(0, instance.size(), instance) != 0)
        return 0;
    const auto id =
        readNumber<std::uint64_t>(std::string_view(lastEventId).substr(instance.size()));
    return id && *id <= lastId ? *id : 0;
}

} // namespace connector::service
