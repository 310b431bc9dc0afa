#include "RandomWorkload.hpp"

#include <boost/variant/get.hpp>

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace test::model {

using connector::configuration::OptionValue;

namespace {

thread_local std::mt19937_64 engine;
thread_local int depth = 0; // nesting of reactions on this thread

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

RandomSubscriber::RandomSubscriber(RandomWorkload& newWorkload, std::string newKey,
                                   std::uint64_t newDemand)
    : key(std::move(newKey)), workload(newWorkload), firstDemand(newDemand) {
    ++workload.subscribers;
}

RandomSubscriber::~RandomSubscriber() {
    --workload.subscribers;
}

void RandomSubscriber::onSubscribe(std::weak_ptr<Subscription> newSubscription) {
    subscription = std::move(newSubscription);
    request(firstDemand);
}

void RandomSubscriber::onNext(const OptionValue& value) {
    if (++received > requested)
        ++violations;
    last = boost::get<int>(value);
    ++workload.deliveries;
    workload.react(*this);
}

void RandomSubscriber::request(std::uint64_t count) {
    requested += count;
    if (const auto alive = subscription.lock())
        alive->request(count);
}

void RandomSubscriber::cancel() {
    isCancelled = true;
    if (const auto alive = subscription.lock())
        alive->cancel();
}

const std::vector<std::string>& RandomWorkload::keys() {
    static const std::vector<std::string> keys = {"a", "b", "net.port", "net.host"};
    return keys;
}

void RandomWorkload::seed(std::uint64_t seed) {
    engine.seed(seed);
}

void RandomWorkload::step() {
    static const std::vector<void (RandomWorkload::*)()> choices = {
        &RandomWorkload::set,          &RandomWorkload::set,     &RandomWorkload::set,
        &RandomWorkload::setInSource,  &RandomWorkload::read,    &RandomWorkload::addSource,
        &RandomWorkload::removeSource, &RandomWorkload::watch,   &RandomWorkload::watch,
        &RandomWorkload::request,      &RandomWorkload::request, &RandomWorkload::request,
        &RandomWorkload::cancel,       &RandomWorkload::release, &RandomWorkload::removeStream,
    };
    ++steps;
    try {
        (this->*oneOf(choices))();
    } catch (const SubscriberFailure&) {
        ++caught;
    }
}

void RandomWorkload::react(RandomSubscriber& subscriber) {
    if (isQuiet || depth > 2)
        return;
    ++depth;
    switch (below(12)) {
    case 0:
    case 1:
        step();
        break;
    case 2:
        subscriber.cancel();
        break;
    case 3:
    case 4:
        --depth;
        ++thrown;
        throw SubscriberFailure();
    default:
        subscriber.request(below(3));
    }
    --depth;
}

void RandomWorkload::quiesce() {
    isQuiet = true;
    for (Slot& slot : slots) {
        slot.publisher.reset();
        slot.subscriber.reset();
    }
    for (const std::string& name : names)
        std::ignore = configuration->removeSource(name);
}

std::vector<RandomWorkload::Stream> RandomWorkload::takeStreams() {
    const std::lock_guard<std::mutex> lock(streamsMutex);
    return std::exchange(streams, {});
}

void RandomWorkload::set() {
    std::ignore = configuration->set(oneOf(keys()), ++lastValue);
}

void RandomWorkload::setInSource() {
    std::ignore =
        configuration->set(oneOf(keys()), ++lastValue, below(3) == 0 ? "default" : anyName());
}

void RandomWorkload::read() {
    const std::string& key = oneOf(keys());
    switch (below(4)) {
    case 0:
        std::ignore = configuration->has(key);
        break;
    case 1:
        std::ignore = configuration->getOption(key);
        break;
    case 2:
        std::ignore = configuration->keys();
        break;
    default:
        std::ignore = configuration->get(key);
    }
}

void RandomWorkload::addSource() {
    static const std::vector<std::string> groups = {"", "net"};
    static const std::vector<std::string> localKeys = {"a", "b", "port", "host", "net.port"};
    std::unordered_map<std::string, OptionValue> entries;
    for (std::size_t count = below(3); count > 0; --count)
        entries.emplace(oneOf(localKeys), ++lastValue);
    std::ignore =
        configuration->addInMemorySource(anyName(), oneOf(groups), static_cast<int>(below(4)) - 2,
                                         below(4) == 0, std::move(entries));
}

void RandomWorkload::removeSource() {
    std::ignore = configuration->removeSource(anyName());
}

/// Replaces the content of a slot. The old stream exists for as long as the configuration keeps it.
void RandomWorkload::watch() {
    limitStreams();
    const std::string& key = oneOf(keys());
    auto publisher = configuration->watchOption(key);
    ++streamsMade;
    auto subscriber = std::make_shared<RandomSubscriber>(*this, key, below(4));
    try {
        publisher->subscribe(subscriber);
    } catch (const SubscriberFailure&) {
        ++caught;
    }
    {
        const std::lock_guard<std::mutex> lock(streamsMutex);
        streams.push_back({publisher, subscriber});
    }
    Slot& slot = anySlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    slot.publisher.swap(publisher);
    slot.subscriber.swap(subscriber);
}

/// The ids of the newest streams are just below the number of streams created.
void RandomWorkload::removeStream() {
    const std::uint64_t made = streamsMade;
    configuration->removeStream(made - std::min<std::uint64_t>(made, below(32)));
}

void RandomWorkload::request() {
    if (const auto subscriber = anySubscriber())
        subscriber->request(below(4));
}

void RandomWorkload::cancel() {
    if (const auto subscriber = anySubscriber())
        subscriber->cancel();
}

void RandomWorkload::release() {
    std::shared_ptr<Publisher> publisher; // destroyed after the lock
    Slot& slot = anySlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    publisher.swap(slot.publisher);
}

RandomWorkload::Slot& RandomWorkload::anySlot() {
    return slots[below(slots.size())];
}

std::shared_ptr<RandomSubscriber> RandomWorkload::anySubscriber() {
    Slot& slot = anySlot();
    const std::lock_guard<std::mutex> lock(slot.mutex);
    return slot.subscriber;
}

/// Drops streams that have ended, and cancels the oldest when too many are left.
void RandomWorkload::limitStreams() {
    std::vector<Stream> ended;
    std::shared_ptr<RandomSubscriber> oldest;
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
            oldest = streams.front().subscriber;
    }
    if (oldest)
        oldest->cancel();
}

} // namespace test::model
