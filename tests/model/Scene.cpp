#include "Scene.hpp"

#include <boost/variant/get.hpp>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace test::model {

using connector::configuration::OptionValue;

namespace {

thread_local std::mt19937_64 engine;
thread_local int depth = 0; // of watchers that act within one another on this thread

std::size_t below(std::size_t end) {
    return engine() % end;
}

template <typename T>
const T& oneOf(const std::vector<T>& choices) {
    return choices[below(choices.size())];
}

const std::vector<std::string> names = {"s", "t", "u", "v"};

const std::string& anyName() {
    return oneOf(names);
}

} // namespace

Watcher::Watcher(Scene& newScene, std::string newKey, std::uint64_t newDemand)
    : key(std::move(newKey)), scene(newScene), firstDemand(newDemand) {
    ++scene.watchers;
}

Watcher::~Watcher() {
    --scene.watchers;
}

void Watcher::onSubscribe(std::weak_ptr<Subscription> newSubscription) {
    subscription = std::move(newSubscription);
    request(firstDemand);
}

void Watcher::onNext(const OptionValue& value) {
    if (++received > requested)
        ++breaches;
    last = boost::get<int>(value);
    ++scene.deliveries;
    scene.react(*this);
}

void Watcher::request(std::uint64_t count) {
    requested += count;
    if (const auto alive = subscription.lock())
        alive->request(count);
}

void Watcher::cancel() {
    isCancelled = true;
    if (const auto alive = subscription.lock())
        alive->cancel();
}

const std::vector<std::string>& Scene::keys() {
    static const std::vector<std::string> keys = {"a", "b", "net.port", "net.host"};
    return keys;
}

void Scene::seed(std::uint64_t seed) {
    engine.seed(seed);
}

void Scene::act() {
    static const std::vector<void (Scene::*)()> choices = {
        &Scene::set,    &Scene::set,       &Scene::set,          &Scene::setInSource,
        &Scene::read,   &Scene::addSource, &Scene::removeSource, &Scene::watch,
        &Scene::watch,  &Scene::request,   &Scene::request,      &Scene::request,
        &Scene::cancel, &Scene::letGo,     &Scene::removeStream,
    };
    ++actions;
    try {
        (this->*oneOf(choices))();
    } catch (const Thrown&) {
        ++caught;
    }
}

void Scene::react(Watcher& watcher) {
    if (isCalm || depth > 2)
        return;
    ++depth;
    switch (below(12)) {
    case 0:
    case 1:
        act();
        break;
    case 2:
        watcher.cancel();
        break;
    case 3:
    case 4:
        --depth;
        ++thrown;
        throw Thrown();
    default:
        watcher.request(below(3));
    }
    --depth;
}

void Scene::calm() {
    isCalm = true;
    for (Slot& slot : slots) {
        slot.publisher.reset();
        slot.watcher.reset();
    }
    for (const std::string& name : names)
        configuration->removeSource(name);
}

std::vector<Scene::Stream> Scene::takeStreams() {
    const std::lock_guard<std::mutex> lock(streamsMutex);
    return std::exchange(streams, {});
}

void Scene::set() {
    configuration->set(oneOf(keys()), ++lastValue);
}

void Scene::setInSource() {
    configuration->set(oneOf(keys()), ++lastValue, below(3) == 0 ? "default" : anyName());
}

void Scene::read() {
    const std::string& key = oneOf(keys());
    switch (below(4)) {
    case 0:
        configuration->has(key);
        break;
    case 1:
        configuration->getOption(key);
        break;
    case 2:
        configuration->keys();
        break;
    default:
        configuration->get(key);
    }
}

void Scene::addSource() {
    static const std::vector<std::string> groups = {"", "net"};
    static const std::vector<std::string> localKeys = {"a", "b", "port", "host", "net.port"};
    std::unordered_map<std::string, OptionValue> entries;
    for (std::size_t count = below(3); count > 0; --count)
        entries.emplace(oneOf(localKeys), ++lastValue);
    configuration->addInMemorySource(anyName(), oneOf(groups), static_cast<int>(below(4)) - 2,
                                     below(4) == 0, std::move(entries));
}

void Scene::removeSource() {
    configuration->removeSource(anyName());
}

/// Replaces what a slot held: that stream lives on for as long as the configuration keeps it.
void Scene::watch() {
    makeRoom();
    const std::string& key = oneOf(keys());
    auto publisher = configuration->watchOption(key);
    ++streamsMade;
    auto watcher = std::make_shared<Watcher>(*this, key, below(4));
    try {
        publisher->subscribe(watcher);
    } catch (const Thrown&) {
        ++caught;
    }
    {
        const std::lock_guard<std::mutex> lock(streamsMutex);
        streams.push_back({publisher, watcher});
    }
    Slot& slot = anySlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    slot.publisher.swap(publisher);
    slot.watcher.swap(watcher);
}

/// The ids of the youngest streams are near the number of those that were made.
void Scene::removeStream() {
    const std::uint64_t made = streamsMade;
    configuration->removeStream(made - std::min<std::uint64_t>(made, below(32)));
}

void Scene::request() {
    if (const auto watcher = anyWatcher())
        watcher->request(below(4));
}

void Scene::cancel() {
    if (const auto watcher = anyWatcher())
        watcher->cancel();
}

void Scene::letGo() {
    std::shared_ptr<Publisher> publisher; // goes after the lock
    Slot& slot = anySlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    publisher.swap(slot.publisher);
}

Scene::Slot& Scene::anySlot() {
    return slots[below(slots.size())];
}

std::shared_ptr<Watcher> Scene::anyWatcher() {
    Slot& slot = anySlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    return slot.watcher;
}

/// Forgets streams that have ended; while there are too many others, ends the oldest.
void Scene::makeRoom() {
    std::vector<Stream> ended;
    std::shared_ptr<Watcher> oldest;
    {
        const std::lock_guard<std::mutex> lock(streamsMutex);
        if (streams.size() < 128)
            return;
        const auto firstEnded =
            std::stable_partition(streams.begin(), streams.end(),
                                  [](const Stream& stream) { return !stream.publisher.expired(); });
        ended.assign(std::make_move_iterator(firstEnded), std::make_move_iterator(streams.end()));
        streams.erase(firstEnded, streams.end());
        if (streams.size() > 64)
            oldest = streams.front().watcher;
    }
    if (oldest)
        oldest->cancel();
}

} // namespace test::model
