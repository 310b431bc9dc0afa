#include <connector/service/events/EventHub.hpp>

#include <connector/service/text/Json.hpp>
#include <connector/service/text/Number.hpp>

#include <algorithm>
#include <iterator>
#include <new>
#include <random>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace connector::service {

using configuration::Option;

namespace {

/// Keys without clients whose last event is remembered, for clients that come back.
constexpr std::size_t maxTopics = 65536;

std::string makeInstance() {
    constexpr char digits[] = "0123456789abcdef";
    std::random_device random;
    std::string text;
    for (int i = 0; i < 12; ++i)
        text += digits[random() % 16];
    return text + '-';
}

} // namespace

/// An option that a worker is to read.
struct EventHub::Wanted {
    std::string key;
    bool isChange; // all clients are told the value, not only those that wait for it
};

/// An option as a worker has read it.
struct EventHub::Answer {
    std::string key;
    std::shared_ptr<const std::string> text; // null if there is no such option
};

/// Reads options and makes the texts of their events.
class EventHub::Reading : public Task {
public:
    Reading(EventHub& newHub, std::vector<Wanted> newWanted, std::vector<std::string> newPrefixes)
        : hub(newHub), wanted(std::move(newWanted)), prefixes(std::move(newPrefixes)) {}

    void work() noexcept override {
        try {
            hub.listenOnce(); // before the values are read, so that no change is missed
            for (const std::string& prefix : prefixes)
                readBelow(prefix);
            for (const Wanted& option : wanted)
                read(option.key);
        } catch (const std::bad_alloc&) {
            lacksMemory = true;
        }
    }

    void finish() noexcept override {
        hub.isReading = false;
        try {
            hub.apply(wanted, answers);
        } catch (const std::bad_alloc&) {
            lacksMemory = true;
        }
        hub.begin(hub.startingSessions);
        hub.lacksMemory = lacksMemory;
        hub.signal->raise();
    }

private:
    /// A source of the application's may fail. Clients then keep the values that they have.
    void readBelow(const std::string& prefix) {
        try {
            for (const Option& option : hub.configuration.optionsBelow(prefix))
                add(option);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
        }
    }

    /// A value of the application's may be no valid text. It must not hide the others.
    void add(const Option& option) {
        try {
            answers.push_back({option.key, textOf(option)});
        } catch (const std::runtime_error&) {
        }
    }

    void read(const std::string& key) {
        try {
            const std::vector<Option> option = hub.configuration.optionsOf({key});
            answers.push_back({key, option.empty() ? nullptr : textOf(option.front())});
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
        }
    }

    std::shared_ptr<const std::string> textOf(const Option& option) const {
        std::string text = "data: ";
        text += optionJson(hub.secrets.masked(option));
        text += "\n\n";
        return std::make_shared<const std::string>(std::move(text));
    }

    EventHub& hub;
    const std::vector<Wanted> wanted;
    const std::vector<std::string> prefixes;
    std::vector<Answer> answers;
    bool lacksMemory = false;
};

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
