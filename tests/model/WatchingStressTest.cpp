/// Threads run random operations on one configuration. Checks what must hold afterwards in any
/// interleaving. Also meant for the thread sanitizer.

#include "RandomWorkload.hpp"

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

/// While it exists, counts the lines on standard error instead of printing them. Several threads
/// may write at once.
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
        const auto& keys = RandomWorkload::keys();
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

void stepUntil(std::chrono::steady_clock::time_point deadline, RandomWorkload& workload,
               std::uint64_t seed) {
    RandomWorkload::seed(seed);
    while (std::chrono::steady_clock::now() < deadline)
        workload.step();
}

void stepOnAllThreads(RandomWorkload& workload, std::uint64_t seed) {
    const auto deadline = std::chrono::steady_clock::now() + duration;
    std::vector<std::thread> workers;
    for (unsigned i = 0; i < threads; ++i)
        workers.emplace_back(stepUntil, deadline, std::ref(workload), seed + i);
    for (std::thread& worker : workers)
        worker.join();
}

/// Expects that exactly the streams that did not end are alive. Removes the others from the list.
void expectOnlyLiveStreams(std::vector<RandomWorkload::Stream>& streams) {
    for (const RandomWorkload::Stream& stream : streams) {
        const RandomSubscriber& subscriber = *stream.subscriber;
        const bool ended = subscriber.isCancelled || subscriber.completions > 0;
        EXPECT_EQ(stream.publisher.expired(), ended) << subscriber.key;
        EXPECT_LE(subscriber.completions, 1);
        EXPECT_EQ(subscriber.violations, 0);
    }
    const auto isOver = [](const RandomWorkload::Stream& stream) {
        return stream.publisher.expired();
    };
    streams.erase(std::remove_if(streams.begin(), streams.end(), isOver), streams.end());
}

/// Expects that one more change reaches every subscriber with demand, and every other one after a
/// request.
void expectChangeToArrive(RandomWorkload& workload, const std::string& key,
                          const std::vector<RandomWorkload::Stream>& streams) {
    constexpr int value = -1; // no thread ever set a negative number
    std::vector<std::uint64_t> demands;
    for (const RandomWorkload::Stream& stream : streams)
        demands.push_back(stream.subscriber->demand());
    workload.configuration->set(key, value).get();
    for (std::size_t i = 0; i < streams.size(); ++i) {
        RandomSubscriber& subscriber = *streams[i].subscriber;
        if (subscriber.key != key)
            continue;
        EXPECT_EQ(subscriber.demand(), demands[i] - std::min<std::uint64_t>(demands[i], 1)) << key;
        if (demands[i] == 0)
            subscriber.request(1);
        EXPECT_EQ(subscriber.last, value) << key;
    }
}

std::vector<std::string> linesOfOneMoreChange(RandomWorkload& workload) {
    const test::CoreLog log;
    for (const std::string& key : RandomWorkload::keys())
        workload.configuration->set(key, 0).get();
    return log.lines();
}

void expectNoStreamAfterCancelling(RandomWorkload& workload,
                                   std::vector<RandomWorkload::Stream>& streams) {
    for (const RandomWorkload::Stream& stream : streams) {
        stream.subscriber->cancel();
        EXPECT_TRUE(stream.publisher.expired());
    }
    EXPECT_THAT(linesOfOneMoreChange(workload), Not(Contains(StartsWith("notifying watcher: "))));
}

TEST(WatchingStress, AfterRandomOperationsEveryLiveSubscriberReceivesTheLastChangeAndNothingLeaks) {
    const std::uint64_t seed = chooseSeed();
    std::cout << "CONNECTOR_SEED=" << seed << std::endl;
    RandomWorkload workload;
    const ErrorLines errors;

    stepOnAllThreads(workload, seed);
    workload.quiesce();

    EXPECT_EQ(errors.unknown, 0u);
    EXPECT_EQ(workload.thrown, workload.caught + errors.known) << "each failure is reported once";
    std::cout << workload.steps << " steps, " << workload.deliveries << " values, " << errors.known
              << " reported failures\n";
    EXPECT_GT(errors.known, 0u);

    std::vector<RandomWorkload::Stream> streams = workload.takeStreams();
    expectOnlyLiveStreams(streams);
    EXPECT_FALSE(streams.empty());
    for (const std::string& key : RandomWorkload::keys())
        expectChangeToArrive(workload, key, streams);
    expectNoStreamAfterCancelling(workload, streams);

    streams.clear();
    EXPECT_EQ(workload.subscribers, 0);
    const std::weak_ptr<RandomWorkload::Configuration> configuration = workload.configuration;
    workload.configuration.reset();
    EXPECT_TRUE(configuration.expired());
}

} // namespace
