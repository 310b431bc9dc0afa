/// Changes, on their way from the configuration to the clients that are told.
#include <connector/service/events/EventHub.hpp>

#include <connector/service/events/EventHubReading.hpp>

#include <algorithm>
#include <new>
#include <random>
#include <set>
#include <string_view>
#include <utility>

namespace connector::service {

namespace {

std::string makeInstance() {
    constexpr char digits[] = "0123456789abcdef";
    std::random_device random;
    std::string text;
    for (int i = 0; i < 12; ++i)
        text += digits[random() % 16];
    return text + '-';
}

} // namespace

EventHub::EventHub(boost::asio::io_context& io, configuration::ConfigurationImpl& newConfiguration,
                   const Secrets& newSecrets, Workers& newWorkers)
    : configuration(newConfiguration), secrets(newSecrets), workers(newWorkers),
      instance(makeInstance()), wake(io, signal, [this] { onSignal(); }) {
}

void EventHub::listenOnce() {
    const std::lock_guard<std::mutex> lock(listening);
    if (registration == nullptr)
        registration =
            configuration.listen([keys = changedKeys](const std::string& key) { keys->add(key); });
}

void EventHub::delivered(Topic& topic) noexcept {
    --topic.sending;
    topic.wasDelivered = true;
    readAgainIfStale(topic);
    forgetIfGone(topic);
}

void EventHub::onSignal() {
    const ChangedKeys::Keys keys = changedKeys->take();
    try {
        onChange(keys);
        submit();
    } catch (const std::bad_alloc&) {
        changedKeys->addEvery(); // nothing is lost
        throw;
    }
}

void EventHub::onChange(const ChangedKeys::Keys& keys) {
    for (const std::string& key : keys.some)
        onChange(key);
    if (!keys.isEvery)
        return;
    for (auto& [key, topic] : topics)
        onChange(topic);
    for (EventSession* const session : prefixSessions)
        session->wantsPrefixes = true;
}

void EventHub::onChange(const std::string& key) {
    auto found = topics.find(key);
    if (found == topics.end()) {
        for (EventSession* const session : prefixSessions) {
            if (session->matchesPrefix(key))
                join(*session, topicOf(key));
        }
        found = topics.find(key);
    }
    if (found != topics.end())
        onChange(found->second);
}

void EventHub::onChange(Topic& topic) noexcept {
    topic.isStale = true;
    if (topic.sessions.empty())
        topic.changeId = ++lastId; // for clients that come back; nobody needs the value yet
    readAgainIfStale(topic);
}

/// While an event of the key is on its way and nobody has got it, a newer one would only replace
/// it.
void EventHub::readAgainIfStale(Topic& topic) noexcept {
    if (topic.isStale && !topic.isOnItsWay() && !topic.sessions.empty())
        read(topic);
}

void EventHub::read(Topic& topic) noexcept {
    if (topic.isWanted)
        return;
    topic.isWanted = true;
    topic.nextWanted = std::exchange(firstWanted, &topic);
    signal->raise();
}

void EventHub::tick() noexcept {
    if (std::exchange(lacksMemory, false))
        changedKeys->addEvery();
}

/// Has a worker read everything that is wanted.
void EventHub::submit() {
    if (isReading)
        return;
    std::vector<Wanted> wanted;
    for (const Topic* topic = firstWanted; topic != nullptr; topic = topic->nextWanted)
        wanted.push_back({topic->key, topic->isStale});
    std::reverse(wanted.begin(), wanted.end()); // into the order in which they became wanted
    std::set<std::string> all;
    for (const EventSession* const session : prefixSessions) {
        if (session->wantsPrefixes)
            all.insert(session->watched.prefixes.begin(), session->watched.prefixes.end());
    }
    std::vector<std::string> prefixes = outermost({all.begin(), all.end()});
    if (wanted.empty() && prefixes.empty())
        return begin(newSessions); // they know everything
    workers.run(std::make_unique<Reading>(*this, std::move(wanted), std::move(prefixes)));

    isReading = true;
    startingSessions.swap(newSessions); // there are none yet, since nothing was being read
    for (EventSession* const session : prefixSessions)
        session->wantsPrefixes = false;
    while (Topic* const topic = firstWanted) {
        firstWanted = std::exchange(topic->nextWanted, nullptr);
        topic->isWanted = false;
        topic->isStale = false; // a change from now on makes it so again
    }
}

/// From now on, the sessions are told events. The first ones go in the order of their ids: a client
/// that comes back with the id of one of them knows all before it.
void EventHub::begin(std::unordered_set<EventSession*>& sessions) {
    while (!sessions.empty()) {
        EventSession* const session = *sessions.begin();
        sessions.erase(sessions.begin());
        session->hasBegun = true;
        session->onEvent();
    }
}

/// @param answers  those to the prefixes first, then those to `wanted`, unless a source has failed
void EventHub::apply(const std::vector<Wanted>& wanted, const std::vector<Answer>& answers) {
    std::unordered_set<std::string_view> changed;
    for (const Wanted& option : wanted) {
        if (option.isChange)
            changed.insert(option.key);
    }
    for (const Answer& answer : answers) {
        Topic& topic = topicOf(answer.key);
        for (EventSession* const session : prefixSessions) {
            if (session->matchesPrefix(answer.key))
                join(*session, topic);
        }
        topic.isAbsent = answer.text == nullptr;
        if (topic.isAbsent)
            withdraw(topic);
        else
            tell(topic, answer.text, changed.count(answer.key) != 0 || topic.changeId == 0);
        forgetIfGone(topic);
    }
}

/// @param isChange  whether all clients of the key are told, or only those that wait for its value
void EventHub::tell(Topic& topic, const std::shared_ptr<const std::string>& text, bool isChange) {
    if (isChange) {
        withdraw(topic);
        topic.changeId = ++lastId;
    }
    const auto told = isChange ? topic.sessions : topic.waiting;
    topic.waiting.clear();
    if (told.empty())
        return;
    topic.text = text;
    topic.wasDelivered = false;
    for (EventSession* const session : told) // all of them before the first one takes the text
        topic.owed += session->pending.emplace(topic.changeId, &topic).second ? 1 : 0;
    for (EventSession* const session : told)
        session->onEvent();
}

/// Clients that have not begun to get the event of a key get it no more.
void EventHub::withdraw(Topic& topic) noexcept {
    if (topic.owed > 0) {
        for (EventSession* const session : topic.sessions)
            session->pending.erase(topic.changeId);
    }
    topic.owed = 0;
    topic.text.reset();
}

} // namespace connector::service
