/// A configuration in the hands of many threads at once, each of which does whatever comes to its
/// mind, and the watchers, who do so, too, whenever they are called.
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

class Scene;

/// A subscriber. Any number of threads call it at once.
class Watcher final
    : public connector::reactive_streams::Subscriber<connector::configuration::OptionValue> {
public:
    using Subscription = connector::reactive_streams::Subscription;
    using OptionValue = connector::configuration::OptionValue;

    /// @param newScene  outlives the watcher
    Watcher(Scene& newScene, std::string newKey, std::uint64_t newDemand);
    ~Watcher() override;

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override;
    void onNext(const OptionValue& value) override;
    void onComplete() override { ++completions; }
    void onError(std::exception_ptr) override { ++breaches; }

    void request(std::uint64_t count);
    void cancel();

    /// @return the values asked for and not yet received
    std::uint64_t demand() const { return requested - received; }

    const std::string key;
    std::atomic<int> last{0};
    std::atomic<std::uint64_t> received{0};
    std::atomic<bool> isCancelled{false};
    std::atomic<int> completions{0};
    std::atomic<int> breaches{0}; ///< calls that no publisher may make

private:
    Scene& scene;
    const std::uint64_t firstDemand;
    std::weak_ptr<Subscription> subscription; // set before anybody else can reach the watcher
    std::atomic<std::uint64_t> requested{0};
};

/// What a watcher throws.
class Thrown : public std::runtime_error {
public:
    Thrown() : std::runtime_error("thrown by a watcher") {}
};

class Scene {
public:
    using Configuration = connector::configuration::ConfigurationImpl;
    using Publisher = Configuration::OptionPublisher;

    /// A stream that was made, whatever became of it.
    struct Stream {
        std::weak_ptr<Publisher> publisher;
        std::shared_ptr<Watcher> watcher;
    };

    static const std::vector<std::string>& keys();

    /// Makes the calling thread's choices from now on.
    static void seed(std::uint64_t seed);

    /// Does one thing at random.
    void act();

    /// What a watcher does with a value: something at random, or nothing once the scene is calm.
    void react(Watcher& watcher);

    /// From now on watchers just take their values, only the configuration keeps publishers, and only
    /// its own sources are left.
    void calm();

    /// Streams that ended long ago are left out.
    std::vector<Stream> takeStreams();

    std::shared_ptr<Configuration> configuration = std::make_shared<Configuration>();

    std::atomic<std::uint64_t> actions{0};
    std::atomic<std::uint64_t> deliveries{0};
    std::atomic<std::uint64_t> thrown{0};
    std::atomic<std::uint64_t> caught{0};  ///< what came back to those who act
    std::atomic<std::int64_t> watchers{0}; ///< that are alive

private:
    struct Slot {
        std::mutex mutex;
        std::shared_ptr<Publisher> publisher; // guarded by mutex
        std::shared_ptr<Watcher> watcher;     // guarded by mutex
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
    void letGo();

    Slot& anySlot();
    std::shared_ptr<Watcher> anyWatcher();
    void makeRoom();

    // No call into the configuration or a publisher is made under one of these mutexes.
    std::array<Slot, 16> slots;
    std::mutex streamsMutex;
    std::vector<Stream> streams; // guarded by streamsMutex
    std::atomic<std::uint64_t> streamsMade{0};
    std::atomic<int> lastValue{0};
    std::atomic<bool> isCalm{false};
};

} // namespace test::model
