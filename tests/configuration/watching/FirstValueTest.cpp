/// The first value of a stream while another thread changes the option.
#include "configuration/Answers.hpp"
#include "configuration/RecordingSubscriber.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

namespace {

using test::makeConfiguration;
using test::RecordingSubscriber;

/// In either order of the two calls, the stream delivers the value of the change.
TEST(FirstValue, DoesNotEvictANewerOne) {
    constexpr int rounds = 5000;
    const auto configuration = makeConfiguration();
    configuration->set("x", 0).get();
    std::atomic<int> started{0};
    std::atomic<int> finished{0};
    std::thread writer([&] {
        for (int round = 1; round <= rounds; ++round) {
            while (started.load() < round)
                std::this_thread::yield();
            configuration->set("x", round).get();
            finished = round;
        }
    });
    int evicted = 0;
    for (int round = 1; round <= rounds; ++round) {
        started = round;
        const auto publisher = configuration->watchOption("x");
        while (finished.load() < round)
            std::this_thread::yield();
        const auto subscriber = std::make_shared<RecordingSubscriber>(1);
        publisher->subscribe(subscriber);
        evicted += subscriber->values().back() == round ? 0 : 1;
        subscriber->cancel();
    }
    writer.join();
    EXPECT_EQ(0, evicted);
}

} // namespace
