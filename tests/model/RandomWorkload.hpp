/// A configuration that many threads use at once. Each thread, and each subscriber that is called,
/// runs random operations.
#pragma once

#include <connector/configuration/ConfigurationImpl.hpp>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace test::model {

class RandomWorkload;

/// A subscriber. Several threads may call it at once.
class RandomSubscriber final
    : public connector::reactive_streams::Subscriber<connector::configuration::OptionValue> {
public:
    using Subscription = connector::reactive_streams::Subscription;
    using OptionValue = connector::configuration::OptionValue;

    /// @param newWorkload  outlives the subscriber
    RandomSubscriber(RandomWorkload& newWorkload, std::string newKey, std::uint64_t newDemand);
    ~RandomSubscriber() override;

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override;
    void onNext(const OptionValue& value) override;
    void onComplete() override { ++completions; }
    void onError(std::exception_ptr) override { ++violations; }

    void request(std::uint64_t count);
    void cancel();

    /// @return the number of values requested and not yet received
    std::uint64_t demand() const { return requested - received; }

    const std::string key;
    std::atomic<int> last{0};
    std::atomic<std::uint64_t> received{0};
    std::atomic<bool> isCancelled{false};
    std::atomic<int> completions{0};
    std::atomic<int> violations{0}; ///< calls that a publisher must not make

private:
    RandomWorkload& workload;
    const std::uint64_t firstDemand;
    std::weak_ptr<Subscription> subscription; // set before another thread can use the subscriber
    std::atomic<std::uint64_t> requested{0};
};

/// Thrown by a subscriber.
class SubscriberFailure : public std::runtime_error {
public:
    SubscriberFailure() : std::runtime_error("thrown by a subscriber") {}
};

class RandomWorkload {
public:
    using Configuration = connector::configuration::ConfigurationImpl;
    using Publisher = Configuration::OptionPublisher;

    /// A stream that was created; it may have ended.
    struct Stream {
        std::weak_ptr<Publisher> publisher;
        std::shared_ptr<RandomSubscriber> subscriber;
    };

    static const std::vector<std::string>& keys();

    /// Seeds the random choices of the calling thread.
    static void seed(std::uint64_t seed);

    /// Runs one random operation.
    void step();

    /// The reaction of a subscriber to a value: a random operation, or nothing after quiesce().
    void react(RandomSubscriber& subscriber);

    /// From now on subscribers do not react, only the configuration keeps publishers, and only the
    /// built-in sources are left.
    void quiesce();

    /// Excludes streams that ended long ago.
    std::vector<Stream> takeStreams();

    std::shared_ptr<Configuration> configuration = std::make_shared<Configuration>();

    std::atomic<std::uint64_t> steps{0};
    std::atomic<std::uint64_t> deliveries{0};
    std::atomic<std::uint64_t> thrown{0};
    std::atomic<std::uint64_t> caught{0};     ///< failures that reached the caller of an operation
    std::atomic<std::int64_t> subscribers{0}; ///< alive now

private:
    struct Slot {
        std::mutex mutex;
        std::shared_ptr<Publisher> publisher;         // guarded by mutex
        std::shared_ptr<RandomSubscriber> subscriber; // guarded by mutex
    };

    void set();
    void setInSource();
    void read();
    void addSource();
    void removeSource();
    void watch();
    void removeStream();
    void request();
    void cancel();
    void release();

    Slot& anySlot();
    std::shared_ptr<RandomSubscriber> anySubscriber();
    void limitStreams();

    // These mutexes are never held during a call into the configuration or a publisher.
    std::array<Slot, 16> slots;
    std::mutex streamsMutex;
    std::vector<Stream> streams; // guarded by streamsMutex
    std::atomic<std::uint64_t> streamsMade{0};
    std::atomic<int> lastValue{0};
    std::atomic<bool> isQuiet{false};
};

} // namespace test::model
