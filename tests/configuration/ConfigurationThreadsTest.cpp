/// Several threads use one configuration. Also meant for the thread sanitizer.
#include "configuration/Answers.hpp"
#include "configuration/MutexHolder.hpp"
#include "configuration/RecordingSubscriber.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using test::makeConfiguration;
using test::RecordingSubscriber;
using test::watch;

TEST(ConfigurationThreads, EveryOperationOnTheRegistryTakesTheMutex) {
    const struct {
        int line;
        std::function<void(ConfigurationImpl&)> run;
    } operations[] = {
        {__LINE__, [](auto& configuration) { std::ignore = configuration.get("x"); }},
        {__LINE__, [](auto& configuration) { std::ignore = configuration.getOption("x"); }},
        {__LINE__, [](auto& configuration) { std::ignore = configuration.has("x"); }},
        {__LINE__, [](auto& configuration) { std::ignore = configuration.keys(); }},
        {__LINE__, [](auto& configuration) { std::ignore = configuration.set("x", 1); }},
        {__LINE__, [](auto& configuration) { std::ignore = configuration.set("x", 1, "default"); }},
        {__LINE__, [](auto& configuration) { configuration.watchOption("x"); }},
        {__LINE__,
         [](auto& configuration) {
             std::ignore = configuration.addInMemorySource("a", "", 5, false, {});
         }},
        {__LINE__,
         [](auto& configuration) { std::ignore = configuration.removeSource("unknown"); }},
        {__LINE__, [](auto& configuration) { configuration.removeStream(0); }},
        {__LINE__, [](auto& configuration) { configuration.explain("x"); }},
    };
    for (const auto& operation : operations) {
        SCOPED_TRACE(operation.line);
        const auto configuration = makeConfiguration();
        EXPECT_TRUE(test::waitsForMutex(*configuration, [&] { operation.run(*configuration); }));
    }
}

TEST(ConfigurationThreads, CancellingAStreamTakesTheMutex) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    EXPECT_TRUE(test::waitsForMutex(*configuration, [&] { subscriber->cancel(); }));
}

TEST(ConfigurationThreads, GetPtrTakesNoMutex) {
    const auto configuration = makeConfiguration();
    EXPECT_FALSE(test::waitsForMutex(*configuration, [&] { configuration->getPtr(); }));
}

TEST(ConfigurationThreads, EveryUpdateOfTwoWritersIsDelivered) {
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x");
    constexpr int rounds = 200;
    const auto write = [&](int first) {
        for (int i = 0; i < rounds; ++i)
            configuration->set("x", first + i).get();
    };
    std::thread other(write, rounds);
    write(0);
    other.join();

    std::vector<int> values = subscriber->values();
    EXPECT_EQ(test::intOf(*configuration, "x"),
              values.back()); // set delivers under the mutex, so in order
    std::sort(values.begin(), values.end());
    ASSERT_EQ(2u * rounds, values.size());
    for (int i = 0; i < 2 * rounds; ++i)
        EXPECT_EQ(i, values[static_cast<std::size_t>(i)]);
}

/// Runs random operations on a few keys and source names, from a seed of its own.
class Actor {
public:
    Actor(ConfigurationImpl& newConfiguration, unsigned seed)
        : configuration(newConfiguration), random(seed) {}

    void run(int steps) {
        for (int i = 0; i < steps; ++i)
            step();
    }

    /// The subscribers that were not cancelled, with their keys.
    std::vector<std::pair<std::string, std::shared_ptr<RecordingSubscriber>>> subscribers;

private:
    unsigned any(unsigned limit) { return random() % limit; }
    std::string anyName() { return "source" + std::to_string(any(4)); }
    std::string anyKey() { return (any(2) == 0 ? "net.key" : "key") + std::to_string(any(3)); }
    int anyNumber() { return static_cast<int>(any(1000)); }

    void step() {
        switch (any(10)) {
        case 0:
            std::ignore = configuration.get(anyKey());
            std::ignore = configuration.getOption(anyKey());
            break;
        case 1:
            std::ignore = configuration.keys();
            configuration.explain(anyKey());
            break;
        case 2:
            std::ignore = configuration.set(anyKey(), anyNumber(), anyName());
            break;
        case 3:
            std::ignore = configuration.addInMemorySource(
                anyName(), any(2) == 0 ? "net" : "", static_cast<int>(any(9)) - 4, any(3) == 0,
                {{"key1", anyNumber()}, {"key2", anyNumber()}});
            break;
        case 4:
            std::ignore = configuration.removeSource(anyName());
            break;
        case 5:
            startWatching();
            break;
        case 6:
            stopWatching();
            break;
        default:
            std::ignore = configuration.set(anyKey(), anyNumber());
        }
    }

    void startWatching() {
        if (subscribers.size() >= 8)
            return;
        const std::string key = anyKey();
        subscribers.emplace_back(key, watch(configuration, key, [this](int value) {
                                     configuration.has(value % 2 == 0 ? "key0" : "net.key0").get();
                                 }));
    }

    void stopWatching() {
        if (subscribers.empty())
            return;
        const auto chosen = subscribers.begin() + any(static_cast<unsigned>(subscribers.size()));
        chosen->second->cancel();
        subscribers.erase(chosen);
    }

    ConfigurationImpl& configuration;
    std::mt19937 random;
};

TEST(ConfigurationThreads, RandomOperationsLeaveAWorkingConfiguration) {
    constexpr unsigned threadCount = 4;
    constexpr int steps = 20000;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::cout << "seed " << seed << '\n';

    const auto configuration = makeConfiguration();
    std::vector<std::unique_ptr<Actor>> actors;
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < threadCount; ++i)
        actors.push_back(std::make_unique<Actor>(*configuration, seed + i));
    for (const auto& actor : actors)
        threads.emplace_back([&actor] { actor->run(steps); });
    for (std::thread& thread : threads)
        thread.join();

    // All threads have ended. One more change must reach every remaining subscriber.
    configuration->addInMemorySource("last", "", -100, false, {}).get();
    for (const auto& actor : actors) {
        for (const auto& [key, subscriber] : actor->subscribers) {
            configuration->set(key, 5000).get();
            EXPECT_EQ(5000, subscriber->values().back()) << key;
            EXPECT_EQ(0, subscriber->completions());
        }
    }
}

TEST(ConfigurationThreads, StreamsMayBeCancelledWhileTheConfigurationIsDestroyed) {
    for (int round = 0; round < 200; ++round) {
        auto configuration = makeConfiguration();
        const auto publisher = configuration->watchOption("x");
        const auto subscriber = std::make_shared<RecordingSubscriber>();
        publisher->subscribe(subscriber);
        std::thread canceller([&] { subscriber->cancel(); });
        configuration.reset();
        canceller.join();
        EXPECT_EQ(1, publisher.use_count());
        EXPECT_FALSE(publisher->completionFuture().get());
    }
}

} // namespace
