/// Threads that set, add, remove, watch, request, cancel, let go and throw, all at once and at random.
/// The thread sanitizer looks on; whatever the order was, what must hold in the end does.

#include "Scene.hpp"

#include "support/LogCapture.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <streambuf>
#include <thread>

using namespace test::model;
using testing::Contains;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr std::chrono::seconds duration(STRESS_SECONDS);
constexpr unsigned threads = 6;

std::uint64_t chooseSeed() {
    if (const char* const chosen = std::getenv("CONNECTOR_SEED"))
        return std::stoull(chosen);
    return std::random_device()();
}

/// While it lives, counts what goes to standard error instead of printing it. Any number of threads
/// write at once.
class ErrorLines final : public std::streambuf {
public:
    ErrorLines() : before(std::cerr.rdbuf(this)) {}
    ~ErrorLines() override { std::cerr.rdbuf(before); }
    ErrorLines(const ErrorLines&) = delete;
    ErrorLines& operator=(const ErrorLines&) = delete;

    std::atomic<std::uint64_t> known{0};
    std::atomic<std::uint64_t> unknown{0};

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        const std::string line(text, static_cast<std::size_t>(size));
        const auto& keys = Scene::keys();
        const bool isKnown = std::any_of(keys.begin(), keys.end(), [&line](const auto& key) {
            return line == "Error in configuration value subscriber: " + key + '\n';
        });
        ++(isKnown ? known : unknown);
        return size;
    }
    int_type overflow(int_type) override {
        ++unknown;
        return 0;
    }

private:
    std::streambuf* const before;
};

void actUntil(std::chrono::steady_clock::time_point deadline, Scene& scene, std::uint64_t seed) {
    Scene::seed(seed);
    while (std::chrono::steady_clock::now() < deadline)
        scene.act();
}

void actTogether(Scene& scene, std::uint64_t seed) {
    const auto deadline = std::chrono::steady_clock::now() + duration;
    std::vector<std::thread> actors;
    for (unsigned i = 0; i < threads; ++i)
        actors.emplace_back(actUntil, deadline, std::ref(scene), seed + i);
    for (std::thread& actor : actors)
        actor.join();
}

/// Every stream that nobody ended is alive, and no other. Leaves the live ones.
void expectOnlyLiveStreams(std::vector<Scene::Stream>& streams) {
    for (const Scene::Stream& stream : streams) {
        const Watcher& watcher = *stream.watcher;
        const bool ended = watcher.isCancelled || watcher.completions > 0;
        EXPECT_EQ(stream.publisher.expired(), ended) << watcher.key;
        EXPECT_LE(watcher.completions, 1);
        EXPECT_EQ(watcher.breaches, 0);
    }
    const auto isOver = [](const Scene::Stream& stream) { return stream.publisher.expired(); };
    streams.erase(std::remove_if(streams.begin(), streams.end(), isOver), streams.end());
}

/// One more change reaches whoever waits for a value; the others find it when they ask.
void expectChangeToArrive(Scene& scene, const std::string& key,
                          const std::vector<Scene::Stream>& streams) {
    constexpr int value = -1; // no thread ever set a negative number
    std::vector<std::uint64_t> demands;
    for (const Scene::Stream& stream : streams)
        demands.push_back(stream.watcher->demand());
    scene.configuration->set(key, value);
    for (std::size_t i = 0; i < streams.size(); ++i) {
        Watcher& watcher = *streams[i].watcher;
        if (watcher.key != key)
            continue;
        EXPECT_EQ(watcher.demand(), demands[i] - std::min<std::uint64_t>(demands[i], 1)) << key;
        if (demands[i] == 0)
            watcher.request(1);
        EXPECT_EQ(watcher.last, value) << key;
    }
}

std::vector<std::string> linesOfOneMoreChange(Scene& scene) {
    const test::CoreLog log;
    for (const std::string& key : Scene::keys())
        scene.configuration->set(key, 0);
    return log.lines();
}

void expectNoStreamAfterCancelling(Scene& scene, std::vector<Scene::Stream>& streams) {
    for (const Scene::Stream& stream : streams) {
        stream.watcher->cancel();
        EXPECT_TRUE(stream.publisher.expired());
    }
    EXPECT_THAT(linesOfOneMoreChange(scene), Not(Contains(StartsWith("notifying watcher: "))));
}

TEST(WatchingStress, WhenTheThreadsHaveEndedEveryLiveWatcherGetsTheLastChangeAndNothingIsLeftOver) {
    const std::uint64_t seed = chooseSeed();
    std::cout << "CONNECTOR_SEED=" << seed << std::endl;
    Scene scene;
    const ErrorLines errors;

    actTogether(scene, seed);
    scene.calm();

    EXPECT_EQ(errors.unknown, 0u);
    EXPECT_EQ(scene.thrown, scene.caught + errors.known) << "each failure is reported once";
    std::cout << scene.actions << " actions, " << scene.deliveries << " values, " << errors.known
              << " reported failures\n";
    EXPECT_GT(errors.known, 0u);

    std::vector<Scene::Stream> streams = scene.takeStreams();
    expectOnlyLiveStreams(streams);
    EXPECT_FALSE(streams.empty());
    for (const std::string& key : Scene::keys())
        expectChangeToArrive(scene, key, streams);
    expectNoStreamAfterCancelling(scene, streams);

    streams.clear();
    EXPECT_EQ(scene.watchers, 0);
    const std::weak_ptr<Scene::Configuration> configuration = scene.configuration;
    scene.configuration.reset();
    EXPECT_TRUE(configuration.expired());
}

} // namespace
