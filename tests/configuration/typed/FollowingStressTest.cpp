/// Handlers and live options under threads that change, nest, watch and destroy at random.
#include "../ScriptedSource.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/LiveOption.hpp>
#include <connector/configuration/typed/OptionReading.hpp>
#include <connector/configuration/typed/OptionWatch.hpp>

#include <array>
#include <atomic>
#include <chrono>
#include <iostream>
#include <mutex>
#include <random>
#include <thread>

namespace {

using namespace connector::configuration;
using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds duration{30};
#else
constexpr std::chrono::seconds duration{2};
#endif

const std::array<std::string, 3> keys{"a", "b", "c"};

/// Remembers the last value that was reported, and that no call overlapped.
class Listener {
public:
    void hear(int value) {
        EXPECT_FALSE(isInside.exchange(true)) << "calls overlap";
        EXPECT_TRUE(isAlive) << "called after the end";
        last = value;
        isInside = false;
    }
    void die() {
        EXPECT_FALSE(isInside) << "the destructor did not wait";
        isAlive = false;
    }
    int value() const { return last; }

private:
    std::atomic<bool> isInside{false};
    std::atomic<bool> isAlive{true};
    std::atomic<int> last{-1};
};

/// A configuration with a permanent watch, a live option of each size and plain nesting for each
/// key.
class Arena {
public:
    Arena() {
        for (const std::string& key : keys)
            configuration->set(key, 0).get();
        for (std::size_t i = 0; i < keys.size(); ++i) {
            watches[i] = onChange<int>(configuration, keys[i], [this, i](int value) {
                listeners[i].hear(value);
                if (value % 16 == 1) // a nested change, of another key or of the same
                    configuration
                        ->set(keys[(i + static_cast<std::size_t>(value)) % keys.size()], value + 1)
                        .get();
            });
            numbers.emplace_back(configuration, keys[i]);
            texts.emplace_back(configuration, keys[i]);
        }
    }

    /// Makes random changes, repeatedly.
    void run(std::uint64_t seed, Clock::time_point end) {
        std::mt19937_64 random(seed);
        while (Clock::now() < end) {
            const std::string& key = keys[random() % keys.size()];
            const int value = static_cast<int>(random() % 1000);
            switch (random() % 6) {
            case 0:
                watchBriefly(key, value);
                break;
            case 1:
                liveBriefly(key);
                break;
            case 2:
                toggleSource(key, value);
                break;
            default:
                configuration->set(key, value).get();
            }
        }
    }

    void expectConvergence() {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const int now = getAs<int>(*configuration, keys[i]);
            EXPECT_EQ(now, listeners[i].value());
            EXPECT_EQ(now, numbers[i].get());
            EXPECT_EQ(std::to_string(now), texts[i].get());
        }
    }

private:
    void watchBriefly(const std::string& key, int value) {
        Listener listener;
        {
            const OptionWatch watch =
                onChange<int>(configuration, key, [&listener](int now) { listener.hear(now); });
            configuration->set(key, value).get();
        }
        listener.die();
    }

    void liveBriefly(const std::string& key) {
        const LiveOption<std::string> live(configuration, key, "fallback");
        EXPECT_NE("fallback", live.get());
    }

    /// Changes outside of set: the configuration's mutex is free while they are reported.
    void toggleSource(const std::string& key, int value) {
        const std::lock_guard<std::mutex> lock(sourceMutex);
        if (!configuration->removeSource("source").get())
            configuration->addInMemorySource("source", "", -1, true, {{key, value}}).get();
    }

    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    std::mutex sourceMutex;
    std::array<Listener, keys.size()> listeners;
    std::vector<LiveOption<int>> numbers;
    std::vector<LiveOption<std::string>> texts;
    std::array<OptionWatch, keys.size()> watches; // ended first
};

TEST(FollowingStress, ConvergesWhateverThreadsDo) {
    const auto seed = std::random_device()();
    std::cout << "seed " << seed << std::endl;
    const Clock::time_point end = Clock::now() + duration;
    std::mt19937_64 seeds(seed);
    int rounds = 0;
    for (; Clock::now() < end && !::testing::Test::HasFailure(); ++rounds) {
        Arena arena;
        const Clock::time_point endOfRound =
            std::min(end, Clock::now() + std::chrono::milliseconds(200));
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back(
                [&arena, endOfRound, own = seeds()] { arena.run(own, endOfRound); });
        for (std::thread& thread : threads)
            thread.join();
        arena.expectConvergence();
    }
    EXPECT_GT(rounds, 1);
}

} // namespace
